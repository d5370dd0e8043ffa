#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/run/ComputedRow.h"
#include "host/run/RunInputs.h"
#include "host/run/RunOutputs.h"

namespace kiv::host {

// Tables of readings taken row by row through the sensor of a parameter file, into an output: the
// way from the inputs to the outputs, on several threads where rows do not depend on each other.
class ReadingsRun {
public:
    ReadingsRun(const ReadingsOptions& asked, const Streams& own, bool withQuantiles = true)
        : options(asked), streams(own), inputs(asked, own),
          outputs(asked, inputs, own, withQuantiles) {}

    // False, and messages, when one of the files cannot be used. No column of the readings may have
    // one of the names of the results; without any the output is one text, written as a whole. The
    // facts are complete once all rows have been read. What a subcommand asks of its inputs is
    // asked before an output is touched.
    bool open(std::span<const std::string_view> results, InputFacts* facts = nullptr,
              const std::function<bool()>& usableInputs = {});

    CKivPrm& record() { return inputs.record(); }
    int mountMode() const { return inputs.mountMode(); }
    const GivenUncertainties& givenUncertainties() const { return inputs.uncertainties(); }
    bool givesUncertainties() const {
        return givenUncertainties().ofReadings || givenUncertainties().calibration;
    }
    bool localFrame() const { return inputs.localFrame(); }
    const GivenReference& givenReference() const { return inputs.givenReference(); }
    std::string name() const { return inputs.recording().name(); }
    const Table& table() const { return inputs.recording().table(); } // for its columns
    Output& output() { return outputs.output(); }
    const Summary& summary() const { return outputs.summary(); }
    const RecordingDrift& drift() const { return outputs.drift(); }
    std::span<const Witness> witnesses() const { return outputs.witnesses(); } // at the rows' end
    bool brokenOff() const { return outputs.brokenOff(); } // reading, before the end

    // Completes a row, and adds what the output has of it to a text; several at a time, on any
    // thread.
    using Prepare = std::function<void(const Table&, ComputedRow&, std::string& text)>;
    void forEach(const Prepare& prepare, const RunOutputs::Take& take);

    // The members of a JSON object, for the summary's end.
    void addToSummary(std::string members) { outputs.addToSummary(std::move(members)); }
    bool comparable() const { return inputs.truth().comparable(); } // there are true angles

    // Ends the output, shows and writes the summary. An exit code.
    int finish() { return outputs.finish(); }

private:
    std::size_t jobs() const;
    void work(RowBatch& batch, RowRunner& runner, Table& cursor, const Prepare& prepare) const;

    const ReadingsOptions& options;
    const Streams& streams;
    RunInputs inputs;
    RunOutputs outputs;
};

} // namespace kiv::host
