#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "KIVInterface/CKivPrm.h"
#include "host/base/Cli.h"
#include "host/rows/Recording.h"
#include "host/rows/RowResult.h"
#include "host/rows/RowTime.h"
#include "host/run/GivenReference.h"
#include "host/run/ReadingsOptions.h"
#include "host/run/UncertaintyFile.h"

namespace kiv::host {

// What a run reads: the sensor, the uncertainties, the reference and the tables, each of which is
// looked at before anything is written.
class RunInputs {
public:
    RunInputs(const ReadingsOptions& asked, const Streams& own)
        : options(asked), streams(own), tables(asked.readings, asked.format, own) {}

    // False, and messages, when one of the files cannot be used, or would be overwritten.
    bool open(std::span<const std::string_view> results, InputFacts* facts);

    CKivPrm& record() { return parameters; }
    const CKivPrm& record() const { return parameters; }
    std::size_t parameterWarnings() const { return warnings; } // of the parameter file
    int mountMode() const { return mode; }
    // Whether the angles are those of the motion since the reference.
    bool localFrame() const { return options.inLocalFrame(mode); }
    const GivenUncertainties& uncertainties() const { return given; }

    Recording& recording() { return tables; }
    const Recording& recording() const { return tables; }
    const Truth& truth() const { return *trueAngles; }
    const RowTime& time() const { return *rowTime; }
    // The first to take rows: others are copies of it once it has a reference.
    RowRunner& firstRunner() { return *runner; }
    const GivenReference& givenReference() const { return reference; }
    bool isReference(std::size_t table, std::size_t line) const {
        return table == 0 && line == options.referenceLine;
    }

private:
    bool inOrder() const;
    bool namesUsable() const;
    bool referenceReadable() const;
    bool comparableWhereAsked() const;

    const ReadingsOptions& options;
    const Streams& streams;
    CKivPrm parameters;
    std::size_t warnings = 0;
    int mode = 0;
    GivenUncertainties given;
    std::optional<RowRunner> runner;
    GivenReference reference;
    Recording tables;
    std::optional<Truth> trueAngles;
    std::optional<RowTime> rowTime;
};

} // namespace kiv::host
