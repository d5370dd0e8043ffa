#pragma once

namespace kiv::platform {

// What a thread was refused last.
struct LastRefusal {
    char text[1020]; // ends with a null character
    int system;      // the system's own number of the reason; 0 where it had no part in it
};

// The calling thread's own, at first all zeros; null where the system refuses its memory. It goes
// with the thread, and with the library.
LastRefusal* lastRefusal() noexcept;

} // namespace kiv::platform
