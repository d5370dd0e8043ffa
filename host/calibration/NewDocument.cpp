#include "host/calibration/NewDocument.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "KIVInterface/CKivPrm.h"
#include "host/calibration/Prediction.h"
#include "params/BlockNames.h"
#include "params/CalibratedValues.h"
#include "params/Parser.h"
#include "params/Printer.h"
#include "params/RecordLoading.h"
#include "support/Numbers.h"
#include "support/platform/ByteSink.h"

namespace kiv::host {

namespace {

// The number that a single-precision one is in print.
double printed(float number) {
    return numberIn<double>(shown(number)).value_or(number);
}

void changeTable(Block block, BlockValues& table, const double* sizes, double lowest,
                 double highest) {
    for (std::size_t i = 0; i < table.rows(); ++i) {
        float& value = table.numbers[2 * i + 1];
        double at = value;
        if (block == Block::azCalibration)
            at = table.numbers[2 * i];
        if (block == Block::elCalibration)
            at = std::clamp(std::remainder(static_cast<double>(table.numbers[2 * i]), 360.0),
                            lowest, highest);
        double changed = value;
        for (std::size_t form = 0; form < calibratedNamesOf(block).size(); ++form)
            changed += sizes[form] * tableForm(block, form, at);
        value = static_cast<float>(changed);
    }
}

} // namespace

void setIn(Document& document, std::vector<CalibrationOutcome::Found>& found, double lowest,
           double highest) {
    double turns[3] = {};
    std::map<Block, std::array<double, 4>> tables;
    bool turnedMatrix = false;
    for (CalibrationOutcome::Found& each : found) {
        const auto [block, place] = each.parameter;
        if (isMatrix(block)) {
            turns[place] = each.value;
            turnedMatrix = true;
            continue;
        }
        if (isTable(block)) {
            tables[block][place] = each.value;
            continue;
        }
        auto& number = document.blocks[static_cast<std::size_t>(block)]->numbers[place];
        number = static_cast<float>(each.value);
        each.value = printed(number);
        each.old = printed(static_cast<float>(each.old));
    }
    for (const auto& [block, sizes] : tables)
        changeTable(block, *document.blocks[static_cast<std::size_t>(block)], sizes.data(), lowest,
                    highest);
    if (!turnedMatrix)
        return;
    auto& numbers = document.blocks[static_cast<std::size_t>(Block::machineMatrix)]->numbers;
    PoseFrame::Rotation matrix;
    std::copy_n(numbers.begin(), 9, matrix.begin());
    matrix = turned(matrix, turns);
    std::transform(matrix.begin(), matrix.end(), numbers.begin(),
                   [](double entry) { return static_cast<float>(entry); });
}

void storeIn(CKivPrm& record, const Document& document) {
    ParsedFile parsed;
    parsed.document = document;
    RecordLoading::store(record, parsed);
}

std::string textOf(const Document& document) {
    TextSink sink;
    print(document, sink, Digits::shortest);
    return std::move(sink.text);
}

} // namespace kiv::host
