// kiv info and kiv rewrite, and that the pages say what they and the library do.

#include <algorithm>
#include <array>
#include <fstream>
#include <set>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "params/Messages.h"
#include "params/Parser.h"
#include "params/Printer.h"
#include "support/platform/ByteSink.h"
#include "support/platform/ByteSource.h"
#include "tests/FileFaults.h"
#include "tests/ToolRunner.h"

namespace {

using namespace kiv;
using namespace kiv::test;
namespace fs = std::filesystem;
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool,
                                  std::int64_t, std::uint64_t, float>;

Document documentOf(const std::string& text) {
    TextSource source(text);
    return parseForRewrite(source).document;
}

std::string printed(const Document& document) {
    TextSink sink;
    print(document, sink);
    return sink.text;
}

std::string contentOfDocs(const std::string& page) {
    return contentOf(KIV_DOCS "/" + page).value_or("");
}

// Every value in its place is compared with the C surface's.
TEST(Info, GivesEveryNameAndDigitInJson) {
    const ParameterFolder folder;
    std::ofstream(folder.file(), std::ios::binary) << parameterText(
        {.values = {{Block::qvc, "0.1 1e-40 3.4028235e38 -0 16777217 -1.17549435e-38"}},
         .shift = 0.1F});
    const ToolResult result = tool({"info", "--json", folder.file()});
    EXPECT_EQ(result.code, 0) << result.err;
    const Json json = Json::parse(result.out);
    EXPECT_EQ(json["angle_offset"]["elevation_deg"].dump(), "7.35");
    EXPECT_EQ(json["tilt_x_calibration_table"]["rows_deg"][3][0].dump(), "25.1");
    EXPECT_EQ(json["tilt_x_calibration_table"]["limit_low_deg"].dump(), "-29.9");
    EXPECT_EQ(json["local_coordinate_tranform_matrix"][1][2].dump(), "15.35");
    EXPECT_EQ(
        json["qvc"].dump(),
        R"({"x":0.1,"z":1e-40,"y":3.4028235e+38,"axis_x_deg":-0.0,"axis_z_deg":1.6777216e+07,)"
        R"("start_deg":-1.1754944e-38})");
    std::set<std::string> names;
    for (const auto& [block, values] : json.items()) {
        names.insert(block);
        if (values.is_object())
            for (const auto& [name, value] : values.items())
                names.insert(name);
    }
    const std::string docs = contentOfDocs("kiv.md");
    for (const std::string& name : names)
        EXPECT_NE(docs.find('`' + name + '`'), docs.npos) << name;
    EXPECT_EQ(names.size(), 24U + 25U);
}

TEST(Info, ShowsWhatCouldBeRead) {
    const ParameterFolder folder;
    const std::string path = folder.path() + "/x";
    std::ofstream(path, std::ios::binary) << parameterText(
        {.values = {{Block::deviceOwner, "M\xFCller\""}, {Block::azCalibration, "none"}},
         .titles = {{Block::qvc, "CVQ"}}});
    const ToolResult text = tool({"info", path}), json = tool({"info", path, "--json"});
    EXPECT_EQ(text.code, 1);
    EXPECT_EQ(json.code, 1);
    EXPECT_EQ(lines(text.err).size(), 2U) << text.err;
    EXPECT_NE(text.out.find("QVC                                 not read\n"), text.out.npos);
    const Json values = Json::parse(json.out);
    EXPECT_TRUE(values["qvc"].is_null());
    EXPECT_TRUE(values["az_calibration_table"].is_null());
    EXPECT_EQ(values["device_owner"], "M\xEF\xBF\xBDller\"");
    EXPECT_EQ(values["half_angle"]["azimuth_deg"], 23);
    EXPECT_EQ(tool({"info", folder.path()}).code, 2);
}

// Nothing waits meanwhile.
class RewriteTool : public testing::Test {
protected:
    RewriteTool() {
        platform::waitInstead = [](std::chrono::milliseconds) {};
    }
    ~RewriteTool() override { platform::waitInstead = nullptr; }

    void write(const std::string& text) const {
        std::ofstream(folder.file(), std::ios::binary) << text;
    }
    ToolResult run() const { return tool({"rewrite", folder.file()}); }
    std::string shown(std::string text) const { // the folder as DIR, separated by slashes
        for (auto at = text.find(folder.path()); at != text.npos; at = text.find(folder.path()))
            text.replace(at, folder.path().size(), "DIR");
        std::replace(text.begin(), text.end(), '\\', '/');
        return text;
    }
    std::optional<std::string> file() const { return contentOf(folder.file()); }
    std::optional<std::string> copy() const { return contentOf(folder.path() + "/$tmp.prm"); }

