// docs/kiv.md, from which --help and the man page are made, names what the tool knows.

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

struct Section {
    std::string text;
    std::map<std::string, std::string> options; // a value is called VALUE; description
};

// By subcommand; what stands before the first, by kiv.
std::map<std::string, Section> sectionsOfPage() {
    std::map<std::string, Section> sections;
    std::ifstream page(KIV_DOCS "/kiv.md");
    Section* section = &sections["kiv"];
    std::string* item = nullptr;
    bool options = false;
    const std::regex term("- `([^`]+?)( [A-Z,]+)?`:(.*)");
    std::smatch match;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("## kiv "))
            section = &sections[line.substr(7)];
        if (line.starts_with("##"))
            options = line.ends_with(" Options");
        if (options && std::regex_match(line, match, term)) {
            item = &section->options[match.str(1) + (match[2].matched ? " VALUE" : "")];
            *item = match.str(3);
        } else if (options && item && line.starts_with("  ")) {
            *item += line.substr(1);
        }
        section->text += line + '\n';
    }
    return sections;
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
    const auto sections = sectionsOfPage();
    CommandLine line;
    std::vector<CLI::App*> commands = line.app.get_subcommands({});
    commands.push_back(&line.app);
    EXPECT_EQ(sections.size(), commands.size());
    for (const CLI::App* command : commands) {
        SCOPED_TRACE(command->get_name());
        ASSERT_TRUE(sections.count(command->get_name()));
        const Section& section = sections.at(command->get_name());
        EXPECT_FALSE(helpText(command->get_name()).empty());
        EXPECT_NE(sections.at("kiv").text.find('`' + command->get_name() + "`: "),
                  command == &line.app ? 0 : std::string::npos);

        std::set<std::string> known;
        for (const CLI::Option* option : command->get_options({})) {
            const std::string term = termFor(*option);
            known.insert(term);
            const auto described = section.options.find(term);
            if (described == section.options.end()) {
                ADD_FAILURE() << "not on the page: " << term;
                continue;
            }
            const std::string standard = option->get_default_str();
            EXPECT_TRUE(standard.empty()
                        || described->second.ends_with("(default " + standard + ')'))
                << term << described->second;
        }
        for (const auto& [term, description] : section.options)
            EXPECT_TRUE(known.count(term)) << "on the page alone: " << term;
    }
}

TEST(ToolPage, ShortHelpFitsAScreenAndNamesWhatThereIs) {
    const auto sections = sectionsOfPage();
    const std::regex word("--[a-z][a-z-]*");
    for (const auto& [command, section] : sections) {
        SCOPED_TRACE(command);
        const std::string text(shortHelpText(command));
        const std::vector<std::string> shown = test::lines(text);
        EXPECT_GT(shown.size(), 4U);
        EXPECT_LE(shown.size(), 45U);
        for (const std::string& line : shown)
            EXPECT_LE(line.size(), 80U) << line;
        std::string known;
        for (const auto& [term, description] : section.options)
            known += term + ' ';
        for (std::sregex_iterator at(text.begin(), text.end(), word), end; at != end; ++at)
            EXPECT_NE((known + "--help ").find(at->str() + ' '), std::string::npos) << at->str();
    }
}

// A text in one line, with single blanks.
std::string flat(const std::string& text) {
    return std::regex_replace(text, std::regex("\\s+"), " ");
}

std::string flatFile(const std::string& path) {
    std::ifstream file(path);
    return flat({std::istreambuf_iterator<char>(file), {}});
}

TEST(ToolPage, ReadmeHasTheMinimalHost) {
    const std::string host = flatFile(KIV_EXAMPLES "/minimal_host.cpp");
    EXPECT_FALSE(host.empty());
    EXPECT_NE(flatFile(KIV_SOURCES "/README.md").find(host), std::string::npos);
}

TEST(ToolPage, NamesEveryColumnOfReadings) {
    const std::string readings =
        test::tool({"simulate", KIV_EXAMPLES "/Tg5.prm", "--rows", "2"}).out;
    const auto sections = sectionsOfPage();
    const std::string page = sections.at("simulate").text + sections.at("run").text;
    std::istringstream names(test::lines(readings).at(0));
    std::size_t columns = 0;
    for (std::string name; std::getline(names, name, ','); ++columns)
        EXPECT_NE(page.find('`' + name + '`'), std::string::npos) << name;
    EXPECT_EQ(columns, 15U);
}

TEST(ToolPage, SaysOfEveryColumnOfResultsWhatItsTableSays) {
    const std::string page = flat(sectionsOfPage().at("run").text);
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
    const std::string page = flat(sectionsOfPage().at("run").text);
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
        if (i > 0) {
            EXPECT_NE(page.find(std::string("`") + word + "`, " + meaning), std::string::npos)
                << number;
        }
    }
}

} // namespace
