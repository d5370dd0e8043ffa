#include "host/Summary.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <string>

#include "host/Csv.h"

namespace kiv::host {

void Summary::count(RowState state, std::size_t line) {
    ++counts[static_cast<std::size_t>(state)];
    if (state == RowState::reference)
        referenceLine = line;
}

void Summary::compare(const std::array<double, 3>& angles, const std::array<double, 3>& truth) {
    ++compared;
    for (std::size_t i = 0; i < 3; ++i)
        largest[i] = std::max(largest[i], std::abs(std::remainder(angles[i] - truth[i], 360.0)));
}

void Summary::print(std::ostream& out) const {
    std::size_t rows = 0;
    for (const std::size_t n : counts)
        rows += n;
    out << rows << (rows == 1 ? " row" : " rows");
    const char* separator = ": ";
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] == 0)
            continue;
        out << separator << counts[i] << ' ' << rowStateNames[i];
        if (i == static_cast<std::size_t>(RowState::reference))
            out << " (line " << referenceLine << ')';
        separator = ", ";
    }
    out << '\n';
    if (compared == 0)
        return;
    std::string text = "largest difference to the true angles:";
    constexpr const char* names[] = {" rx ", ", ry ", ", rz "};
    for (std::size_t i = 0; i < 3; ++i) {
        text += names[i];
        char digits[32];
        const auto end =
            std::to_chars(digits, digits + sizeof digits, largest[i], std::chars_format::fixed, 6);
        text.append(digits, end.ptr);
    }
    out << text << " degrees\n";
}

} // namespace kiv::host
