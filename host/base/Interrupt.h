#pragma once

namespace kiv::host {

// Ctrl-C, a request to terminate, and a terminal that is closed end a run behind the rows that are
// under way, with all complete rows in the output, and let a rewrite end that has begun.
class Interrupt {
public:
    // Takes over the process's signals for these; a closed pipe becomes a write error.
    static void install();
    static bool requested();

    // While one lives, everything is written and the tool waits, for input or its turn: an
    // interrupt then ends the process at once.
    class Waiting {
    public:
        explicit Waiting(bool willWait);
        ~Waiting();
        Waiting(const Waiting&) = delete;
        Waiting& operator=(const Waiting&) = delete;

    private:
        bool before; // within another one
    };
};

} // namespace kiv::host
