#include "params/ValueWarnings.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <utility>

#include "params/Quoted.h"
#include "params/TableOutliers.h"
#include "support/AngleConstants.h"
#include "support/Numbers.h"
#include "support/Principles.h"
#include "support/RotationCheck.h"
#include "support/ZelUtil.h"

namespace kiv {

namespace {

constexpr double turn = 360;     // degrees
constexpr float mostAngle = 360; // degrees, of an encoder table, either way

constexpr double leastTurn = 1; // degrees, of a table that has an effect
constexpr double parallel = 5;  // degrees, between two levels' axes

std::string inRow(float value, std::size_t row) {
    return shown(value) + " in row " + std::to_string(row + 1);
}

// The first thing of a kind is reported, the others are counted.
struct FaultyRows {
    std::size_t count = 0;
    std::size_t row = 0;
    std::string found;

    void add(std::size_t at, std::string text) {
        if (count++ > 0)
            return;
        row = at;
        found = std::move(text);
    }
};

class ValueCheck {
public:
    ValueCheck(const ParsedFile& parsed, const Survey& asked) : file(parsed), survey(asked) {}

    void checkAll();

    std::vector<Finding> warnings;

private:
    bool checkCount();
    void checkOffsets(const BlockValues& values);
    void checkAngles(const BlockValues& values);
    void checkKnots(const BlockValues& values);
    void checkLimits(const BlockValues& values);
    void checkMatrix(const BlockValues& values);
    void checkMode(const BlockValues& values);
    void checkEffects(const BlockValues& values);
    void checkGains(const BlockValues& values);
    void checkThermalFactors(const BlockValues& values);
    void checkTurn(const BlockValues& values);
    void checkCurve(const BlockValues& values);
    void checkLevel(const BlockValues& values);

    void warnOfZero(const BlockValues& values, std::size_t number, const char* reading);
    bool levelIsRead(bool x) const;
    bool isRead(Block block) const;
    std::optional<int> mountMode() const; // where it is there and can be read
    bool limitsCount() const;
    std::string title() const { return inQuotes(layout->title); }
    // number: which of the block's, in the order of the text.
    void warn(std::size_t number, std::string expected, std::string found);
    void warn(const FaultyRows& faults, std::string expected);

    const ParsedFile& file;
    const Survey& survey;
    const BlockLayout* layout = nullptr;
};

void ValueCheck::checkAll() {
    for (const BlockLayout& blockLayout : blockTable) {
        layout = &blockLayout;
        const BlockValues* values = file.document.find(layout->block);
        if (!values || values->defaulted)
            continue;
        const bool tilt = layout->kind == BlockKind::tiltTable;
        const bool encoder = layout->kind == BlockKind::encoderTable;
        const bool countFits = (!tilt && !encoder) || checkCount();
        if (!countFits || !isRead(layout->block))
            continue;
        if (layout->block == Block::angleOffset)
            checkOffsets(*values);
        if (encoder)
            checkAngles(*values);
        if (tilt) {
            checkKnots(*values);
            if (limitsCount())
                checkLimits(*values);
        }
        if (layout->block == Block::localMatrix || layout->block == Block::machineMatrix)
            checkMatrix(*values);
        if (layout->block == Block::mountingMode)
            checkMode(*values);
        if (mountMode())
            checkEffects(*values);
    }
}

// Of values in the place where the model of the mount mode reads them.
void ValueCheck::checkEffects(const BlockValues& values) {
    switch (layout->block) {
    case Block::scaleFactor:
        return checkGains(values);
    case Block::thermalFactor:
        return checkThermalFactors(values);
    case Block::tiltXCalibration:
    case Block::tiltYCalibration:
        if (levelIsRead(layout->block == Block::tiltXCalibration)) {
            checkTurn(values);
            checkCurve(values);
        }
        return;
    case Block::levelX:
    case Block::levelY:
        return checkLevel(values);
    default:
        return;
    }
}

// Where nothing but numbers stands up to the next title (in a tilt table also its closing word),
// they tell how many rows there are.
bool ValueCheck::checkCount() {
    const std::size_t index = static_cast<std::size_t>(layout->block);
    const BlockValues& values = *file.document.blocks[index];
    const bool tilt = layout->kind == BlockKind::tiltTable;
    const Survey::Extent& own = survey.extents[index];
    const Survey::Extent& next = survey.extents[index + 1];
    const bool wordIsNumber = numberIn<float>(values.word).has_value();
    const std::size_t words = next.wordsBefore + (tilt && !wordIsNumber);
    const std::size_t numbers =
        own.numbers.size() - 1 + next.numbersBefore + (tilt && wordIsNumber);
    const std::size_t behindRows = tilt ? values.trailing.size() + (words == 0) : 0;
    const auto& following = file.document.blocks[index + 1];
    if (!following || following->defaulted || words > (tilt ? 1 : 0) || numbers < behindRows
        || (numbers - behindRows) % 2 != 0)
        return true;
    const std::size_t rows = (numbers - behindRows) / 2;
    if (rows == static_cast<std::size_t>(values.integer))
        return true;
    warn(0, "a count of " + std::to_string(rows) + ", as " + title() + " has so many rows",
         std::to_string(values.integer));
    return false;
}

void ValueCheck::checkOffsets(const BlockValues& values) {
    for (std::size_t i = 0; i < 2; ++i)
        if (std::abs(values.numbers[i]) > mostAngle)
            warn(i, "offsets from -360 to 360 degrees in " + title(), shown(values.numbers[i]));
}

void ValueCheck::checkAngles(const BlockValues& values) {
    struct Row {
        double turned; // into one turn
        std::size_t index;
    };
    std::vector<Row> rows(values.rows());
    const auto angle = [&](const Row& row) { return values.numbers[2 * row.index]; };
    const auto correction = [&](const Row& row) { return values.numbers[2 * row.index + 1]; };

    FaultyRows far;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].index = i;
        const double degrees = angle(rows[i]);
        rows[i].turned = degrees - turn * std::floor(degrees / turn);
        if (std::abs(angle(rows[i])) > mostAngle)
            far.add(i, inRow(angle(rows[i]), i));
    }
    warn(far, "angles from -360 to 360 degrees in " + title());

    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row& a, const Row& b) { return a.turned < b.turned; });
    FaultyRows repeated;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const Row& row = rows[i];
        const Row& before = rows[i - 1];
        if (row.turned != before.turned)
            continue;
        // A table may close the turn.
        if (angle(row) == angle(before) || correction(row) != correction(before))
            repeated.add(row.index, inRow(angle(row), row.index) + " after "
                                        + inRow(angle(before), before.index));
    }
    warn(repeated, "each angle of a turn once in " + title());

    std::vector<float> corrections(rows.size());
    std::transform(rows.begin(), rows.end(), corrections.begin(), correction);
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (isOutlier(corrections, i))
            warn(2 + 2 * rows[i].index,
                 "corrections of the size of those around them in " + title(),
                 inRow(corrections[i], rows[i].index));
}

