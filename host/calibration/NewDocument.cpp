#include "host/calibration/NewDocument.h"

#include <algorithm>

#include "KIVInterface/CKivPrm.h"
#include "host/calibration/Prediction.h"
#include "params/BlockNames.h"
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

} // namespace

void setIn(Document& document, std::vector<CalibrationOutcome::Found>& found) {
    double turns[3] = {};
    bool turnedMatrix = false;
    for (CalibrationOutcome::Found& each : found) {
        const auto [block, place] = each.parameter;
        if (isMatrix(block)) {
            turns[place] = each.value;
            turnedMatrix = true;
            continue;
        }
        auto& number = document.blocks[static_cast<std::size_t>(block)]->numbers[place];
        number = static_cast<float>(each.value);
        each.value = printed(number);
        each.old = printed(static_cast<float>(each.old));
    }
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
