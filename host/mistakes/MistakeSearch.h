#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "host/mistakes/RowSample.h"
#include "host/summary/Misfit.h"
#include "uncertainty/Uncertainties.h"

namespace kiv {
struct ParsedFile;
}

namespace kiv::host {

// How a sample's rows fit: to the true angles, and by the spare reading where the mode has one.
struct Fit {
    Misfit angles;
    Misfit spare;
};

// How a quantity runs from row to row. Of noise, a step from one row to the next has twice the mean
// square of the quantity itself; of what depends on the pose it has less, while that changes
// slowly. Source: J. von Neumann, The Annals of Mathematical Statistics 12 (1941), 367.
class Scatter {
public:
    using Values = std::array<double, 3>;
    void add(const Values& values);
    bool isNoise() const { return steps >= squares; }

private:
    std::optional<Values> before;
    double squares = 0; // sums
    double steps = 0;
};

// A mistake that could be judged.
struct JudgedMistake {
    std::string name;
    std::string change;    // in words, behind "with"
    Fit fit;               // with the change
    bool scatters = false; // what is left of the misfit is noise, where it is much
    bool visible = false;  // the change changes angles or spare reading
    bool fits = false;
};

// What known poses, or the spare reading, tell of a sensor's set-up.
struct MistakeSearch {
    bool byAngles = false; // else by the spare reading alone
    std::size_t rows = 0;  // of the sample
    Fit asItStands;
    std::vector<JudgedMistake> judged;

    enum class Verdict : unsigned char {
        fits,        // as it stands
        named,       // a mistake that fits, or several
        unexplained, // it does not fit, and no mistake explains it
        tooFewRows,  // to tell
    };
    Verdict verdict() const;
    bool faulty() const { return verdict() == Verdict::named || verdict() == Verdict::unexplained; }

    // What the judging goes by in the first place.
    const Misfit& shownOf(const Fit& fit) const { return byAngles ? fit.angles : fit.spare; }
};

// Tries each mistake alone. Nothing where there is nothing to go by: neither true angles nor a
// mount mode with a spare reading.
std::optional<MistakeSearch> searchMistakes(const ParsedFile& file, const RowSample& sample,
                                            const std::optional<Uncertainties>& uncertainties);

} // namespace kiv::host
