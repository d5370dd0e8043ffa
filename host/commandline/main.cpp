#include <cstdio>
#include <exception>
#include <iostream>
#include <new>

#include "host/base/Cli.h"
#include "host/base/Interrupt.h"
#include "params/Quoted.h"
#include "support/platform/Terminal.h"

int main(int argc, char** argv) {
    kiv::platform::makeStreamsBinary();
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    kiv::host::Interrupt::install();
    try {
        return kiv::host::runTool(argc, argv,
                                  {std::cin, std::cout, std::cerr, kiv::platform::errorIsTerminal(),
                                   kiv::platform::outputIsTerminal()});
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
