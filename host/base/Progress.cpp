#include "host/base/Progress.h"

#include <cmath>
#include <ostream>

namespace kiv::host {

namespace {

constexpr std::chrono::milliseconds interval{500};

} // namespace

Progress::Progress(std::ostream& terminal, bool wanted, std::uintmax_t totalBytes)
    : out(terminal), shown(wanted), total(totalBytes), start(std::chrono::steady_clock::now()),
      nextShow(start + interval) {}

Progress::~Progress() {
    if (lineOpen)
        out << "\r\x1b[K" << std::flush;
}

void Progress::add(std::size_t newRows, std::size_t newBytes) {
    rows += newRows;
    bytes += newBytes;
    if (!shown)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (now >= nextShow)
        show(now);
}

void Progress::show(std::chrono::steady_clock::time_point now) {
    const double seconds = std::chrono::duration<double>(now - start).count();
    out << '\r' << rows << " rows, " << std::llround(static_cast<double>(rows) / seconds)
        << " rows/s";
    if (total > bytes)
        out << ", "
            << std::llround(seconds * static_cast<double>(total - bytes)
                            / static_cast<double>(bytes))
            << " s left";
    out << "\x1b[K" << std::flush;
    nextShow = now + interval;
    lineOpen = true;
}

} // namespace kiv::host
