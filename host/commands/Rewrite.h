#pragma once

#include <string>

#include "host/base/Cli.h"

namespace kiv::host {

struct RewriteOptions {
    std::string file;
};

// Rewrites a parameter file in its folder and looks at the disk for what has come of it. An exit
// code.
int rewriteFile(const RewriteOptions& options, const Streams& streams);

} // namespace kiv::host
