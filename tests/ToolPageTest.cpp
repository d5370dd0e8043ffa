// The pages in docs, from which --help and the man pages are made, name what the tool knows.

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "host/base/Sha256.h"
#include "host/commandline/CommandLine.h"
#include "host/commandline/HelpTexts.h"
#include "host/rows/ResultColumns.h"
#include "tests/ParameterRecord.h"
#include "tests/ToolRunner.h"
#include "uncertainty/Trust.h"

namespace {

using namespace kiv;
using namespace kiv::host;

using Options = std::map<std::string, std::string>; // a value is called VALUE; description

// Those of a page as --help shows it: with the ones that it shares.
Options optionsOf(const std::string& command) {
    Options options;
    std::string* item = nullptr;
    bool inside = false;
    const std::regex term("  (\\S+?(?:, \\S+?)*)( [A-Z,]+)?(?: +(.*))?");
    std::smatch match;
    for (const std::string& line : test::lines(std::string(helpText(command)))) {
        if (!line.empty() && line[0] != ' ')
            inside = line == "Options" || (inside && line.ends_with(':'));
        else if (inside && item && line.starts_with("            "))
            *item += line.substr(11);
        else if (inside && std::regex_match(line, match, term)) {
            item = &options[match.str(1) + (match[2].matched ? " VALUE" : "")];
            *item = ' ' + match.str(3);
        }
    }
    return options;
}

std::string termFor(const CLI::Option& option) {
    std::string term;
    if (option.get_positional()) {
        for (const char c : option.get_name())
            term += static_cast<char>(std::toupper(c));
        return term;
    }
    for (const std::string& name : option.get_snames())
        term += (term.empty() ? "-" : ", -") + name;
    for (const std::string& name : option.get_lnames())
        term += (term.empty() ? "--" : ", --") + name;
    return term + (option.get_items_expected_max() > 0 ? " VALUE" : "");
}

TEST(ToolPage, NamesEverySubcommandAndOption) {
    CommandLine line;
    std::vector<CLI::App*> commands = line.app.get_subcommands({});
    commands.push_back(&line.app);
    for (const CLI::App* command : commands) {
        SCOPED_TRACE(command->get_name());
        const Options options = optionsOf(command->get_name());
        EXPECT_TRUE(command == &line.app
                    || helpText("kiv").find("\n  " + command->get_name() + ' ')
                           != std::string_view::npos);

        std::set<std::string> known;
        for (const CLI::Option* option : command->get_options({})) {
            const std::string term = termFor(*option);
            known.insert(term);
            const auto described = options.find(term);
            if (described == options.end()) {
                ADD_FAILURE() << "not on the page: " << term;
                continue;
            }
            const std::string standard = option->get_default_str();
            EXPECT_TRUE(standard.empty()
                        || described->second.ends_with("(default " + standard + ")."))
                << term << described->second;
        }
        for (const auto& [term, description] : options)
            EXPECT_TRUE(known.count(term)) << "on the page alone: " << term;
    }
}

TEST(ToolPage, ShortHelpFitsAScreenAndNamesWhatThereIs) {
    CommandLine line;
    std::vector<CLI::App*> commands = line.app.get_subcommands({});
    commands.push_back(&line.app);
    const std::regex word("--[a-z][a-z-]*");
    for (const CLI::App* command : commands) {
        SCOPED_TRACE(command->get_name());
        const std::string text(shortHelpText(command->get_name()));
        const std::vector<std::string> shown = test::lines(text);
        EXPECT_GT(shown.size(), 4U);
        EXPECT_LE(shown.size(), 45U);
        for (const std::string& each : shown)
            EXPECT_LE(each.size(), 80U) << each;
        std::string known;
        for (const auto& [term, description] : optionsOf(command->get_name()))
            known += term + ' ';
        for (std::sregex_iterator at(text.begin(), text.end(), word), end; at != end; ++at)
            EXPECT_NE((known + "--help ").find(at->str() + ' '), std::string::npos) << at->str();
    }
}

// In one line, with single blanks.
std::string flatFile(const std::string& path) {
    std::ifstream file(path);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    return std::regex_replace(text, std::regex("\\s+"), " ");
}

TEST(ToolPage, ReadmeHasTheMinimalHost) {
    const std::string host = flatFile(KIV_EXAMPLES "/minimal_host.cpp");
    EXPECT_FALSE(host.empty());
    EXPECT_NE(flatFile(KIV_SOURCES "/README.md").find(host), std::string::npos);
}

TEST(ToolPage, NamesEveryColumnOfReadings) {
    const std::string readings =
        test::tool({"simulate", KIV_EXAMPLES "/Tg5.prm", "--rows", "2"}).out;
    const std::string page = flatFile(KIV_DOCS "/tables.md");
    std::istringstream names(test::lines(readings).at(0));
    std::size_t columns = 0;
    for (std::string name; std::getline(names, name, ','); ++columns)
        EXPECT_NE(page.find('`' + name + '`'), std::string::npos) << name;
    EXPECT_EQ(columns, 15U);
}

TEST(ToolPage, SaysOfEveryColumnOfResultsWhatItsTableSays) {
    const std::string page = flatFile(KIV_DOCS "/tables.md");
    for (std::size_t i = 0; i < resultColumns.size();) {
        std::string entry = "- `";
        const ResultColumn& first = resultColumns[i];
        do
            entry.append(entry == "- `" ? "" : "`, `").append(resultColumns[i].name);
        while (++i < resultColumns.size() && resultColumns[i].sentence.empty());
        entry.append("`: ").append(first.sentence);
        const std::size_t at = page.find(entry);
        ASSERT_NE(at, std::string::npos) << entry;
        const std::string whole = page.substr(at, page.find(" - `", at + 1) - at);
        EXPECT_NE(whole.find(first.unit), std::string::npos) << entry;
        EXPECT_EQ(first.unit == "degrees", first.name.ends_with("_deg")) << entry;
    }
}

TEST(ToolPage, ARefusedRowIsEmptyWhereTheColumnsMayBe) {
    const test::ParameterFolder folder;
    const std::string result = folder.path() + "/result.json";
    std::ifstream file(KIV_EXAMPLES "/Tg5.prm", std::ios::binary);
    Sha256 digest;
    digest.add(std::string(std::istreambuf_iterator<char>(file), {}));
    std::ofstream(result) << R"({"correlation": {"names": [], "matrix": []},)"
                          << R"("parameter_file_sha256": ")" << digest.hex() << "\"}";
    const std::string out =
        test::tool({"run", KIV_EXAMPLES "/Tg5.prm", "-", "--frame", "local", "--u-level", "0.1",
                    "--messages", "0", "--uncertainties", result},
                   test::header + "0,2,0,0,0,1,1,1,1,20,0.1,0\n")
            .out;
    std::istringstream row(test::lines(out).at(1) + ',');
    std::string cell;
    std::getline(row, cell, ','); // the time, carried over
    for (const ResultColumn& column : resultColumns) {
        ASSERT_TRUE(std::getline(row, cell, ',')) << column.name;
        EXPECT_EQ(cell.empty(), column.mayBeEmpty && column.name != "reason") << column.name;
    }
}

TEST(ToolPage, SaysOfEveryTrustWhatHeaderAndPythonSay) {
    const std::string page = flatFile(KIV_DOCS "/tables.md");
    const std::string header = flatFile(KIV_DOCS "/../include/kiv.h");
    const std::string python = flatFile(KIV_DOCS "/../python/kiv/_columns.py");
    for (std::size_t i = 0; i < trustWords.size(); ++i) {
        const auto& [word, meaning] = trustWords[i];
        std::string name = word;
        std::transform(name.begin(), name.end(), name.begin(),
                       [](char c) { return static_cast<char>(std::toupper(c)); });
        const std::string number = name + " = " + std::to_string(i);
        const std::regex inHeader("KIV_TRUST_" + number + ",? /\\* " + meaning + " \\*/");
        EXPECT_TRUE(std::regex_search(header, inHeader)) << number;
        EXPECT_NE(python.find(number + " # " + meaning), std::string::npos) << number;
        EXPECT_NE(page.find(std::string("- `") + word + "`: " + meaning), std::string::npos)
            << number;
    }
}

} // namespace
