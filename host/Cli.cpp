#include "host/Cli.h"

#include "host/CommandLine.h"

namespace kiv::host {

int runTool(int argc, const char* const* argv, const Streams& streams) {
    CommandLine line;
    try {
        line.app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return line.app.exit(e, streams.out, streams.err) == 0 ? allGood : unusable;
    }
    return line.action(streams);
}

} // namespace kiv::host
