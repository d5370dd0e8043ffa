// The entry of the static library, which no loader calls.
#include <KIVInterface/Module.h>

int main() {
    const bool entered = kiv::enterModule();
    kiv::leaveModule();
    return entered ? 0 : 1;
}
