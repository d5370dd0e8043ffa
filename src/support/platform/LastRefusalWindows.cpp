#include "support/platform/LastRefusal.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace kiv::platform {

namespace {

void WINAPI release(void* refusal) {
    HeapFree(GetProcessHeap(), 0, refusal);
}

// The compiler's own thread_local leaves memory behind where a library is unloaded before a thread
// ends, and ends the process where memory is refused.
class Slot {
public:
    Slot() : index(FlsAlloc(release)) {}
    ~Slot() {
        if (index != FLS_OUT_OF_INDEXES)
            FlsFree(index); // releases those of all threads
    }
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    LastRefusal* own() const noexcept {
        if (index == FLS_OUT_OF_INDEXES)
            return nullptr;
        void* refusal = FlsGetValue(index);
        if (refusal)
            return static_cast<LastRefusal*>(refusal);
        refusal = HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, sizeof(LastRefusal));
        if (refusal && !FlsSetValue(index, refusal)) {
            release(refusal);
            return nullptr;
        }
        return static_cast<LastRefusal*>(refusal);
    }

private:
    const DWORD index;
};

const Slot slot;

} // namespace

LastRefusal* lastRefusal() noexcept {
    return slot.own();
}

} // namespace kiv::platform
