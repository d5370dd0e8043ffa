#include "host/verify/ReferenceCases.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivPrm.h"
#include "KIVInterface/ConfigureSensor.h"
#include "host/rows/Readings.h"
#include "params/Parser.h"
#include "params/RecordLoading.h"
#include "sensor/SensorAccess.h"
#include "support/Principles.h"
#include "support/platform/ByteSource.h"

namespace kiv::host {

namespace {

constexpr std::int32_t sensorId = 5;

struct ExpectedColumn {
    std::string_view name;
    Compared compared;
};

constexpr std::array<ExpectedColumn, 19> expectedColumns{
    {{"azimuth_corrected_deg", correctedReadings},
     {"elevation_corrected_deg", correctedReadings},
     {"level_x_corrected_deg", correctedReadings},
     {"level_y_corrected_deg", correctedReadings},
     {"rx_deg", angles},
     {"ry_deg", angles},
     {"rz_deg", angles},
     {"qvc_x", qvcVector},
     {"qvc_y", qvcVector},
     {"qvc_z", qvcVector},
     {"m00", matrixEntries},
     {"m01", matrixEntries},
     {"m02", matrixEntries},
     {"m10", matrixEntries},
     {"m11", matrixEntries},
     {"m12", matrixEntries},
     {"m20", matrixEntries},
     {"m21", matrixEntries},
     {"m22", matrixEntries}}};

using Values = std::array<double, expectedColumns.size()>;

// Where they are asked for: behind the readings.
constexpr std::size_t modeAt = readingColumns.size();
constexpr std::size_t frameAt = modeAt + 1;
constexpr std::size_t expectedAt = frameAt + 1;

std::vector<std::string_view> columnsOfCases() {
    std::vector<std::string_view> columns(readingColumns.begin(), readingColumns.end());
    columns.insert(columns.end(), {"mount_mode", "frame"});
    for (const ExpectedColumn& column : expectedColumns)
        columns.push_back(column.name);
    return columns;
}

// The carried parameter file, but for the mount mode. A sensor that it does not make computes
// nothing, and all of its cases differ.
void configure(CKiv& sensor, ParsedFile& parsed, int mountMode) {
    auto& block = parsed.document.blocks[static_cast<std::size_t>(Block::mountingMode)];
    if (block)
        block->integer = mountMode;
    CKivPrm record;
    RecordLoading::store(record, parsed);
    configureSensor(sensor, record);
}

// In the order of the columns. Modes without frames show the model's own matrix.
Values computedBy(CKiv& sensor, const KIV_RAWINFO& raw) {
    KIV_INFO info;
    sensor.updateKIVData(raw, info);
    Values values{info.azimuth, info.elevation, info.levelX, info.levelY, info.rx,
                  info.ry,      info.rz,        info.qvc[0], info.qvc[1], info.qvc[2]};
    const double* m = reportsOwnMatrix(SensorAccess::mountMode(sensor))
                          ? SensorAccess::transform(sensor)
                          : SensorAccess::result(sensor);
    std::copy_n(m, 9, values.end() - 9);
    return values;
}

// As it is computed: matrices are double precision, all else is single. Not a number where the
// cell is none.
double expectedValue(Table& table, std::size_t i) {
    if (expectedColumns[i].compared == matrixEntries) {
        double value = std::numeric_limits<double>::quiet_NaN();
        table.readNumber(expectedAt + i, value);
        return value;
    }
    float value = std::numeric_limits<float>::quiet_NaN();
    table.readNumber(expectedAt + i, value);
    return value;
}

void compare(Table& table, const Values& found, ModelCheck& check, std::size_t caseNumber) {
    for (std::size_t i = 0; i < found.size(); ++i) {
        const double expected = expectedValue(table, i);
        const double difference = std::abs(found[i] - expected);
        const double size =
            std::isnan(difference) ? std::numeric_limits<double>::infinity() : difference;
        Difference& largest = check.largest[expectedColumns[i].compared];
        if (size > largest.size)
            largest = {size, caseNumber, expectedColumns[i].name, expected, found[i]};
    }
    ++check.cases;
}

} // namespace

bool ModelCheck::good() const {
    return std::equal(largest.begin(), largest.end(), allowedDifference.begin(),
                      [](const Difference& d, double allowed) { return d.size <= allowed; });
}

std::vector<ModelCheck> checkModels(const ReferenceData& data) {
    TextSource text(data.parameters);
    ParsedFile parsed = parseParameterFile(text, sensorId);
    const LineBlock cases{.text = std::string(data.cases), .name = "reference cases"};
    const auto columns = columnsOfCases();
    const TableFormat format;
    Table table(columns, format);
    table.start(cases);
    if (!table.readHeader({}))
        return {};

    std::vector<ModelCheck> checks;
    std::optional<CKiv> sensor;
    for (std::size_t number = 1; table.nextRow(); ++number) {
        int mode = 0;
        KIV_RAWINFO raw;
        if (readReadings(table, raw) != Reason::none || !table.readNumber(modeAt, mode))
            return {};
        if (!sensor || mode != SensorAccess::mountMode(*sensor)) {
            sensor.emplace();
            configure(*sensor, parsed, mode);
            if (checks.empty() || checks.back().model != modelName(mode))
                checks.push_back({.model = modelName(mode)});
            checks.back().mountModes.push_back(mode);
        }
        sensor->setMcsFlag(table.text(frameAt) != "local");
        compare(table, computedBy(*sensor, raw), checks.back(), number);
    }
    return checks;
}

} // namespace kiv::host
