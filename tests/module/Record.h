#pragma once

// What a loaded module has gone through, kept by the host: it outlives the module. A library of its
// own, so that host and module write to the same one.

#include "RecordExport.h"

RECORD_EXPORT void recordStep(const char* step);

// All steps since the last call, one a line.
RECORD_EXPORT const char* takeRecord();
