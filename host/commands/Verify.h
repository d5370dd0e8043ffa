#pragma once

#include <string>

#include "host/base/Cli.h"
#include "host/verify/ReferenceCases.h"

namespace kiv::host {

struct VerifyOptions {
    std::string output = "-";
};

// Computes the reference cases of every model and says how far the results are from those that the
// tool carries. An exit code.
int verifyInstallation(const VerifyOptions& options, const Streams& streams,
                       const ReferenceData& data = {});

} // namespace kiv::host
