// The folders stand above one another, and no file includes one from a folder further up.

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

// From the ground up. Folders of one floor do not include each other.
const std::vector<std::vector<std::string>> floors{
    {"include"},
    {"src/support"},
    {"src/params", "src/models"},
    {"src/sensor"},
    {"src/uncertainty"},
    {"src/judged"},
    {"src/module", "src/c", "simulator"},
    {"host/base"},
    {"host/parameters"},
    {"host/rows"},
    {"host/summary", "host/witnesses"},
    {"host/run", "host/mistakes"},
    {"host/poses", "host/calibration"},
    {"host/report", "host/check", "host/verify"},
    {"host/compare"},
    {"host/commands"},
    {"host/commandline"},
};

std::string folderOf(const fs::path& file) {
    return file.parent_path().generic_string();
}

struct Room {
    std::size_t floor;
    std::string folder;
};

// The room of a folder or of one within it; none outside the staircase.
const Room* roomOf(const std::string& folder) {
    static const std::map<std::string, Room> rooms = [] {
        std::map<std::string, Room> all;
        for (std::size_t i = 0; i < floors.size(); ++i)
            for (const std::string& name : floors[i])
                all[name] = {i, name};
        return all;
    }();
    for (fs::path path = folder; !path.empty(); path = path.parent_path())
        if (const auto found = rooms.find(path.generic_string()); found != rooms.end())
            return &found->second;
    return nullptr;
}

std::string upward(const fs::path& file, const std::string& included) {
    const fs::path root = KIV_SOURCES;
    for (const char* start : {"", "src", "include"}) {
        const fs::path target = fs::path(start) / included;
        if (!fs::exists(root / target))
            continue;
        const Room* from = roomOf(folderOf(file));
        const Room* to = roomOf(folderOf(target));
        const bool down = from && to && (from->folder == to->folder || from->floor > to->floor);
        return down ? "" : file.generic_string() + " includes " + target.generic_string();
    }
    return ""; // made by the build, or another library's
}

TEST(Staircase, NoFileIncludesOneFromFurtherUp) {
    const fs::path root = KIV_SOURCES;
    const std::regex include("#include \"([^\"]+)\"");
    std::size_t seen = 0;
    for (const char* top : {"include", "src", "simulator", "host"})
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root / top)) {
            const std::string kind = entry.path().extension().string();
            if (kind != ".cpp" && kind != ".h" && kind != ".hpp")
                continue;
            const fs::path file = fs::relative(entry.path(), root);
            std::ifstream text(entry.path());
            std::smatch match;
            for (std::string line; std::getline(text, line);)
                if (std::regex_search(line, match, include)) {
                    EXPECT_EQ(upward(file, match.str(1)), "");
                    ++seen;
                }
        }
    EXPECT_GT(seen, 500U);
}

} // namespace
