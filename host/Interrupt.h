#pragma once

namespace kiv::host {

// Ctrl-C ends a run behind its current row, with all complete rows in the output.
class Interrupt {
public:
    // Takes over the process's interrupt signal; a closed pipe becomes a write error.
    static void install();
    static bool requested();

    // While one lives, everything is written and the tool waits for input: an interrupt then ends
    // the process at once.
    class Waiting {
    public:
        explicit Waiting(bool willWait);
        ~Waiting();
        Waiting(const Waiting&) = delete;
        Waiting& operator=(const Waiting&) = delete;
    };
};

} // namespace kiv::host
