#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "KIVInterface/Records.h"
#include "host/base/InputFacts.h"
#include "host/report/Envelope.h"
#include "host/report/Quantities.h"
#include "host/report/RowRuns.h"
#include "host/report/TimeAxis.h"
#include "host/summary/RecordingDrift.h"
#include "host/summary/Summary.h"
#include "host/summary/UncertaintyBudget.h"
#include "host/witnesses/Witness.h"

namespace kiv::host {

// Why rows with angles are not good, and their largest model error.
struct Doubt {
    Trust trust;
    double modelError;
};
bool join(Doubt& doubt, const Doubt& next);

// Why rows were refused or have no orientation.
struct NoResult {
    RowState state;
    std::string reason;
    std::string placed; // the same with the place in the row, where all rows have one
};
bool join(NoResult& rows, const NoResult& next);

inline constexpr std::size_t mostBins = 4096;

struct ReportContent {
    std::string title;      // empty: one of the sensor's
    std::string lengthUnit; // empty: not known
    std::string time;       // of the run
    std::string commandLine;
    std::string parameterFile;
    std::string readings; // in short
    InputFacts facts;
    std::int32_t sensorId = 0;
    int mountMode = 0;
    bool localFrame = false; // the angles are those of the motion since the reference
    F_VECTOR4 levelLimits{};

    Summary summary;
    std::vector<Witness> witnesses;
    RecordingDrift drift;
    // The statistics that the summary does not have.
    std::array<Statistics, quantityCount> ofReadings = [] {
        std::array<Statistics, quantityCount> all;
        for (std::size_t q = 0; q < quantityCount; ++q)
            if (!isDirection(static_cast<Quantity>(q)) && q != at(Quantity::elevation))
                all[q] = Statistics(Statistics::Kind::linear);
        return all;
    }();
    Envelope envelope{quantityCount, mostBins}; // over seconds; raw angles
    XAxis axis;
    std::size_t referenceRow = 0; // of the whole recording, from 1
    RowRuns<NoResult> badRows;
    RowRuns<Doubt> doubtfulRows;
    std::optional<Uncertainties> uncertainties; // of the readings
    UncertaintyBudget budget;
    const char* cutShort = nullptr; // why the readings were not read to their end

    const Statistics& statistics(Quantity quantity) const;
    bool has(const Chart& chart) const;
    bool charted() const {
        return std::any_of(charts.begin(), charts.end(), [&](const Chart& c) { return has(c); });
    }
    bool hasSeveralTables() const { return facts.readings.size() > 1; }
    bool hasUncertainty() const { return budget.rows() > 0; }
};

// The whole report as one HTML file that loads nothing.
std::string reportPage(const ReportContent& content);

} // namespace kiv::host
