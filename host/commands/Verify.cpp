#include "host/commands/Verify.h"

#include <algorithm>
#include <charconv>

#include "host/Files.h"
#include "host/tables/Numbers.h"
#include "host/verify/ReferenceCases.h"

namespace kiv::host {

namespace {

constexpr std::size_t models = 5;
constexpr std::size_t width = 11; // of a column of numbers

// As 4.4e-16.
std::string sizeText(double size) {
    char digits[32];
    return {
        digits,
        std::to_chars(digits, digits + sizeof digits, size, std::chars_format::scientific, 1).ptr};
}

void appendCells(std::string& text, const std::string& model, const std::string& modes,
                 const std::string& cases, const std::string& verdict) {
    for (const auto& [cell, size] :
         {std::pair(model, 14), std::pair(modes, 13), std::pair(cases, 7), std::pair(verdict, 9)}) {
        text += cell;
        text.append(static_cast<std::size_t>(size) - cell.size(), ' ');
    }
}

// One for each quantity.
template <typename Text>
void appendSizes(std::string& text, Text textOf) {
    for (std::size_t i = 0; i < quantities.size(); ++i) {
        const std::string cell = textOf(i);
        text += cell;
        if (i + 1 < quantities.size())
            text.append(width - cell.size(), ' ');
    }
    text += '\n';
}

std::string modesText(const ModelCheck& check) {
    std::string text;
    for (const int mode : check.mountModes)
        text.append(text.empty() ? "" : ", ").append(std::to_string(mode));
    return text;
}

// Matrices are double precision, all else is single.
std::string valueText(std::size_t quantity, double value) {
    return quantities[quantity].name == "matrix" ? shown(value) : shown(static_cast<float>(value));
}

void appendCheck(std::string& text, const ModelCheck& check) {
    appendCells(text, std::string(check.model), modesText(check), std::to_string(check.cases),
                check.good() ? "good" : "WRONG");
    appendSizes(text, [&](std::size_t i) { return sizeText(check.largest[i].size); });
    for (std::size_t i = 0; i < quantities.size(); ++i)
        if (const Difference& d = check.largest[i]; d.size > quantities[i].bound)
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

int verifyInstallation(const VerifyOptions& options, const Streams& streams) {
    Output output;
    if (!output.open(options.output, streams))
        return unusable;
    const std::vector<ModelCheck> checks = checkModels(streams.err);
    const bool good =
        checks.size() == models
        && std::all_of(checks.begin(), checks.end(), [](const ModelCheck& c) { return c.good(); });

    std::string& text = output.text();
    text += "kiv " KIV_VERSION ", built for " KIV_BUILT_FOR "\n";
    text +=
        "Largest differences to the reference cases: corrected readings and angles in degrees\n\n";
    appendCells(text, "model", "mount modes", "cases", "verdict");
    appendSizes(text, [](std::size_t i) { return std::string(quantities[i].name); });
    for (const ModelCheck& check : checks)
        appendCheck(text, check);
    appendCells(text, "allowed", "", "", "");
    appendSizes(text, [](std::size_t i) { return sizeText(quantities[i].bound); });
    text += good ? "\nThis installation computes what it should.\n"
                 : "\nThis installation does not compute what it should.\n";
    if (!output.finish(streams.err))
        return unusable;
    return good ? allGood : resultsDiffer;
}

} // namespace kiv::host
