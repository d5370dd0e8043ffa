#include "host/run/UncertaintyFile.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "host/base/Files.h"
#include "host/base/FlatJson.h"
#include "params/Quoted.h"
#include "sensor/SensorAccess.h"
#include "support/Numbers.h"
#include "uncertainty/UncertaintyNames.h"

namespace kiv::host {

namespace {

class UncertaintyReader {
public:
    explicit UncertaintyReader(FlatJson& text) : json(text) {}

    bool read(int mode, Uncertainties& uncertainties) {
        bool good = true;
        NamedUncertainties given;
        for (std::size_t i = 0; i < json.entries().size(); ++i)
            good = take(i, mode, given) && good;
        uncertainties = given.values();
        return good;
    }

private:
    bool take(std::size_t i, int mode, NamedUncertainties& given) {
        const FlatJson::Entry& entry = json.entries()[i];
        const double number = entry.value.is_number() ? entry.value.get<double>() : -1;
        const UncertaintyFault fault = given.give(principleOf(mode), entry.name, number);
        const std::string found = inQuotes(entry.name);
        if (fault == UncertaintyFault::name) {
            std::string all;
            for (const UncertaintyName& each : uncertaintyNames)
                all.append(all.empty() ? "one of " : ", ").append(each.text);
            return json.report(entry.place, all, found);
        }
        if (fault == UncertaintyFault::unread)
            return json.report(entry.place, "what mount mode " + std::to_string(mode) + " reads",
                               found);
        if (json.repeats(i))
            return json.report(entry.place, "each name once", found + " again");
        if (fault == UncertaintyFault::value)
            return json.report(json.valuePlace(entry),
                               "a number from 0 to " + shown(largestUncertainty) + " for " + found,
                               shownValue(entry.value));
        if (fault == UncertaintyFault::vector)
            return json.report(entry.place, "x, y and z, or vector_along and vector_across",
                               inQuotes(given.firstOfVector()) + " and " + found);
        return true;
    }

    FlatJson& json;
};

// What a calibration found and what is given beside it would count twice.
bool countsTwice(const GivenUncertainties& given, const std::string& file, std::ostream& err) {
    constexpr std::pair<const char*, Source> parameters[] = {
        {"angle_offset.azimuth_deg", Source::azimuthOffset},
        {"angle_offset.elevation_deg", Source::elevationOffset},
        {"tilt_sensor_offset.x_deg", Source::tiltOffsetX},
        {"tilt_sensor_offset.y_deg", Source::tiltOffsetY}};
    if (!given.ofReadings || !given.calibration)
        return false;
    const std::vector<std::string>& names = given.calibration->names;
    for (const auto& [name, source] : parameters)
        if ((*given.ofReadings)[source] > 0
            && std::count(names.begin(), names.end(), std::string(name)) > 0) {
            err << file << ":1:1: expected no uncertainty of " << name
                << " beside that of the calibration, found one in both files\n";
            return true;
        }
    return false;
}

} // namespace

bool readUncertainties(const std::vector<std::string>& files, const CalibratedFile& parameterFile,
                       GivenUncertainties& given, const Streams& streams) {
    const int mode = SensorAccess::mountMode(parameterFile.sensor);
    std::string ordinary; // the file of uncertainties of readings
    for (const std::string& file : files) {
        Input input;
        std::string text;
        if (!input.open(file, streams) || !input.readAll(text, streams.err))
            return false;
        FlatJson json(input.name(), std::move(text), streams.err);
        if (!json.parse("names and numbers"))
            return false;
        const bool ofCalibration = isCalibrationResult(json);
        if (ofCalibration ? given.calibration.has_value() : given.ofReadings.has_value())
            return json.report(
                0, ofCalibration ? "uncertainties of readings" : "the result of kiv calibrate",
                ofCalibration      ? "a second result of kiv calibrate"
                : ordinary.empty() ? "uncertainties of readings, which options give, too"
                                   : "a second file of uncertainties of readings");
        if (ofCalibration) {
            given.calibration.emplace().file = input.name();
            if (!readCalibrationResult(json, parameterFile, *given.calibration))
                return false;
        } else {
            ordinary = input.name();
            if (!UncertaintyReader(json).read(mode, given.ofReadings.emplace()))
                return false;
        }
    }
    return !countsTwice(given, ordinary, streams.err);
}

} // namespace kiv::host
