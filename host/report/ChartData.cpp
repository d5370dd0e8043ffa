#include <cmath>
#include <span>

#include "host/report/ChartSeries.h"
#include "host/report/Sections.h"

namespace kiv::host {

namespace {

using Json = nlohmann::ordered_json;

// Pairs of a bin and how many of its rows are marked.
Json marksOf(std::span<const Envelope::Bin> bins, std::size_t Envelope::Bin::*count) {
    Json marks = Json::array();
    for (std::size_t i = 0; i < bins.size(); ++i)
        if (bins[i].*count > 0)
            marks.push_back({i, bins[i].*count});
    return marks;
}

Json limitsOf(float low, float high) {
    return low < high ? Json{chartNumber(low), chartNumber(high)} : Json();
}

Json chartOf(const ReportContent& content, const Chart& chart) {
    Json data{{"id", chart.id}, {"series", Json::array()}};
    for (std::size_t q = at(chart.first); q <= at(chart.last); ++q)
        data["series"].push_back(chartSeries(content.envelope, q, quantityWords[q].key,
                                             isDirection(static_cast<Quantity>(q))));
    const F_VECTOR4& limits = content.levelLimits;
    if (chart.first == Quantity::tiltX)
        data["limits"] = Json::array({limitsOf(limits.x, limits.y), limitsOf(limits.z, limits.w)});
    if (content.hasUncertainty() && chart.first == Quantity::rx)
        data["bands"] = "value";
    if (content.hasUncertainty() && chart.first == Quantity::residualX)
        data["bands"] = "zero";
    return data;
}

// Each window's time, or its rows where there is no time.
Json allanAxis(const RecordingDrift& drift) {
    const auto points = drift.reading(0).points();
    return {{"name", drift.step() ? "averaging time, s" : "rows averaged"},
            {"own", true},
            {"log", true},
            {"rows", points.size()},
            {"first", chartArray(points.size(), [&](std::size_t i) {
                 return drift.step().value_or(1) * static_cast<double>(points[i].values);
             })}};
}

Json chartOf(const RecordingDrift& drift, const AllanChart& chart) {
    Json data{{"id", chart.id}, {"axis", 1}, {"log", true}, {"series", Json::array()}};
    for (std::size_t i = 0; i < chart.names.size(); ++i) {
        const auto points = drift.reading(chart.first + i).points();
        data["series"].push_back({{"name", chart.names[i]},
                                  {"mean", chartArray(points.size(), [&](std::size_t k) {
                                       return points[k].deviation > 0 ? points[k].deviation : NAN;
                                   })}});
    }
    return data;
}

} // namespace

void appendChartData(std::string& json, const ReportContent& content) {
    const Envelope& envelope = content.envelope;
    const auto bins = envelope.bins();
    Json axis = chartAxis(envelope, content.axis.name());
    if (content.axis.overTime()) {
        axis["dates"] = content.axis.overDates();
        axis["first"] = chartArray(bins.size(), [&](std::size_t i) { return bins[i].firstX; });
        if (envelope.rowsPerBin() > 1)
            axis["last"] = chartArray(bins.size(), [&](std::size_t i) { return bins[i].lastX; });
    }
    for (const XAxis::Break& each : content.axis.breaks)
        axis["breaks"].push_back({each.place.row, chartNumber(each.before), chartNumber(each.after),
                                  chartNumber(each.shift)});
    Json data{{"axes", Json::array({axis})}};
    if (content.summary.count(RowState::reference) > 0)
        data["reference"] = content.referenceRow;
    for (const Witness& witness : content.witnesses)
        data["witnesses"].push_back({witness.row, witness.name()});
    data["refused"] = marksOf(bins, &Envelope::Bin::refused);
    data["noOrientation"] = marksOf(bins, &Envelope::Bin::noOrientation);
    data["notGood"] = marksOf(bins, &Envelope::Bin::notGood);
    data["charts"] = Json::array();
    for (const Chart& chart : charts)
        if (content.has(chart))
            data["charts"].push_back(chartOf(content, chart));
    for (const AllanChart& chart : allanCharts)
        if (has(content, chart)) {
            data["axes"][1] = allanAxis(content.drift);
            data["charts"].push_back(chartOf(content.drift, chart));
        }
    json += data.dump();
}

} // namespace kiv::host