void ValueCheck::checkKnots(const BlockValues& values) {
    const auto knot = [&](std::size_t row) { return values.numbers[2 * row]; };
    const bool falling = knot(values.rows() - 1) < knot(0);
    FaultyRows turned;
    for (std::size_t row = 1; row < values.rows(); ++row)
        if (!(falling ? knot(row) < knot(row - 1) : knot(row) > knot(row - 1)))
            turned.add(row, inRow(knot(row), row) + " after " + shown(knot(row - 1)));
    warn(turned, std::string("knots that ") + (falling ? "fall" : "rise") + " from row to row in "
                     + title());
}

void ValueCheck::checkLimits(const BlockValues& values) {
    float first = values.numbers[0];
    float last = first;
    for (std::size_t row = 0; row < values.rows(); ++row) {
        first = std::min(first, values.numbers[2 * row]);
        last = std::max(last, values.numbers[2 * row]);
    }
    const std::size_t low = 1 + values.numbers.size();
    if (values.trailing[0] > values.trailing[1])
        warn(low, "a low level limit not above the high one in " + title(),
             shown(values.trailing[0]) + " and " + shown(values.trailing[1]));
    for (std::size_t i = 0; i < 2; ++i) {
        const float limit = values.trailing[i];
        if (limit < first || limit > last)
            warn(low + i,
                 "a level limit within the knots of " + title() + ", " + shown(first) + " to "
                     + shown(last),
                 shown(limit));
    }
}

void ValueCheck::checkMatrix(const BlockValues& values) {
    double m[9];
    double inverse[9];
    std::copy_n(values.numbers.begin(), 9, m);
    std::copy_n(m, 9, inverse);
    const auto [departure, stretch, determinant] = checkRotation(m);
    if (!MatrixInverse(inverse, 3)) {
        warn(0, "a matrix that has an inverse in " + title(), "a singular one");
    } else if (departure > rotationTolerance) {
        warn(0, "a rotation in " + title(),
             "rows that miss length 1 and right angles by " + roundedText(departure, 2));
    } else if (determinant < 0) {
        warn(0, "a rotation in " + title(), "a reflection (determinant -1)");
    }
}

void ValueCheck::checkMode(const BlockValues& values) {
    if (!hasModel(values.integer))
        warn(0,
             "a mount mode from 1 to " + std::to_string(lastMountMode) + " in " + title()
                 + ", as any other runs as a pendulum",
             std::to_string(values.integer));
}

// What a value of 0 leaves out of the model's computation.
void ValueCheck::warnOfZero(const BlockValues& values, std::size_t number, const char* reading) {
    if (values.numbers[number] == 0)
        warn(number,
             std::string("a gain of ") + reading + " other than 0 in " + title()
                 + ", as it leaves the reading out",
             shown(values.numbers[number]));
}

