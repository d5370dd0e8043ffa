#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivPrm.h"
#include "host/Cli.h"
#include "host/Progress.h"
#include "host/summary/Summary.h"
#include "host/tables/ReadingsOptions.h"
#include "host/tables/RowLoop.h"
#include "host/tables/RowResult.h"
#include "host/tables/TableInput.h"
#include "support/MountMode.h"

namespace kiv::host {

// A table of readings taken row by row through the sensor of a parameter file, into an output.
class ReadingsRun {
public:
    ReadingsRun(const ReadingsOptions& asked, const Streams& own, bool withResidualFigures = true)
        : options(asked), streams(own), rows(withResidualFigures) {}

    // False, and messages, when one of the files cannot be used. No column of the readings may have
    // one of the names of the results. The facts are complete once all rows have been read.
    bool open(std::span<const std::string_view> results, InputFacts* facts = nullptr);

    CKivPrm& record() { return parameters; }
    int mountMode() const { return mode; }
    bool withUncertainties() const { return uncertainties.has_value(); }
    const std::optional<Uncertainties>& givenUncertainties() const { return uncertainties; }
    // Whether the angles are those of the motion since the reference.
    bool localFrame() const { return options.localFrame && !reportsOwnMatrix(mode); }
    const TableInput& input() const { return readings; }
    const Table& table() const { return readings.table(); }
    Output& output() { return written; }
    const Summary& summary() const { return rows; }

    // Every row's result, line by line and with its true angles where it has them, to
    // each(result, truth, inputWouldWait), until that gives false or the rows end.
    template <typename Each>
    void forEach(Each each) {
        Progress progress(streams.err, streams.errIsTerminal && !options.quiet, readings.size());
        RowRunner runner(sensor, readings.table(), levelLimits(), uncertainties);
        RowResult result;
        const auto next = [&] { return runner.next(result); };
        forEachRow(table(), next, [&](bool inputWouldWait) {
            progress.row(table().rowBytes());
            const auto trueAngles = truth->angles(table());
            rows.add(result, table().lineNumber(), trueAngles);
            return each(result, trueAngles, inputWouldWait);
        });
    }

    // Ends the output, shows and writes the summary. An exit code.
    int finish();

private:
    F_VECTOR4 levelLimits();
    bool readUncertainties();
    bool writeSummary() const;
    bool withinTolerance() const;

    const ReadingsOptions& options;
    const Streams& streams;
    CKivPrm parameters;
    CKiv sensor;
    int mode = 0;
    std::optional<Uncertainties> uncertainties;
    TableInput readings;
    Output written;
    std::optional<Truth> truth;
    Summary rows;
};

} // namespace kiv::host
