#include <cstdio>
#include <iostream>
#include <new>

#include "host/base/Cli.h"
#include "host/base/Interrupt.h"
#include "support/platform/Terminal.h"

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    kiv::host::Interrupt::install();
    try {
        return kiv::host::runTool(argc, argv,
                                  {std::cin, std::cout, std::cerr, kiv::platform::errorIsTerminal(),
                                   kiv::platform::outputIsTerminal()});
    } catch (const std::bad_alloc&) {
        std::fputs("kiv: expected memory for all of this, found none left\n", stderr);
    } catch (...) { // what it says is no text for users
        std::fputs("kiv: expected to finish, found a fault that has no message of its own\n",
                   stderr);
    }
    return kiv::host::unusable;
}
