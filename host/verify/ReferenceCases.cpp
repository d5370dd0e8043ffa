#include "host/verify/ReferenceCases.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <sstream>
#include <string>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivPrm.h"
#include "KIVInterface/ConfigureSensor.h"
#include "host/report/Embedded.h"
#include "host/tables/Readings.h"
#include "params/Parser.h"
#include "params/RecordLoading.h"
#include "sensor/SensorAccess.h"
#include "support/MountMode.h"
#include "support/platform/ByteSource.h"

namespace kiv::host {

namespace {

constexpr std::int32_t sensorId = 5;

// The expected values stand behind the readings, in this order.
constexpr std::array<std::string_view, 10> singleColumns{"azimuth_corrected_deg",
                                                         "elevation_corrected_deg",
                                                         "level_x_corrected_deg",
                                                         "level_y_corrected_deg",
                                                         "rx_deg",
                                                         "ry_deg",
                                                         "rz_deg",
                                                         "qvc_x",
                                                         "qvc_y",
                                                         "qvc_z"};
constexpr std::array<std::string_view, 9> matrixColumns{"m00", "m01", "m02", "m10", "m11",
                                                        "m12", "m20", "m21", "m22"};
constexpr std::array<std::string_view, 2> caseColumns{"mount_mode", "frame"};

constexpr Quantity quantityOfSingle(std::size_t i) {
    return i < 4 ? correctedReadings : i < 7 ? angles : qvcVector;
}

std::vector<std::string_view> allColumns() {
    std::vector<std::string_view> all(readingColumns.begin(), readingColumns.end());
    for (const std::span<const std::string_view> columns :
         {std::span<const std::string_view>(singleColumns),
          std::span<const std::string_view>(matrixColumns),
          std::span<const std::string_view>(caseColumns)})
        all.insert(all.end(), columns.begin(), columns.end());
    return all;
}

constexpr std::size_t singleAt = readingColumns.size();
constexpr std::size_t matrixAt = singleAt + singleColumns.size();
constexpr std::size_t modeAt = matrixAt + matrixColumns.size();
constexpr std::size_t frameAt = modeAt + 1;

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

class CaseComparison {
public:
    CaseComparison(const Table& cases, std::size_t caseNumber, ModelCheck& modelCheck)
        : table(cases), number(caseNumber), check(modelCheck) {}

    // A value of the table, float or double as it is computed.
    template <typename Number>
    void compare(Quantity quantity, std::size_t column, std::string_view name, Number found) {
        auto expected = std::numeric_limits<Number>::quiet_NaN();
        table.readNumber(column, expected);
        const auto wanted = static_cast<double>(expected);
        const auto got = static_cast<double>(found);
        const double difference = std::abs(got - wanted);
        const double size =
            std::isnan(difference) ? std::numeric_limits<double>::infinity() : difference;
        if (size > check.largest[quantity].size)
            check.largest[quantity] = {size, number, name, wanted, got};
    }

private:
    const Table& table;
    std::size_t number;
    ModelCheck& check;
};

} // namespace

bool ModelCheck::good() const {
    return std::equal(largest.begin(), largest.end(), allowedDifference.begin(),
                      [](const Difference& d, double allowed) { return d.size <= allowed; });
}

std::vector<ModelCheck> checkModels(std::ostream& err) {
    TextSource text(embedded::verifyParameters());
    ParsedFile parsed = parseParameterFile(text, sensorId);
    std::istringstream in{std::string(embedded::verifyCases())};
    const auto columns = allColumns();
    const TableFormat format;
    Table table(in, "reference cases", err, columns, format);
    std::vector<ModelCheck> checks;
    if (!table.readHeader({}))
        return checks;

    std::optional<CKiv> sensor;
    for (std::size_t number = 1; table.nextRow() && table.checkRow(); ++number) {
        const int mode = numberIn<int>(table.text(modeAt)).value_or(0);
        if (!sensor || mode != SensorAccess::mountMode(*sensor)) {
            sensor.emplace();
            configure(*sensor, parsed, mode);
            if (checks.empty() || checks.back().model != modelName(mode))
                checks.push_back({modelName(mode), {}, 0, {}});
            checks.back().mountModes.push_back(mode);
        }
        sensor->setMcsFlag(table.text(frameAt) != "local");
        KIV_RAWINFO raw{};
        readReadings(table, raw);
        KIV_INFO info;
        sensor->updateKIVData(raw, info);

        ModelCheck& check = checks.back();
        ++check.cases;
        CaseComparison comparison(table, number, check);
        const float singles[singleColumns.size()] = {
            info.azimuth, info.elevation, info.levelX, info.levelY, info.rx,
            info.ry,      info.rz,        info.qvc[0], info.qvc[1], info.qvc[2]};
        for (std::size_t i = 0; i < singleColumns.size(); ++i)
            comparison.compare(quantityOfSingle(i), singleAt + i, singleColumns[i], singles[i]);
        const double* m = reportsOwnMatrix(mode) ? SensorAccess::transform(*sensor)
                                                 : SensorAccess::result(*sensor);
        for (std::size_t i = 0; i < matrixColumns.size(); ++i)
            comparison.compare(matrixEntries, matrixAt + i, matrixColumns[i], m[i]);
    }
    return checks;
}

} // namespace kiv::host
