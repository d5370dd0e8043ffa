#include "host/run/CalibrationResult.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

#include "host/base/FileKind.h"
#include "host/base/FlatJson.h"
#include "params/Quoted.h"

namespace kiv::host {

namespace {

using Json = nlohmann::ordered_json;

constexpr double rounding = 1e-6; // of a correlation

const FlatJson::Entry* entryOf(const FlatJson& json, std::string_view name) {
    const auto& all = json.entries();
    const auto entry =
        std::find_if(all.begin(), all.end(), [&](const auto& each) { return each.name == name; });
    return entry == all.end() ? nullptr : &*entry;
}

class ResultReader {
public:
    ResultReader(const FlatJson& text, const CalibratedFile& given)
        : json(text), parameterFile(given), root(Json::parse(text.content())) {}

    bool read(CalibrationResult& into) {
        if (!belongs())
            return false;
        std::optional<std::vector<double>> covariance;
        try {
            covariance = covarianceOf(into.names);
        } catch (const Json::exception&) {
            covariance.reset();
        }
        if (!covariance)
            return fault("names and a matrix of numbers as kiv calibrate writes them, with the u "
                         "of each name among the parameters",
                         "another shape");
        const std::vector<std::string_view> names(into.names.begin(), into.names.end());
        return report(
            Calibration::make(parameterFile.sensor, names, covariance->data(), into.calibration),
            into.names);
    }

private:
    bool fault(std::string_view expected, std::string_view found) const {
        const FlatJson::Entry* place = entryOf(json, result::correlation);
        return json.report(place ? place->place : 0, expected, found);
    }

    bool belongs() const {
        const FlatJson::Entry* entry = entryOf(json, result::digest);
        const std::string expected = "the result of the calibration that wrote "
                                     + printable(parameterFile.name) + " (SHA-256 "
                                     + parameterFile.digest + ')';
        if (!entry)
            return json.report(0, expected, "one without " + std::string(result::digest));
        return entry->value == Json(parameterFile.digest)
               || json.report(json.valuePlace(*entry), expected,
                              shownValue(entry->value)
                                  + "; give the two files of one kiv calibrate, unchanged");
    }

    // Nothing, or what the parser throws, where the shape is another one.
    std::optional<std::vector<double>> covarianceOf(std::vector<std::string>& names) const {
        const Json& correlation = root.at(result::correlation);
        names = correlation.at(result::names).get<std::vector<std::string>>();
        const auto rows = correlation.at(result::matrix).get<std::vector<std::vector<double>>>();
        std::vector<double> u;
        u.reserve(names.size());
        for (const std::string& name : names)
            u.push_back(root.at(result::parameters).at(name).at(result::u).get<double>());
        std::vector<double> covariance;
        if (rows.size() != names.size())
            return std::nullopt;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (rows[i].size() != names.size() || !(std::abs(rows[i][i] - 1) <= rounding)
                || !(u[i] >= 0))
                return std::nullopt;
            for (std::size_t j = 0; j < rows.size(); ++j)
                covariance.push_back(u[i] * rows[i][j] * u[j]);
        }
        return covariance;
    }

    bool report(const CalibrationFault& found, const std::vector<std::string>& names) const {
        switch (found.kind) {
        case CalibrationFault::none:
            return true;
        case CalibrationFault::name:
            return fault("parameters that the angles depend on", inQuotes(names[found.row]));
        case CalibrationFault::again:
            return fault("each name once", inQuotes(names[found.row]) + " again");
        case CalibrationFault::notFinite:
        case CalibrationFault::notSymmetric:
        case CalibrationFault::notPossible:
            break;
        }
        return fault("a symmetric, positive semidefinite matrix",
                     "one that is not so in the row of " + inQuotes(names[found.row]));
    }

    const FlatJson& json;
    const CalibratedFile& parameterFile;
    const Json root;
};

} // namespace

bool isCalibrationResult(const FlatJson& json) {
    return entryOf(json, result::digest) || entryOf(json, result::correlation);
}

bool readCalibrationResult(const FlatJson& json, const CalibratedFile& parameterFile,
                           CalibrationResult& result) {
    return ResultReader(json, parameterFile).read(result);
}

} // namespace kiv::host
