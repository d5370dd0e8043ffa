// Writes tests/golden/refusals.txt anew, to standard output.

#include <cstdio>

#include "tests/golden/Refusals.h"

int main() {
    std::fputs(kiv::test::refusals().c_str(), stdout);
}
