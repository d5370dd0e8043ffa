#include <cstdio>
#include <exception>
#include <iostream>

#include "host/Cli.h"
#include "host/Interrupt.h"
#include "support/platform/Terminal.h"

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    kiv::host::Interrupt::install();
    try {
        return kiv::host::runTool(argc, argv,
                                  {std::cin, std::cout, std::cerr, kiv::platform::errorIsTerminal(),
                                   kiv::platform::outputIsTerminal()});
    } catch (const std::exception& e) {
        std::fprintf(stderr, "kiv: %s\n", e.what());
        return kiv::host::unusable;
    }
}
