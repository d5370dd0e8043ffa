#pragma once

// Everything that is declared here is exported; on Windows kiv.def says so.
#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif
#include "kiv.h"
#if defined(__GNUC__)
#pragma GCC visibility pop
#endif
