#include "host/parameters/ValueWarnings.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "host/base/Numbers.h"
#include "support/Principles.h"
#include "support/ZelUtil.h"

namespace kiv::host {

namespace {

constexpr double turn = 360;     // degrees
constexpr float mostAngle = 360; // degrees, of an encoder table, either way
constexpr int lastMountMode = 11;

// Of M times its transpose from the identity: entries in print have six decimals.
constexpr double rotationTolerance = 1e-5;

std::string inRow(float value, std::size_t row) {
    return shown(value) + " in row " + std::to_string(row + 1);
}

double determinant(const double (&m)[9]) {
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6])
           + m[2] * (m[3] * m[7] - m[4] * m[6]);
}

// The largest entry of M times its transpose less the identity.
double departureFromRotation(const double (&m)[9]) {
    double largest = 0;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            const double product =
                std::inner_product(m + 3 * i, m + 3 * i + 3, m + 3 * j, i == j ? -1.0 : 0.0);
            largest = std::max(largest, std::abs(product));
        }
    return largest;
}

// The first thing of a kind is reported, the others are counted.
struct Faults {
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
    void checkAngles(const BlockValues& values);
    void checkKnots(const BlockValues& values);
    void checkLimits(const BlockValues& values);
    void checkMatrix(const BlockValues& values);
    void checkMode(const BlockValues& values);
    void checkGains(const BlockValues& values);

    bool isRead(Block block) const;
    std::optional<int> mountMode() const; // where it is there and can be read
    bool limitsCount() const;
    std::string title() const { return '"' + std::string(layout->title) + '"'; }
    // number: which of the block's, in the order of the text.
    void warn(std::size_t number, std::string expected, std::string found);
    void warn(const Faults& faults, std::string expected);

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
        if (layout->block == Block::scaleFactor)
            checkGains(*values);
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

void ValueCheck::checkAngles(const BlockValues& values) {
    struct Row {
        double turned; // into one turn
        std::size_t index;
    };
    std::vector<Row> rows(values.rows());
    const auto angle = [&](const Row& row) { return values.numbers[2 * row.index]; };
    const auto correction = [&](const Row& row) { return values.numbers[2 * row.index + 1]; };

    Faults far;
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
    Faults repeated;
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
}

void ValueCheck::checkKnots(const BlockValues& values) {
    const auto knot = [&](std::size_t row) { return values.numbers[2 * row]; };
    const bool falling = knot(values.rows() - 1) < knot(0);
    Faults turned;
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
    const double departure = departureFromRotation(m);
    if (!MatrixInverse(inverse, 3)) {
        warn(0, "a matrix that has an inverse in " + title(), "a singular one");
    } else if (departure > rotationTolerance) {
        std::string found = "rows that miss length 1 and right angles by ";
        appendRounded(found, departure, 2);
        warn(0, "a rotation in " + title(), std::move(found));
    } else if (determinant(m) < 0) {
        warn(0, "a rotation in " + title(), "a reflection (determinant -1)");
    }
}

void ValueCheck::checkMode(const BlockValues& values) {
    if (values.integer < 1 || values.integer > lastMountMode)
        warn(0,
             "a mount mode from 1 to " + std::to_string(lastMountMode) + " in " + title()
                 + ", as any other runs as a pendulum",
             std::to_string(values.integer));
}

void ValueCheck::checkGains(const BlockValues& values) {
    constexpr std::size_t first = 4;
    constexpr const char* readings[] = {"the azimuth", "the elevation", "level Y"};
    const std::optional<int> mode = mountMode();
    if (!mode || principleOf(*mode) != Principle::pendulum)
        return;
    for (std::size_t i = 0; i < std::size(readings); ++i)
        if (const float gain = values.numbers[first + i]; gain == 0)
            warn(first + i,
                 std::string("a gain of ") + readings[i] + " other than 0 in " + title()
                     + ", as a pendulum leaves it out",
                 shown(gain));
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

void ValueCheck::warn(const Faults& faults, std::string expected) {
    if (faults.count == 0)
        return;
    const std::string others =
        faults.count > 1 ? " and " + std::to_string(faults.count - 1) + " more" : "";
    warn(1 + 2 * faults.row, std::move(expected), faults.found + others);
}

} // namespace

std::vector<Finding> valueWarnings(const ParsedFile& file, const Survey& survey) {
    ValueCheck check(file, survey);
    check.checkAll();
    return std::move(check.warnings);
}

} // namespace kiv::host
