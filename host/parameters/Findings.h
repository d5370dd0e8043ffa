#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "params/Parser.h"

namespace kiv::host {

class Sha256;

// What is to be said of a parameter file. Errors are what the library refuses and every value that
// it cannot read; the rest are warnings.
struct FileFinding {
    Finding finding;
    bool error = false;
    bool doubt = false; // a warning to whoever reads the file: it may not be all there
};

struct ExaminedFile {
    ParsedFile parsed;
    std::vector<FileFinding> findings; // in the text's order, one error at a place

    std::size_t errors() const;
    std::size_t warnings() const { return findings.size() - errors(); }
};

// Gives the findings that are of interest to who uses the file.
void reportForUse(std::ostream& err, const std::string& path, const ExaminedFile& examined);

// The serial number is tested where there is an id.
ExaminedFile examine(ByteSource& source, std::optional<std::int32_t> id);

// Reads any file; where its name tells the sensor's ID, the serial number is tested. Nothing, and a
// message, when the file cannot be read. All of its bytes go into the hash.
std::optional<ExaminedFile> examineFile(const std::string& path, std::ostream& err,
                                        Sha256* hash = nullptr);

// Writes path:line:column: expected ..., found ...
void report(std::ostream& err, const std::string& path, const FileFinding& finding);

} // namespace kiv::host