void ValueCheck::checkGains(const BlockValues& values) {
    if (!traitsOf(principleOf(*mountMode())).readingGains)
        return;
    constexpr const char* readings[] = {"the azimuth", "the elevation", "level Y"};
    for (std::size_t i = 0; i < std::size(readings); ++i)
        warnOfZero(values, 4 + i, readings[i]);
}

void ValueCheck::checkThermalFactors(const BlockValues& values) {
    for (std::size_t level = 0; level < 2; ++level) {
        const std::size_t slope = 2 * level;
        if (levelIsRead(level == 0) && values.numbers[slope] == 0 && values.numbers[slope + 1] == 0)
            warn(slope,
                 std::string("a slope or an intercept of level ") + (level == 0 ? 'X' : 'Y')
                     + " other than 0 in " + title() + ", as both leave the reading out",
                 "0 and 0");
    }
}

void ValueCheck::checkTurn(const BlockValues& values) {
    if (values.rows() == 0)
        return;
    float least = values.numbers[1];
    float most = least;
    for (std::size_t row = 0; row < values.rows(); ++row) {
        least = std::min(least, values.numbers[2 * row + 1]);
        most = std::max(most, values.numbers[2 * row + 1]);
    }
    if (!(static_cast<double>(most) - least >= leastTurn))
        warn(2, "tilts that differ by a degree or more in " + title(),
             shown(least) + " to " + shown(most));
}

void ValueCheck::checkCurve(const BlockValues& values) {
    const auto outlier = curveOutlier(values.numbers);
    if (!outlier)
        return;
    warn(2 + 2 * outlier->row,
         "a tilt of about " + roundedText(outlier->expected, 3)
             + ", on the curve of the other rows, in " + title(),
         inRow(values.numbers[2 * outlier->row + 1], outlier->row));
}

// The level axes of the three-vector models.
void ValueCheck::checkLevel(const BlockValues& values) {
    constexpr std::size_t gain = 6;
    const int axes = traitsOf(principleOf(*mountMode())).levelAxes;
    const bool first = layout->block == Block::levelX;
    if (axes == 2 || (axes == 1 && first))
        warnOfZero(values, gain, axes == 2 && first ? "level X" : "level Y");
    const BlockValues* other = file.document.find(Block::levelX);
    if (axes != 2 || first || !other || !isRead(Block::levelX))
        return;
    const auto direction = [](const BlockValues& level) { return level.numbers[3] * degToRad; };
    // A level axis' azimuth is that of a line: it has no sense.
    const double apart =
        std::abs(std::remainder(direction(values) - direction(*other), 2 * halfPi)) * radToDeg;
    if (apart < parallel)
        warn(3, "axes of the two levels 5 degrees or more apart in " + title(),
             roundedText(apart, 2) + " degrees");
}

// Where the mode is there and can be read.
bool ValueCheck::levelIsRead(bool x) const {
    return !x || traitsOf(principleOf(*mountMode())).levelX;
}

bool ValueCheck::isRead(Block block) const {
    return std::none_of(file.outcome.unread.begin(), file.outcome.unread.end(),
                        [&](const Finding& f) { return f.block == block; });
}

std::optional<int> ValueCheck::mountMode() const {
    const BlockValues* mode = file.document.find(Block::mountingMode);
    return mode && isRead(Block::mountingMode) ? std::optional(mode->integer) : std::nullopt;
}

bool ValueCheck::limitsCount() const {
    const std::optional<int> mode = mountMode();
    return layout->block != Block::tiltXCalibration || !mode
           || !traitsOf(principleOf(*mode)).tiltXUnlimited;
}

void ValueCheck::warn(std::size_t number, std::string expected, std::string found) {
    const auto& places = survey.extents[static_cast<std::size_t>(layout->block)].numbers;
    warnings.push_back({layout->block, places[number].line, places[number].column,
                        std::move(expected), std::move(found)});
}

void ValueCheck::warn(const FaultyRows& faults, std::string expected) {
    if (faults.count == 0)
        return;
    const std::string others =
        faults.count > 1 ? " and " + std::to_string(faults.count - 1) + " more" : "";
    warn(1 + 2 * faults.row, std::move(expected), faults.found + others);
}

} // namespace

std::vector<Finding> warningsIn(const ParsedFile& file, const Survey& survey) {
    ValueCheck check(file, survey);
    check.checkAll();
    std::vector<Finding> warnings = std::move(check.warnings);
    for (const auto& further : {survey.textBehind, survey.openEnd})
        if (further)
            warnings.push_back(*further);
    std::stable_sort(warnings.begin(), warnings.end(), [](const Finding& a, const Finding& b) {
        return std::tie(a.line, a.column) < std::tie(b.line, b.column);
    });
    return warnings;
}

} // namespace kiv
