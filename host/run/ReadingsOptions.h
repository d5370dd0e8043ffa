#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/rows/TableFormat.h"
#include "support/Principles.h"
#include "uncertainty/Uncertainties.h"

namespace kiv::host {

struct ReadingsOptions {
    std::string parameterFile;
    std::vector<std::string> readings; // tables of one recording, - for standard input
    std::string output = "-";
    bool localFrame = false; // angles of the motion since the reference, not in machine coordinates
    TableFormat format;
    std::string summary;             // a file for the summary, where one is wanted
    std::optional<double> tolerance; // of every angle against its true one, degrees
    bool strict = false;             // rows that are not good count for the exit code
    // Where the angles' uncertainty is wanted: files of the readings' and of what a calibration
    // found, or numbers for the readings.
    std::vector<std::string> uncertaintyFiles;
    std::optional<Uncertainties> uncertainties;
    // What becomes the reference in place of the first row that can: a line of the first table, or
    // the first row that can in another one.
    std::size_t referenceLine = 0;
    std::string referenceFile;
    std::size_t jobs = 0; // threads; 0: as many as there are processors, for files
    bool quiet = false;   // no progress, of the summary the counts alone
    // What the output and the summary have no use for is not computed.
    bool withMatrix = true;
    bool withUncertainty = true; // of the angles, where the readings' is given

    // The local frame counts only where the mount mode knows frames.
    bool inLocalFrame(int mountMode) const { return localFrame && !reportsOwnMatrix(mountMode); }
};

} // namespace kiv::host
