#include "host/witnesses/Witness.h"

namespace kiv::host {

namespace {

struct Words {
    const char* look; // behind the column
    const char* step; // what to do
};

constexpr std::array<Words, witnessNames.size()> words{{
    {"keeps its last digit while the sensor moves",
     "see whether it is still read, then leave these "
     "rows out"},
    {"jumps and is back in the next row, alone", "see what the sensor did there, or leave these "
                                                 "rows out"},
    {"has another length, in the same direction", "see whether the instrument measures another "
                                                  "target from there on"},
    {"never leaves one turn in radians, while the line of sight goes all the way round",
     "give degrees"},
    {"is where the sensor has no range or no calibration", "see whether the parameter file is this "
                                                           "sensor's, and the angles degrees"},
    {"goes back", "see whether rows are in their order, and the clock was set"},
    {"has a row of names in its midst", "give the tables that were joined one by one"},
    {"has a value that stands for none",
     "leave these rows out, or give them another status than 2"},
}};

} // namespace

std::string Witness::text() const {
    const Words& of = words[static_cast<std::size_t>(kind)];
    std::string text(column.empty() ? std::string_view("the table") : column);
    text.append(" ").append(overMidnight ? "starts again at midnight" : of.look);
    text.append(rows == 1 ? ", in 1 row; " : ", in " + std::to_string(rows) + " rows; ");
    return text.append(overMidnight ? "count its seconds on over the day's end" : of.step);
}

} // namespace kiv::host
