#pragma once

#include <functional>
#include <string>

#include "host/base/Files.h"
#include "host/base/MessageLimit.h"
#include "host/run/ComputedRow.h"
#include "host/run/RunInputs.h"
#include "host/summary/RecordingDrift.h"
#include "host/summary/Summary.h"
#include "host/witnesses/Witnesses.h"

namespace kiv::host {

class Progress;

// What a run gives: the output, the messages about its rows, the summary and the exit code.
class RunOutputs {
public:
    RunOutputs(const ReadingsOptions& asked, const RunInputs& opened, const Streams& own,
               bool withQuantiles)
        : options(asked), inputs(opened), streams(own), limit(asked.format.mostMessages, own.err),
          totals(withQuantiles), followsDrift(withQuantiles) {}

    // False, and a message, when one cannot be written. The output is one text, or rows that are
    // there as they come.
    bool open(bool outputIsOneText);

    Output& output() { return written; }
    const Summary& summary() const { return totals; }
    std::span<const Witness> witnesses() const { return watch->found(); } // at the rows' end
    bool brokenOff() const { return broken; }                             // reading, before the end
    const RecordingDrift& drift() const { return slow; } // with the residuals' figures alone

    // Takes one row after the other; false ends the run behind it.
    using Take = std::function<bool(const ComputedRow&)>;
    // The rows of a batch in their turn; false when the run ends here.
    bool add(const RowBatch& batch, const Take& take, Progress& progress);

    void endRows() { watch->finish(); }
    void addToSummary(std::string members) { ofSubcommand = std::move(members); }

    // Ends the output, shows and writes the summary. An exit code.
    int finish();

private:
    bool writeSummary();
    std::vector<std::string> shownTables() const;
    // A row has angles or is the reference; else false, and a message.
    bool usedARow() const;
    // Where angles miss the true ones by far, says which command looks for the mistake.
    void pointToCheck() const;
    // Both hold where they are not asked for; false also where there is nothing to test, with a
    // message.
    bool withinTolerance() const;
    bool strictlyGood() const;

    const ReadingsOptions& options;
    const RunInputs& inputs;
    const Streams& streams;
    MessageLimit limit;
    Output written;
    Output writtenSummary;
    Summary totals;
    bool followsDrift;
    RecordingDrift slow;
    std::optional<Witnesses> watch; // once it is open
    std::string ofSubcommand;       // a JSON object for the summary's end, where there is one
    bool broken = false;            // reading
    std::string ends;               // what was said of the tables' ends
};

} // namespace kiv::host
