#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace kiv::host {

struct RowPlace {
    std::size_t table = 0; // of several, from 0
    std::size_t line = 0;
    std::size_t row = 0;        // of the whole recording, from 1
    std::optional<double> time; // on the axis, where the row has one
};

inline constexpr std::size_t mostRunsListed = 200;

// Rows to be listed, those that follow each other in a table as one where the same can be said of
// them: where join(said of those before, said of the next row) takes it in. The first runs alone.
template <typename Said>
class RowRuns {
public:
    struct Run {
        RowPlace first;
        RowPlace last;
        Said said;

        std::size_t rows() const { return last.row - first.row + 1; }
    };

    bool full() const { return closed; }

    void add(const RowPlace& place, Said said) {
        if (closed || extendsLast(place, said))
            return;
        closed = all.size() == mostRunsListed;
        if (!closed)
            all.push_back({place, place, std::move(said)});
    }

    std::span<const Run> listed() const { return all; }

private:
    bool extendsLast(const RowPlace& place, const Said& said) {
        if (all.empty())
            return false;
        Run& run = all.back();
        if (place.row != run.last.row + 1 || place.table != run.last.table || !join(run.said, said))
            return false;
        run.last = place;
        return true;
    }

    std::vector<Run> all;
    bool closed = false;
};

} // namespace kiv::host
