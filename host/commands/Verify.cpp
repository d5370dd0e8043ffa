#include "host/commands/Verify.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <vector>

#include "host/base/Files.h"
#include "support/Numbers.h"
#include "support/VersionText.h"

namespace kiv::host {

namespace {

constexpr std::size_t models = 5;
constexpr std::array<std::string_view, comparedCount> comparedNames{"readings", "matrix", "angles",
                                                                    "QVC"};

using Cells = std::array<std::string, 4 + comparedCount>;

void appendLine(std::string& text, const Cells& cells) {
    constexpr std::array<std::size_t, 4 + comparedCount> widths{14, 13, 7, 9, 10, 9, 9, 0};
    for (std::size_t i = 0; i < cells.size(); ++i)
        text.append(cells[i]).append(std::max(widths[i], cells[i].size()) - cells[i].size(), ' ');
    text += '\n';
}

// As 4.4e-16, so that columns line up.
std::string sizeText(double size) {
    char digits[32];
    const auto [end, error] =
        std::to_chars(digits, digits + sizeof digits, size, std::chars_format::scientific, 1);
    return {digits, end};
}

std::string modesText(const ModelCheck& check) {
    std::string text;
    for (const int mode : check.mountModes)
        text.append(text.empty() ? "" : ", ").append(std::to_string(mode));
    return text;
}

// Matrices are double precision, all else is single.
std::string valueText(std::size_t compared, double value) {
    return compared == matrixEntries ? shown(value) : shown(static_cast<float>(value));
}

void appendCheck(std::string& text, const ModelCheck& check) {
    Cells cells{std::string(check.model), modesText(check), std::to_string(check.cases),
                check.good() ? "good" : "WRONG"};
    for (std::size_t i = 0; i < comparedCount; ++i)
        cells[4 + i] = sizeText(check.largest[i].size);
    appendLine(text, cells);
    for (std::size_t i = 0; i < comparedCount; ++i)
        if (const Difference& d = check.largest[i]; d.size > allowedDifference[i])
            text.append("  case ")
                .append(std::to_string(d.caseNumber))
                .append(": expected ")
                .append(d.column)
                .append(" ")
                .append(valueText(i, d.expected))
                .append(", found ")
                .append(valueText(i, d.found))
                .append("\n");
}

} // namespace

int verifyInstallation(const VerifyOptions& options, const Streams& streams,
                       const ReferenceData& data) {
    Output output;
    if (!output.openWhole(options.output, streams))
        return unusable;
    const std::vector<ModelCheck> checks = checkModels(data);
    const bool good =
        checks.size() == models
        && std::all_of(checks.begin(), checks.end(), [](const ModelCheck& c) { return c.good(); });

    std::string& text = output.text();
    text.append("kiv ").append(versionText);
    text += ", built for " KIV_BUILT_FOR
            "\nLargest differences to the reference cases, readings and angles in degrees:\n\n";
    Cells heading{"model", "mount modes", "cases", "verdict"};
    Cells allowed{"allowed"};
    for (std::size_t i = 0; i < comparedCount; ++i) {
        heading[4 + i] = comparedNames[i];
        allowed[4 + i] = sizeText(allowedDifference[i]);
    }
    appendLine(text, heading);
    for (const ModelCheck& check : checks)
        appendCheck(text, check);
    appendLine(text, allowed);
    const char* verdict = good ? "This installation computes what it should.\n"
                               : "This installation does not compute what it should.\n";
    text.append("\n").append(verdict);
    if (!output.finish(streams.err))
        return unusable;
    if (options.output != "-")
        streams.err << verdict;
    return good ? allGood : resultsDiffer;
}

} // namespace kiv::host
