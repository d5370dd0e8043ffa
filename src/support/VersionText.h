#pragma once

#include "KIVInterface/Version.h"

#define KIV_TEXT_OF(number) #number
#define KIV_DOTTED(major, minor, patch)                                                            \
    KIV_TEXT_OF(major) "." KIV_TEXT_OF(minor) "." KIV_TEXT_OF(patch)

namespace kiv {

// The version of the library, and of the tool that is built with it.
inline constexpr const char* versionText =
    KIV_DOTTED(KIV_VERSION_MAJOR, KIV_VERSION_MINOR, KIV_VERSION_PATCH);

} // namespace kiv

#undef KIV_DOTTED
#undef KIV_TEXT_OF
