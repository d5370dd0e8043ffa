// The tool's binary as its users start it: the cases of tests/cli/cases.txt and the examples in
// docs/kiv.md.

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host/base/Files.h"
#include "tests/ParameterRecord.h"

namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

struct Command {
    std::string text;
    Lines input{};
    Lines output{};
    Lines errors{}; // of an example: empty, its output holds both
    Lines parts{};  // of the output, in place of its lines
    Lines noParts{};
    int code = 0;
};

// A copy of a file with a change, or a file of these lines.
struct File {
    std::string request;
    Lines lines;
};

struct Transcript {
    std::string name;
    std::vector<File> files;
    std::vector<Command> commands;
};

// Results are single precision, and C libraries differ in the last digit.
constexpr double computedNumber = 2e-6; // of a value, at least of 1

Lines linesIn(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(in) << file;
    Lines lines;
    for (std::string line; std::getline(in, line); lines.push_back(line))
        if (line.ends_with('\r'))
            line.pop_back();
    return lines;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

std::vector<Transcript> casesIn(const std::string& file) {
    std::vector<Transcript> cases;
    bool ofFile = false; // the lines of input
    std::vector<std::pair<std::string, std::string>> names{{"{tab}", "\t"},
                                                           {"{cr}", "\r"},
                                                           {"{bom}", "\xEF\xBB\xBF"},
                                                           {"{nbsp}", "\xC2\xA0"},
                                                           {"{narrow}", "\xE2\x80\xAF"}};
    for (std::string line : linesIn(file)) {
        for (const auto& [name, text] : names)
            line = replaced(line, name, text);
        const char kind = line.empty() ? ' ' : line[0];
        const std::size_t blank = line.find(' ');
        const std::string rest = blank < line.size() ? line.substr(blank + 1) : "";
        ofFile = kind == '@' || (ofFile && kind == '<');
        if (kind == '%')
            names.emplace_back('{' + rest.substr(0, rest.find(' ')) + '}',
                               rest.substr(rest.find(' ') + 1));
        else if (line.starts_with("## "))
            cases.push_back({rest, {}, {}});
        else if (kind == '@')
            cases.back().files.push_back({rest, {}});
        else if (kind == '$')
            cases.back().commands.push_back({.text = rest, .code = blank == 1 ? 0 : line[1] - '0'});
        else if (kind == '<')
            (ofFile ? cases.back().files.back().lines : cases.back().commands.back().input)
                .push_back(rest);
        else if (kind == '+')
            cases.back().commands.back().parts.push_back(rest);
        else if (kind == '-')
            cases.back().commands.back().noParts.push_back(rest);
        else if (kind == '>')
            cases.back().commands.back().output.push_back(rest);
        else if (kind == '!')
            cases.back().commands.back().errors.push_back(rest);
    }
    return cases;
}

// A fenced block that shows commands is one.
std::vector<Transcript> examplesIn(const std::string& file) {
    std::vector<Transcript> examples;
    bool fenced = false;
    std::size_t number = 0;
    for (const std::string& line : linesIn(file)) {
        ++number;
        if (line.starts_with("```")) {
            fenced = !fenced;
            if (fenced)
                examples.push_back({file + ':' + std::to_string(number), {}, {}});
        } else if (fenced && line.starts_with("$ ")) {
            examples.back().commands.push_back({.text = line.substr(2)});
        } else if (fenced && !examples.back().commands.empty()) {
            examples.back().commands.back().output.push_back(line);
        }
    }
    std::erase_if(examples, [](const Transcript& t) { return t.commands.empty(); });
    return examples;
}

std::size_t numberAt(std::string_view text, double& value) {
    const std::size_t sign = text.starts_with('-') ? 1 : 0;
    if (text.size() <= sign || !std::isdigit(static_cast<unsigned char>(text[sign])))
        return 0;
    return static_cast<std::size_t>(
        std::from_chars(text.data(), text.data() + text.size(), value).ptr - text.data());
}

bool sameLine(std::string_view expected, std::string_view found) {
    const bool open = expected.ends_with("...");
    expected.remove_suffix(open ? 3 : 0);
    while (!expected.empty()) {
        double a = 0;
        double b = 0;
        const std::size_t length = numberAt(expected, a);
        const std::size_t other = numberAt(found, b);
        const bool computed = expected.substr(0, length).find('.') != std::string::npos
                              || found.substr(0, other).find('.') != std::string::npos;
        if (length > 0 && other > 0 && computed) {
            if (!(std::abs(a - b) <= computedNumber * std::max(1.0, std::abs(a))))
                return false;
            expected.remove_prefix(length);
            found.remove_prefix(other);
        } else {
            if (found.empty() || expected.front() != found.front())
                return false;
            expected.remove_prefix(1);
            found.remove_prefix(1);
        }
    }
    return open || found.empty();
}

// From a line on, which becomes that of the part.
bool contain(const Lines& lines, std::size_t& from, const std::string& part) {
    for (std::size_t line = from; line < lines.size(); ++line) {
        const std::string_view text = lines[line];
        for (std::size_t at = 0; (at = text.find(part[0], at)) != text.npos; ++at)
            if (sameLine(part + "...", text.substr(at))) {
                from = line;
                return true;
            }
    }
    return false;
}

void compare(const char* stream, const Lines& expected, const Lines& found) {
    const bool open = !expected.empty() && expected.back().ends_with("...");
    std::size_t line = 0;
    while (line < std::min(expected.size(), found.size()) && sameLine(expected[line], found[line]))
        ++line;
    if (line == expected.size() && (open || line == found.size()))
        return;
    const auto shown = [&](const Lines& lines) {
        return line < lines.size() ? lines[line] : std::string("the end");
    };
    ADD_FAILURE() << stream << " line " << line + 1 << ": expected " << shown(expected)
                  << "\nfound " << shown(found);
}

// Before the current folder changes.
const std::string quotedTool = '"' + fs::absolute(KIV_TOOL).make_preferred().string() + '"';

// In the current folder.
void run(const Command& command, bool separateErrors) {
    SCOPED_TRACE("$ " + command.text);
    std::string line = replaced(command.text + ' ', "| kiv ", "| " + quotedTool + ' ');
    ASSERT_TRUE(line.starts_with("kiv "));
    line.replace(0, 3, quotedTool);
    if (line.find('|') == std::string::npos)
        line += "< stdin ";
    std::ofstream input("stdin", std::ios::binary);
    for (const std::string& text : command.input)
        input << text << '\n';
    input.close();

    // Neither shell takes it amiss when the first word is not in quotes. Wine now and then starts
    // no shell at all, which -1 tells.
    const std::string shellLine =
        "cd . && " + line + (separateErrors ? "> stdout 2> stderr" : "> stdout 2>&1");
    int status = -1;
    for (int i = 0; i < 3 && status == -1; ++i)
        status = std::system(shellLine.c_str());
    const int code = status > 255 ? status >> 8 : status; // POSIX: in the upper byte
    if (command.parts.empty() && command.noParts.empty())
        compare("standard output", command.output, linesIn("stdout"));
    std::size_t from = 0;
    for (const std::string& part : command.parts)
        EXPECT_TRUE(contain(linesIn("stdout"), from, part)) << part;
    for (const std::string& part : command.noParts)
        EXPECT_FALSE(contain(linesIn("stdout"), from = 0, part)) << part;
    if (!separateErrors) {
        EXPECT_LE(code, 1);
        return;
    }
    compare("standard error", command.errors, linesIn("stderr"));
    EXPECT_EQ(code, command.code);
}

void makeFile(const File& file) {
    std::istringstream words(file.request);
    std::string target;
    std::string source;
    std::string from;
    std::string to;
    words >> std::quoted(target) >> source >> from >> to;
    std::stringstream text;
    if (!source.empty())
        text << std::ifstream(source, std::ios::binary).rdbuf();
    for (const std::string& line : file.lines)
        text << line << '\n';
    std::string changed = text.str();
    ASSERT_NE(changed.find(from), std::string::npos) << file.request;
    changed.replace(changed.find(from), from.size(), to);
    const fs::path path = fs::absolute(kiv::host::pathOf(target));
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << changed;
}

void run(const std::vector<Transcript>& transcripts, bool separateErrors) {
    const fs::path home = fs::current_path();
    for (const Transcript& transcript : transcripts) {
        SCOPED_TRACE(transcript.name);
        const kiv::test::ParameterFolder folder;
        for (const char* name : {"Tg5.prm", "readings.csv", "known-poses.csv", "stations.csv"})
            fs::copy_file(fs::path(KIV_EXAMPLES) / name, fs::path(folder.path()) / name);
        fs::current_path(folder.path());
        fs::create_directory("new"); // for what a calibration writes
        for (const File& file : transcript.files)
            makeFile(file);
        for (const Command& command : transcript.commands)
            run(command, separateErrors);
        fs::current_path(home);
    }
}

TEST(Transcripts, Cases) {
    const auto cases = casesIn(KIV_CASES);
    EXPECT_GE(cases.size(), 10U);
    run(cases, true);
}

TEST(Transcripts, DocumentedExamples) {
    const auto examples = examplesIn(KIV_DOCS "/kiv.md");
    EXPECT_GE(examples.size(), 6U);
    run(examples, false);
}

} // namespace
