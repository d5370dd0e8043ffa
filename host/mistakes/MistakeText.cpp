#include "host/mistakes/MistakeText.h"

#include <ostream>
#include <string>

#include "host/mistakes/MistakeSearch.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

using Json = nlohmann::ordered_json;
using Verdict = MistakeSearch::Verdict;

// The misfit that a message quotes: the spare reading's where it alone does not fit.
struct Quoted {
    explicit Quoted(const MistakeSearch& search)
        : angles(search.byAngles
                 && !(search.asItStands.angles.fits() && !search.asItStands.spare.fits())),
          now(of(search.asItStands)) {}

    const Misfit& of(const Fit& fit) const { return angles ? fit.angles : fit.spare; }
    const char* name() const { return angles ? "differences" : "spare reading"; }

    bool angles;
    const Misfit& now;
};

void printFall(const MistakeSearch& search, const JudgedMistake& mistake, const std::string& names,
               std::ostream& out) {
    const Quoted quoted(search);
    const Misfit& now = quoted.now;
    const auto& from = now.enoughOf(search.rows) ? now.counted() : now.ofAllRows();
    out << "mistake " << names << ": with " << mistake.change << " the rms of the "
        << quoted.name();
    if (from.rows == 0)
        out << ", which no row has as it stands, is ";
    else
        out << " falls from " << roundedText(from.rootMeanSquare(), 2) << " to ";
    out << roundedText(quoted.of(mistake.fit).counted().rootMeanSquare(), 2) << " degrees\n";
}

// Those of one change, as two modes of one geometry, in one line.
void printThoseThatFit(const MistakeSearch& search, std::ostream& out) {
    const auto& all = search.judged;
    std::string names;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (!all[i].fits)
            continue;
        names += (names.empty() ? "" : ", ") + all[i].name;
        if (i + 1 < all.size() && all[i + 1].fits && all[i + 1].change == all[i].change)
            continue;
        printFall(search, all[i], names, out);
        names.clear();
    }
}

} // namespace

void print(const MistakeSearch& search, std::ostream& out) {
    const Quoted quoted(search);
    const std::string size = roundedText(quoted.now.counted().rootMeanSquare(), 2);
    switch (search.verdict()) {
    case Verdict::fits:
        out << (search.byAngles ? "true angles fit" : "spare reading fits") << ": the rms of the "
            << quoted.name() << " is " << size << " degrees, within the "
            << roundedText(quoted.now.allowed(), 2) << " of a right set-up\n";
        break;
    case Verdict::named:
        printThoseThatFit(search, out);
        break;
    case Verdict::unexplained:
        out << "unexplained: the rms of the " << quoted.name() << " is " << size
            << " degrees, more than " << roundedText(quoted.now.allowed(), 2)
            << ", and nothing that was tried explains it; look for a wrong value in the parameter "
               "file, or for two mistakes"
            << (search.byAngles ? "; kiv calibrate finds values by true angles\n" : "\n");
        break;
    case Verdict::tooFewRows:
        out << (search.byAngles ? "true angles" : "spare reading")
            << ": too few rows count to say whether it fits\n";
        break;
    }
    if (!search.byAngles)
        out << "judged by the spare reading alone, as the table has no true angles: not all "
               "mistakes show\n";
}

Json jsonOfMistakes(const MistakeSearch& search) {
    Json all = Json::array();
    for (const JudgedMistake& mistake : search.judged) {
        const Misfit::Tally& left = search.shownOf(mistake.fit).counted();
        all.push_back({{"name", mistake.name},
                       {"fits", mistake.fits},
                       {"visible", mistake.visible},
                       {"root_mean_square_deg", left.rootMeanSquare()},
                       {"largest_deg", left.largest},
                       {"rows", left.rows}});
    }
    return all;
}

Json jsonOfSetup(const MistakeSearch& search) {
    constexpr const char* verdicts[] = {"fits", "mistake", "unexplained", "too_few_rows"};
    const Misfit& now = search.shownOf(search.asItStands);
    return {{"by", search.byAngles ? "true_angles" : "spare_reading"},
            {"verdict", verdicts[static_cast<std::size_t>(search.verdict())]},
            {"root_mean_square_deg", now.counted().rootMeanSquare()},
            {"largest_deg", now.counted().largest},
            {"allowed_deg", now.allowed()},
            {"rows", now.counted().rows}};
}

} // namespace kiv::host
