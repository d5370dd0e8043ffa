#include "host/summary/AllanDeviation.h"

#include <cmath>

namespace kiv::host {

void AllanDeviation::add(std::size_t window, double mean) {
    if (window == windows.size())
        windows.emplace_back();
    Window& own = windows[window];
    if (own.count > 0)
        own.squares += (mean - own.last) * (mean - own.last);
    own.last = mean;
    if (++own.count % 2 == 1)
        own.open = mean;
    else
        add(window + 1, (own.open + mean) / 2);
}

std::vector<AllanDeviation::Point> AllanDeviation::points() const {
    std::vector<Point> all;
    for (std::size_t i = 0; i < windows.size() && windows[i].count >= 3; ++i)
        all.push_back(
            {std::size_t{1} << i,
             std::sqrt(windows[i].squares / 2 / static_cast<double>(windows[i].count - 1))});
    return all;
}

} // namespace kiv::host
