#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

class CKiv;
class CKivPrm;

namespace kiv::host {

struct InputFacts;

// A path to a parameter file in its parts: the folder where it lies and Tg<id>.prm.
struct ParameterFileName {
    std::string folder; // all of the path before the name: empty, or a separator ends it
    std::string name;
    std::int32_t id;
};

// Nothing for a file name that is not Tg, a decimal 32-bit ID without leading zeros, .prm.
std::optional<ParameterFileName> parseParameterFileName(const std::string& path);

// The same, with a message for any other name.
std::optional<ParameterFileName> requireParameterFileName(const std::string& path,
                                                          std::ostream& err);

// Loads a file for measuring: one that the library would refuse, or that holds a value which the
// library would take for 0, is refused, with every reason on err, as are kiv check's warnings. The
// facts learn the owner, the bytes and the count of warnings.
bool loadParameterFile(const std::string& path, CKivPrm& record, std::ostream& err,
                       InputFacts* facts = nullptr);

// Hands a file's record to a sensor; false, and a message, when that does not take it.
bool configure(CKiv& sensor, CKivPrm& record, const std::string& path, std::ostream& err);

// Loads a file, and hands the record to a sensor; false, and a message, when that does not take it.
bool loadSensor(const std::string& path, CKivPrm& record, CKiv& sensor, std::ostream& err,
                InputFacts* facts = nullptr);

} // namespace kiv::host
