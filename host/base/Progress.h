#pragma once

#include <chrono>
#include <cstdint>
#include <iosfwd>

namespace kiv::host {

// A line about a long run that overwrites itself, on a terminal alone.
class Progress {
public:
    // totalBytes of the input, 0 where unknown. Shown only when wanted.
    Progress(std::ostream& terminal, bool wanted, std::uintmax_t totalBytes);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Counts what has been done; looks at the clock.
    void add(std::size_t newRows, std::size_t newBytes);

private:
    void show(std::chrono::steady_clock::time_point now);

    std::ostream& out;
    bool shown;
    std::uintmax_t total;
    std::uintmax_t bytes = 0;
    std::size_t rows = 0;
    std::chrono::steady_clock::time_point start;
    std::chrono::steady_clock::time_point nextShow;
    bool lineOpen = false;
};

} // namespace kiv::host
