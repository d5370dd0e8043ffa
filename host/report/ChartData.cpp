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

} // namespace

void appendChartData(std::string& json, const ReportContent& content) {
    const Envelope& envelope = content.envelope;
    const auto bins = envelope.bins();
    Json data{{"x", content.axis.name()},
              {"dates", content.axis.overDates()},
              {"rowsPerBin", envelope.rowsPerBin()},
              {"rows", envelope.rows()}};
    if (content.summary.count(RowState::reference) > 0)
        data["reference"] =
            content.axis.overTime() ? Json(content.referenceTime) : Json(content.referenceRow);
    if (content.axis.overTime()) {
        data["first"] = chartArray(bins.size(), [&](std::size_t i) { return bins[i].firstX; });
        if (envelope.rowsPerBin() > 1)
            data["last"] = chartArray(bins.size(), [&](std::size_t i) { return bins[i].lastX; });
    }
    for (const Witness& witness : content.witnesses) // the bin of its first row
        data["witnesses"].push_back({(witness.row - 1) / envelope.rowsPerBin(), witness.name()});
    data["refused"] = marksOf(bins, &Envelope::Bin::refused);
    data["noOrientation"] = marksOf(bins, &Envelope::Bin::noOrientation);
    data["notGood"] = marksOf(bins, &Envelope::Bin::notGood);
    data["charts"] = Json::array();
    for (const Chart& chart : charts)
        if (content.has(chart))
            data["charts"].push_back(chartOf(content, chart));
    json += data.dump();
}

} // namespace kiv::host
