#include <cstdio>
#include <exception>
#include <iostream>

#include "host/Cli.h"

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    try {
        return kiv::host::runTool(argc, argv, {std::cin, std::cout, std::cerr});
    } catch (const std::exception& e) {
        std::fprintf(stderr, "kiv: %s\n", e.what());
        return kiv::host::unusable;
    }
}
