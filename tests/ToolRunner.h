#pragma once

#include <sstream>
#include <string>
#include <vector>

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

// The example sensor, and a table of readings that it can use.
inline const std::string example = KIV_EXAMPLES "/Tg5.prm";
inline const std::string header = "time,status,x,y,z,azimuth_deg,elevation_deg,level_x,level_y,"
                                  "temperature,ref_metric,ref_blocked\n";
inline const std::string good = "2,4000,1500,450,12.5,3,1,-2,20,0.1,0\n";

} // namespace kiv::test
