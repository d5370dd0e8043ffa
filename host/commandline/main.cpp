#include <cstdio>
#include <exception>
#include <iostream>
#include <new>

#include "host/base/Cli.h"
#include "host/base/Interrupt.h"
#include "params/Quoted.h"
#include "support/platform/Terminal.h"

int main(int argc, char** argv) {
    kiv::platform::prepareStreams();
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    kiv::host::Interrupt::install();
    try {
        const kiv::host::Streams streams{std::cin, std::cout, std::cerr,
                                         kiv::platform::errorIsTerminal(),
                                         kiv::platform::outputIsTerminal()};
        if (argc < 2 && kiv::platform::terminalIsOwn()) {
            const char* const help[] = {"kiv", "--help"};
            const int code = kiv::host::runTool(2, help, streams);
            std::cout << "\nkiv is a program for the command prompt. Enter closes this window."
                      << std::flush;
            std::cin.get();
            return code;
        }
        return kiv::host::runTool(argc, argv, streams);
    } catch (const std::bad_alloc&) {
        std::fputs("kiv: expected memory for all of this, found none left\n", stderr);
    } catch (const std::exception& fault) {
        std::fprintf(stderr,
                     "kiv: ended by a fault of its own (%s); please report this line and what you "
                     "typed\n",
                     kiv::printable(fault.what()).c_str());
    }
    return kiv::host::unusable;
}
