#include "host/check/TableText.h"

#include <algorithm>
#include <ostream>

#include "host/check/TableCheck.h"
#include "host/mistakes/MistakeText.h"
#include "host/witnesses/WitnessJson.h"
#include "params/Quoted.h"
#include "support/Numbers.h"
#include "support/Principles.h"

namespace kiv::host {

namespace {

// A median is known to a thousandth.
constexpr int stepDigits = 3;

using Json = nlohmann::ordered_json;

std::string counted(std::size_t count, const char* noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

std::string padded(std::string text, std::size_t width) {
    text.insert(text.size(), width - std::min(width, text.size()), ' ');
    return text;
}

void printNames(const char* title, const std::vector<std::string>& names, std::ostream& out) {
    if (names.empty())
        return;
    out << title;
    for (const std::string& name : names)
        out << (&name == &names.front() ? "" : ", ") << printable(name);
    out << '\n';
}

std::string stampText(const TableCheck& check, TimeStamp time) {
    return check.timeOfDay ? timeStampText(time) : shown(time.seconds);
}

void printTime(const TableCheck& check, std::ostream& out) {
    if (check.timeColumn.empty())
        return;
    const TimeSteps& time = check.time;
    out << printable(check.timeColumn) << ": ";
    if (time.count() == 0) {
        out << "no row has one\n";
        return;
    }
    out << stampText(check, time.first()) << " to " << stampText(check, time.last()) << ", step "
        << roundedText(time.step(), stepDigits) << " s, " << counted(time.gaps(), "gap");
    if (time.gaps() > 0)
        out << ", the longest of " << roundedText(time.longest(), 9) << " s in front of line "
            << time.longestLine();
    out << '\n';
}

Json namesOf(const std::vector<std::string>& names) {
    return names.empty() ? Json::array() : Json(names);
}

Json countsOf(const Summary& summary) {
    Json states;
    for (std::size_t i = 0; i < rowStateNames.size(); ++i)
        states[rowStateNames[i]] = summary.count(static_cast<RowState>(i));
    return states;
}

// By the digits that a table has of it.
Json numberOf(float value) {
    return *numberIn<double>(shown(value));
}

Json timeOf(const TableCheck& check) {
    const TimeSteps& time = check.time;
    if (time.count() == 0)
        return {};
    const auto stamp = [&](TimeStamp of) {
        return check.timeOfDay ? Json(timeStampText(of)) : Json(of.seconds);
    };
    return {{"column", check.timeColumn},
            {"first", stamp(time.first())},
            {"last", stamp(time.last())},
            {"step_s", *numberIn<double>(roundedText(time.step(), stepDigits))},
            {"gaps", time.gaps()},
            {"longest_step_s", *numberIn<double>(roundedText(time.longest(), 9))},
            {"longest_step_line", time.longestLine()},
            {"repeated", time.repeated()},
            {"backwards", time.backwards()}};
}

} // namespace

void print(const TableCheck& check, std::ostream& out) {
    out << check.file << " with " << check.parameterFile << ", mount mode " << check.mountMode
        << ", " << modelName(check.mountMode) << '\n';
    check.summary.printCounts(out);
    printNames("read: ", check.columnsRead, out);
    printNames("not read: ", check.columnsNotRead, out);
    printTime(check, out);
    for (std::size_t i = 0; i < check.ranges.size(); ++i)
        if (check.ranges[i].there())
            out << padded(
                std::string(readingColumns[static_cast<std::size_t>(TableCheck::ranged[i])]), 16)
                << padded(shown(check.ranges[i].least), 13) << " to "
                << shown(check.ranges[i].largest) << '\n';
    if (check.mistakes)
        print(*check.mistakes, out);
    out << check.file << ": " << (check.faulty(false) ? "not good, " : "")
        << counted(check.warnings(), "warning") << '\n';
}

Json jsonOf(const TableCheck& check) {
    const Summary& summary = check.summary;
    Json ranges = Json::object();
    for (std::size_t i = 0; i < check.ranges.size(); ++i)
        if (check.ranges[i].there())
            ranges[readingColumns[static_cast<std::size_t>(TableCheck::ranged[i])]] = {
                {"least", numberOf(check.ranges[i].least)},
                {"largest", numberOf(check.ranges[i].largest)}};
    return {{"file", check.file},
            {"parameter_file", check.parameterFile},
            {"mount_mode", check.mountMode},
            {"rows", summary.rows()},
            {"blank_rows", summary.blankRows()},
            {"may_be_cut", summary.cutRows()},
            {"states", countsOf(summary)},
            {"columns_read", namesOf(check.columnsRead)},
            {"columns_not_read", namesOf(check.columnsNotRead)},
            {"ranges", ranges},
            {"time", timeOf(check)},
            {"witnesses", jsonOf(check.witnesses, {check.file})},
            {"setup", check.mistakes ? jsonOfSetup(*check.mistakes) : Json()},
            {"mistakes", check.mistakes ? jsonOfMistakes(*check.mistakes) : Json::array()}};
}

} // namespace kiv::host
