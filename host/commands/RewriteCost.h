#pragma once

#include <iosfwd>
#include <string>

#include "params/Document.h"

namespace kiv::host {

// Says what a rewrite has done to the values, as the library reads them: the largest relative
// change on out, and on err each value other than 0 that has become 0. Places are those in the
// rewritten text.
void reportCost(const Document& before, const std::string& rewritten, const std::string& path,
                std::ostream& out, std::ostream& err);

} // namespace kiv::host
