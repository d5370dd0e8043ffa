#pragma once

#include <algorithm>
#include <csignal>
#include <fstream>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/base/Cli.h"

namespace kiv::test {

struct ToolResult {
    int code = 0;
    std::string out;
    std::string err;
};

inline ToolResult tool(const std::vector<std::string>& arguments, const std::string& input = "") {
    std::vector<const char*> argv{"kiv"};
    for (const std::string& argument : arguments)
        argv.push_back(argument.c_str());
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    const int code = host::runTool(static_cast<int>(argv.size()), argv.data(), {in, out, err});
    return {code, out.str(), err.str()};
}

inline std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        result.push_back(line);
    return result;
}

// A table of text; at so many bytes the user presses Ctrl-C. The rest is announced as being there
// or has to be waited for.
class InterruptedReadings final : public std::streambuf {
public:
    InterruptedReadings(const std::string& table, std::size_t interruptAt, bool restIsThere)
        : text(table), announced(restIsThere ? 1 : 0) {
        setg(text.data(), text.data(), text.data() + std::min(interruptAt, text.size()));
    }

protected:
    int_type underflow() override {
        if (egptr() == text.data() + text.size())
            return traits_type::eof();
        std::raise(SIGINT);
        setg(text.data(), gptr(), text.data() + text.size());
        return traits_type::to_int_type(*gptr());
    }
    std::streamsize showmanyc() override {
        return egptr() < text.data() + text.size() ? announced : -1;
    }

private:
    std::string text;
    std::streamsize announced;
};

// The example sensor, also in another mount mode, and a table of readings that it can use.
inline const std::string example = KIV_EXAMPLES "/Tg5.prm";
inline std::string exampleInMode(int mode) {
    std::stringstream text;
    text << std::ifstream(example, std::ios::binary).rdbuf();
    std::string changed = text.str();
    const auto replace = [&](const std::string& from, const std::string& to) {
        const std::size_t at = changed.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        changed.replace(at, from.size(), to);
    };
    replace("Mounting Mode\n4", "Mounting Mode\n" + std::to_string(mode));
    if (mode <= 2) // the dual level's own scale factors
        replace("Scale Factor\n0.12\n0.05", "Scale Factor\n0.2\n0");
    return changed;
}

inline const std::string header = "time,status,x,y,z,azimuth_deg,elevation_deg,level_x,level_y,"
                                  "temperature,ref_metric,ref_blocked\n";
inline const std::string good = "2,4000,1500,450,12.5,3,1,-2,20,0.1,0\n";

} // namespace kiv::test
