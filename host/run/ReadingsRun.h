#pragma once

#include <array>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "KIVInterface/CKivPrm.h"
#include "host/base/Cli.h"
#include "host/rows/Recording.h"
#include "host/rows/RowResult.h"
#include "host/rows/TimeStamp.h"
#include "host/run/GivenReference.h"
#include "host/run/ReadingsOptions.h"
#include "host/summary/Summary.h"

namespace kiv::host {

class Progress;

// A row of readings and all that came of it.
struct Row {
    RowResult result;
    std::size_t table = 0; // of several, from 0
    std::size_t line = 0;
    std::vector<Message> messages;
    std::optional<std::array<double, 3>> truth; // true angles rx, ry, rz, degrees
    std::optional<TimeStamp> time;              // on the report's axis
    std::size_t textEnd = 0;                    // in the text made of a batch's rows
};

// Tables of readings taken row by row through the sensor of a parameter file, into an output.
class ReadingsRun {
public:
    ReadingsRun(const ReadingsOptions& asked, const Streams& own, bool withResidualFigures = true)
        : options(asked), streams(own), recording(asked.readings, asked.format, own),
          limit(asked.format.mostMessages, own.err), totals(withResidualFigures) {}

    // False, and messages, when one of the files cannot be used. No column of the readings may have
    // one of the names of the results. The facts are complete once all rows have been read.
    bool open(std::span<const std::string_view> results, InputFacts* facts = nullptr);

    CKivPrm& record() { return parameters; }
    int mountMode() const { return mode; }
    const std::optional<Uncertainties>& givenUncertainties() const { return uncertainties; }
    // Whether the angles are those of the motion since the reference.
    bool localFrame() const { return options.inLocalFrame(mode); }
    std::string name() const { return recording.name(); }
    const Table& table() const { return recording.table(); } // for its columns
    Output& output() { return written; }
    const Summary& summary() const { return totals; }
    bool brokenOff() const { return broken; } // reading, before the end

    // Completes a row, and adds what the output has of it to a text; several at a time, on any
    // thread.
    using Prepare = std::function<void(const Table&, Row&, std::string& text)>;
    // Takes one row after the other; false ends the run behind it.
    using Take = std::function<bool(const Row&)>;
    void forEach(const Prepare& prepare, const Take& take);

    // Ends the output, shows and writes the summary. An exit code.
    int finish();

private:
    struct Batch;

    bool inputsUsable() const;
    bool readUncertainties();
    bool renamedColumnsThere() const;
    bool referenceReadable() const;
    std::size_t jobs() const;
    void work(Batch& batch, RowRunner& runner, Table& cursor, const Prepare& prepare) const;
    bool finishBatch(Batch& batch, const Take& take, Progress& progress);
    bool writeSummary();
    // Both hold where they are not asked for; false also where there is nothing to test, with a
    // message.
    bool withinTolerance() const;
    bool strictlyGood() const;

    const ReadingsOptions& options;
    const Streams& streams;
    CKivPrm parameters;
    int mode = 0;
    std::size_t parameterWarnings = 0;
    std::optional<Uncertainties> uncertainties;
    std::optional<RowRunner> lead;
    GivenReference given;
    Recording recording;
    MessageLimit limit;
    Output written;
    Output writtenSummary;
    std::optional<Truth> truth;
    Summary totals;
    bool broken = false; // reading
    std::string ends;    // what was said of the tables' ends
};

} // namespace kiv::host
