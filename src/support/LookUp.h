#pragma once

// The greatest i in 0 .. count - 1 for which notAbove(i) holds, taken that it holds up to some i
// and not from there on; 0 where it holds nowhere. Whatever notAbove says, it is asked about
// indices in range only, and the cost grows as log count. Both choices of a step cost the same: a
// reading that moves about in its table misses no branch.
template <class Index, class NotAbove>
Index lastNotAbove(Index count, NotAbove notAbove) {
    Index low = 0;
    while (count > 1) {
        const Index half = count / 2;
        low += notAbove(low + half) ? half : Index(0);
        count -= half;
    }
    return low;
}
