#pragma once

// The version of these headers, which the build takes as its own. A host tests it as a number:
// #if KIV_VERSION_MAJOR > 1 || (KIV_VERSION_MAJOR == 1 && KIV_VERSION_MINOR >= 2).
#define KIV_VERSION_MAJOR 0
#define KIV_VERSION_MINOR 1
#define KIV_VERSION_PATCH 0
