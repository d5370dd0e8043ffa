#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/base/Cli.h"
#include "host/base/InOrder.h"
#include "host/base/InputFacts.h"
#include "host/base/Interrupt.h"
#include "host/base/Progress.h"
#include "host/calibration/CalibrateOptions.h"
#include "host/calibration/Observation.h"
#include "host/rows/Readings.h"
#include "host/rows/Recording.h"
#include "host/rows/RowTime.h"

namespace kiv::host {

// Between directions that are marked by parts of a turn, degrees.
double widestGap(const std::vector<bool>& parts);

using TableLine = std::pair<std::size_t, std::size_t>; // table, line

// The rows of a calibration. They are read anew for each pass, so that none is kept; standard input
// alone is kept as text.
class CalibrationRows {
public:
    CalibrationRows(const CalibrateOptions& asked, const Streams& own, CKivPrm& record, int mode);

    // What standard input has given.
    void takeText(std::string readings) { kept = std::move(readings); }
    // Readings that were made from a table of poses, which messages and results name.
    void takeText(std::string readings, TableFacts poses);

    // The first pass. False, and messages, where the tables are no use for a calibration; the
    // messages about single rows are said here.
    bool open();

    // What the first pass has seen.
    struct Facts {
        std::size_t rows = 0;    // that can be used
        std::size_t refused = 0; // no use, with a message
        std::size_t otherStatus = 0;
        std::size_t withoutPose = 0;
        std::size_t outside = 0; // a tilt table
        float coldest = 0, hottest = 0;
        float lowest = 0, highest = 0; // raw elevations, degrees
        std::vector<bool> headings;    // raw azimuths of all rows, by 5 degrees
        std::map<double, std::size_t> perPlacement, perStation; // rows that may not be held out
        std::map<double, std::vector<bool>> azimuths;           // of a placement, by 5 degrees
        std::vector<TableFacts> tables;
    };
    const Facts& facts() const { return seen; }
    std::string placeOf(const TableLine& place) const; // file:line:1
    std::string name() const;                          // of the first table
    bool timeIsDate() const { return columns.time && columns.time->stamps(); }

    bool heldOut(const Observation& row) const;
    bool rejected(const Observation& row) const {
        return rejectedRows.contains({row.table, row.line});
    }
    void reject(std::set<TableLine> places) { rejectedRows = std::move(places); }
    const std::set<TableLine>& rejectedPlaces() const { return rejectedRows; }

    // All rows again: work takes those of a block, on any thread, finish what came of it, in order;
    // false from it ends the pass. False, and a message, when a table has changed or cannot be read
    // any more; false without one after an interrupt.
    template <typename Part>
    bool pass(const std::function<void(const std::vector<Observation>&, Part&)>& work,
              const std::function<bool(Part&)>& finish);

private:
    struct Block {
        LineBlock lines;
        std::vector<Observation> rows;
        std::vector<std::vector<Message>> messages; // of rows that have some
        std::size_t refused = 0, otherStatus = 0, withoutPose = 0, outside = 0;
        bool unusable = false; // a row that ends the calibration, with its message
    };
    struct Columns {
        std::array<std::optional<std::size_t>, 3> angles;
        std::optional<std::size_t> placement, station;
        std::optional<RowTime> time;
    };

    bool mayBeHeldOut(const Observation& row) const;
    bool findColumns(const TableInput& table);
    bool readText();
    // The cursor stands in front of the block.
    void read(Block& block, Table& cursor, CalibrationTables& tables) const;
    bool readRow(Table& cursor, Observation& row, Block& block, CalibrationTables& tables) const;
    void take(const Block& block);
    bool eachOnce() const;
    std::size_t jobs(std::uintmax_t bytes) const;
    std::string nameOf(std::size_t table) const;
    Streams inputOf(std::istream& text, std::ostream& err) const;
    template <typename Part>
    bool passOver(const Streams& input, std::vector<TableFacts>& digests,
                  const std::function<void(Block&, Part&)>& work,
                  const std::function<bool(Block&, Part&)>& finish);

    const CalibrateOptions& options;
    const Streams& streams;
    std::vector<std::string> files;
    TableFormat format;
    int mode;
    CalibrationTables curves;
    std::int32_t sensorId;
    std::optional<Owner> owner;
    Columns columns;
    Facts seen;
    std::string kept;                   // of standard input
    std::optional<TableFacts> madeFrom; // the table of poses
    std::vector<TableFacts> ofFirstPass;
    std::set<TableLine> rejectedRows;
};

template <typename Part>
bool CalibrationRows::passOver(const Streams& input, std::vector<TableFacts>& digests,
                               const std::function<void(Block&, Part&)>& work,
                               const std::function<bool(Block&, Part&)>& finish) {
    Recording recording(files, format, input);
    if (!recording.open({}, &digests) || !findColumns(recording.first()))
        return false;
    Progress progress(streams.err, streams.errIsTerminal && !options.quiet, recording.size());
    struct Worker {
        Table table;
        CalibrationTables curves;
    };
    std::vector<Worker> workers(jobs(recording.size()), Worker{recording.table(), curves});
    struct Item {
        Block block;
        Part part;
    };
    bool good = true;
    InOrder<Item> order({
        .read =
            [&](Item& item) {
                return !Interrupt::requested() && recording.nextBlock(item.block.lines);
            },
        .work =
            [&](Item& item, std::size_t i) {
                recording.start(workers[i].table, item.block.lines);
                read(item.block, workers[i].table, workers[i].curves);
                work(item.block, item.part);
            },
        .finish =
            [&](Item& item) {
                (item.block.lines.brokenOff ? streams.err : input.err) << item.block.lines.said;
                progress.add(item.block.rows.size(), item.block.lines.text.size());
                good = finish(item.block, item.part) && !item.block.lines.brokenOff;
                return good;
            },
        .overlap = [] { return true; },
    });
    order.run(workers.size());
    return good && !Interrupt::requested();
}

template <typename Part>
bool CalibrationRows::pass(const std::function<void(const std::vector<Observation>&, Part&)>& work,
                           const std::function<bool(Part&)>& finish) {
    std::istringstream text(kept);
    std::ostringstream repeated; // said in the first pass
    const Streams input = inputOf(text, repeated);
    std::vector<TableFacts> digests;
    const bool good = passOver<Part>(
        input, digests, [&](Block& block, Part& part) { work(block.rows, part); },
        [&](Block&, Part& part) { return finish(part); });
    for (std::size_t i = 0; good && i < digests.size(); ++i)
        if (digests[i].digest.hex() != ofFirstPass[i].digest.hex()) {
            streams.err << digests[i].name
                        << ":1:1: expected the rows of the first pass, found that the file has "
                           "changed; start again when nobody writes to it\n";
            return false;
        }
    return good;
}

} // namespace kiv::host