    const ParameterFolder folder;
    const fs::path home = fs::current_path();
};

TEST_F(RewriteTool, SaysWhatItHasDoneAndCost) {
    using enum Block;
    const std::string text = parameterText({.values = {{serialNumber, "6"}, // not this file's
                                                       {qvc, "1e-7 2 0 -4e-7 5.0000001 6"},
                                                       {admOffset, "0.0123456"},
                                                       {tiltXCalibration, "-1 -8.7654321 3e-7 1 x"},
                                                       {tiltOffset, "123.45671 0"}}});
    write(text);
    const ToolResult first = run();
    EXPECT_EQ(first.code, 0);
    EXPECT_EQ(shown(first.out),
              "DIR/Tg5.prm: rewritten\n"
              "its serial number is 6: the other subcommands take it as Tg6.prm\n"
              "largest relative change of a value: 3.2e-05, from 0.0123456 to 0.012346 in "
              "\"ADM Offset\", line 32, column 1\n");
    EXPECT_EQ(
        shown(first.err),
        "DIR/Tg5.prm:45:11: expected the value 3e-07 in \"Tilt X Calibration Table\", found 0, "
        "all that six decimals keep of it (warning)\n"
        "DIR/Tg5.prm:67:1: expected the value 1e-07 in \"QVC\", found 0, all that six "
        "decimals keep of it (warning)\n"
        "DIR/Tg5.prm:67:28: expected the value -4e-07 in \"QVC\", found 0, all that six "
        "decimals keep of it (warning)\n");
    EXPECT_EQ(file(), printed(documentOf(text)));
    EXPECT_EQ(copy(), std::nullopt);
    EXPECT_EQ(fs::current_path(), home);
    std::ofstream(folder.path() + "/$tmp.prm") << *file(); // as when the old file was not deleted
    const ToolResult second = run();
    EXPECT_TRUE(second.out.ends_with("\nno value has changed\n")) << second.out;
    EXPECT_EQ(second.err, "");
    EXPECT_EQ(copy(), std::nullopt);
}

TEST_F(RewriteTool, SaysWhyItRefuses) {
    using enum Block;
    const struct {
        const char* name;
        std::string file;
        std::string copy; // from an earlier rewrite
        int code;
        std::string expected; // contained in standard error
    } rows[] = {
        {"value that cannot be read", parameterText({.values = {{tiltOffset, "1 x"}}}), "", 1,
         "DIR/Tg5.prm:26:3: expected a number (value 2 of 2 of \"Tilt Sensor Offset\"), found "
         "\"x\"\nDIR/Tg5.prm is as before, the copy in DIR/$tmp.prm is incomplete\n"},
        {"title", parameterText({.titles = {{qvc, "qvc"}}}), "the rest of another", 1,
         "DIR/Tg5.prm:49:1: expected the title \"QVC\""},
        {"another sensor's whole copy", parameterText(),
         parameterText({.values = {{serialNumber, "7"}}}), 2,
         "DIR/$tmp.prm:1:1: expected nothing that is needed, found a whole parameter file, of "
         "sensor 7, with other values than Tg5.prm; give it the name that it is to have or delete "
         "it\n"},
        {"the same sensor's, with other values", parameterText(), parameterText({.shift = 0.5F}), 2,
         "of sensor 5, with other values"},
        {"one with a table that has no rows", parameterText(),
         parameterText({.values = {{azCalibration, "0"}}}), 2, "of sensor 5, with other values"},
        {"one beside a faulty file", parameterText({.values = {{tiltOffset, "1 x"}}}),
         parameterText(), 2, "of sensor 5, with other values"},
        {"the file itself", parameterText(), "a second name", 2,
         "DIR/$tmp.prm:1:1: expected nothing that is needed, found a second name of Tg5.prm; keep "
         "it under its own name alone\n"},
    };
    for (const auto& row : rows) {
        write(row.file);
        const fs::path copyPath = fs::path(folder.path()) / "$tmp.prm";
        fs::remove(copyPath);
        if (row.copy == "a second name")
            fs::create_hard_link(folder.file(), copyPath);
        else if (!row.copy.empty())
            std::ofstream(copyPath, std::ios::binary) << row.copy;
        const ToolResult result = run();
        EXPECT_EQ(result.code, row.code) << row.name;
        EXPECT_EQ(result.out, "") << row.name;
        EXPECT_NE(shown(result.err).find(row.expected), std::string::npos) << row.name << '\n'
                                                                           << result.err;
        EXPECT_EQ(file(), row.file) << row.name;
        if (row.code == 2) {
            EXPECT_EQ(copy(), row.copy == "a second name" ? row.file : row.copy) << row.name;
        }
    }
    const fs::path other = fs::path(folder.path()) / "other",
                   copyPath = fs::path(folder.path()) / "$tmp.prm";
    fs::remove(copyPath);
    fs::create_hard_link(folder.file(), other);
    EXPECT_EQ(shown(run().err).find("DIR/Tg5.prm:1:1: expected a file of one name, found one of 2"),
              0U);
    fs::remove(folder.file());
    std::error_code noLinks;
    fs::create_symlink("other", folder.file(), noLinks);
    if (!noLinks) {
        EXPECT_EQ(
            shown(run().err),
            "DIR/Tg5.prm:1:1: expected the file itself, found a link to DIR/other; rewrite that\n");
        fs::remove(folder.file());
    }
    write(parameterText());
    std::ofstream(copyPath) << "old";
    platform::failFileOperation = [](platform::FileOperation operation) {
        return operation == platform::FileOperation::remove;
    };
    const std::string reason = platform::systemErrorText(platform::errorOfTests);
    EXPECT_EQ(shown(run().err), "DIR/$tmp.prm: cannot delete this copy of an earlier rewrite: "
                                    + reason + "; DIR/Tg5.prm is as before\n");
    platform::failFileOperation = nullptr;
    EXPECT_EQ(file(), parameterText());
    fs::create_directory(folder.path() + "/Tg8.prm");
    for (const char* name : {"Tg8.prm", "Tg9.prm", "some.prm"})
        EXPECT_EQ(tool({"rewrite", folder.path() + '/' + name}).code, 2) << name;
    fs::remove(copyPath);
    fs::create_directory(copyPath);
    write(parameterText());
    const ToolResult result = run();
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(shown(result.err).find("DIR/Tg5.prm: cannot create the copy: "), 0U) << result.err;
}

// Whatever fails, the last line tells where the contents are.
TEST_F(RewriteTool, TellsTheTruthWhenAnOperationFails) {
    const std::string text = parameterText();
    const std::string rewritten = printed(documentOf(text));
    std::set<std::string> steps;
    bool failed = true;
    for (int k = 1; failed; ++k) {
        write(text);
        fs::remove(folder.path() + "/$tmp.prm");
        const FailingOperation failing(k);
        const ToolResult result = run();
        failed = FailingOperation::operation().has_value();
        const std::string err = shown(result.err);
        SCOPED_TRACE("operation " + std::to_string(k) + '\n' + err);
        ASSERT_TRUE(file() == text || file() == rewritten || copy() == rewritten);
        if (result.code == 0) {
            EXPECT_EQ(file(), rewritten);
            EXPECT_EQ(copy(), std::nullopt);
            continue;
        }
        EXPECT_TRUE(failed);
        EXPECT_EQ(result.code, 2);
        const auto says = [&](const char* part) { return err.find(part) != err.npos; };
        if (!says("the copy in")) { // it has not begun
            EXPECT_EQ(file(), text);
            EXPECT_EQ(copy(), std::nullopt);
            continue;
        }
        steps.insert(err.substr(0, err.find('\n')));
        EXPECT_TRUE(says("prm is not to be read") || says("prm is gone") == !file());
        EXPECT_TRUE(says("prm is not to be read")
                    || says("Tg5.prm is as before") == (file() == text));
        EXPECT_TRUE(says("prm is not to be read")
                    || says("prm is complete") == (copy() == rewritten));
    }
    for (const char* step :
         {"make the file writable", "open the file", "read all of the file", "create the copy",
          "write all of the copy", "delete the old file", "rename the copy"})
        EXPECT_EQ(steps.erase("DIR/Tg5.prm: cannot " + std::string(step) + ": "
                              + platform::systemErrorText(platform::errorOfTests)),
                  1U)
            << step;
    EXPECT_TRUE(steps.empty()) << *steps.begin();
}

std::string valuesInDocs(const BlockLayout& layout) {
    switch (layout.kind) {
    case BlockKind::sensorId:
    case BlockKind::integer:
        return "whole number";
    case BlockKind::word:
        return "word";
    case BlockKind::numbers:
        return std::to_string(layout.count) + (layout.count == 1 ? " number" : " numbers");
    case BlockKind::encoderTable:
        return "encoder table";
    case BlockKind::tiltTable:
        return "tilt table";
    }
    return "";
}

TEST(Docs, HaveTheTablesOfTheCode) {
    const std::string docs = contentOfDocs("parameter-file.md");
    EXPECT_NE(docs.find("19 becomes `0 0 0 0 1 1 1 0`, and 20 to 23 become zeros."), docs.npos);
    const std::array<float, 8> ofBlock19{0, 0, 0, 0, 1, 1, 1, 0}, zeros{};
    for (std::size_t i = 0; i < blockTable.size(); ++i) {
        const BlockLayout& layout = blockTable[i];
        std::ostringstream row;
        row << "\n| " << i + 1 << " | " << layout.title << " | " << valuesInDocs(layout) << " | "
            << layout.messageId << " | ";
        EXPECT_NE(docs.find(row.str()), docs.npos) << row.str();
        EXPECT_EQ(layout.titleWords, 1 + std::count(layout.title.begin(), layout.title.end(), ' '));
        EXPECT_EQ(layout.atEnd == AtEnd::keep, i + 1 == 18) << i;
        EXPECT_EQ(layout.atEnd == AtEnd::useDefaults, i + 1 >= 19 && i + 1 <= 23) << i;
        EXPECT_EQ(layout.defaults, i + 1 == 19 ? ofBlock19 : zeros) << i;
    }
    for (unsigned id = 601; messageText(id); ++id) {
        const auto block = std::find_if(blockTable.begin(), blockTable.end(),
                                        [id](const auto& each) { return each.messageId == id; });
        if (block != blockTable.end()
            && messageText(id) == "Block title \"" + std::string(block->title) + "\" is not found.")
            continue; // the rule of the page
        const std::string row = "\n| " + std::to_string(id) + " | `" + messageText(id) + "` |\n";
        EXPECT_NE(docs.find(row), docs.npos) << row;
    }
}

} // namespace
