#include <cmath>
#include <cstdint>
#include <span>

#include <nlohmann/json.hpp>

#include "host/report/Sections.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

using Json = nlohmann::ordered_json;

// What is not finite becomes null; whole numbers need no point.
Json number(double value) {
    if (!std::isfinite(value))
        return {};
    const bool whole = std::abs(value) < 1e15 && value == std::trunc(value);
    return whole ? Json(static_cast<std::int64_t>(value)) : Json(value);
}

// A float is written with its own digits, not with those of the double that it is.
Json number(float value) {
    return std::isfinite(value) ? number(*numberIn<double>(shown(value))) : Json();
}

// Pairs of a bin and how many of its rows are marked.
Json marksOf(std::span<const Envelope::Bin> bins, std::size_t Envelope::Bin::*count) {
    Json marks = Json::array();
    for (std::size_t i = 0; i < bins.size(); ++i)
        if (bins[i].*count > 0)
            marks.push_back({i, bins[i].*count});
    return marks;
}

// One value a bin.
template <typename ValueOf>
Json arrayOf(std::size_t count, ValueOf valueOf) {
    Json values = Json::array();
    for (std::size_t i = 0; i < count; ++i)
        values.push_back(number(valueOf(i)));
    return values;
}

// Of a bin across the seam the first side; the second one comes as [bin, mean, least, largest].
Json seriesOf(const Envelope& envelope, std::size_t q) {
    const std::size_t count = envelope.bins().size();
    const bool direction = isDirection(static_cast<Quantity>(q));
    const bool thinned = envelope.rowsPerBin() > 1;
    const auto acrossSeam = [&](std::size_t i) {
        return direction && thinned && envelope.acrossSeam(i, q);
    };
    const auto array = [&](auto valueOf) {
        return arrayOf(count, [&](std::size_t i) {
            const Envelope::Range range =
                acrossSeam(i) ? envelope.side(i, q, 0) : envelope.range(i, q);
            return range.count == 0 ? NAN : static_cast<float>(valueOf(range));
        });
    };
    Json series{{"name", quantityWords[q].key}};
    series["mean"] = array([](const Envelope::Range& range) { return range.mean(); });
    if (thinned) {
        series["least"] = array([](const Envelope::Range& range) { return range.least; });
        series["largest"] = array([](const Envelope::Range& range) { return range.largest; });
    }
    if (!direction)
        return series;
    Json& seam = series["seam"] = Json::array();
    for (std::size_t i = 0; i < count; ++i) {
        if (!acrossSeam(i))
            continue;
        Json second = Json::array({i});
        const Envelope::Range& other = envelope.side(i, q, 1);
        for (const double value : {other.mean(), other.least, other.largest})
            second.push_back(number(static_cast<float>(value)));
        seam.push_back(second);
    }
    return series;
}

Json limitsOf(float low, float high) {
    return low < high ? Json{number(low), number(high)} : Json();
}

Json chartOf(const ReportContent& content, const Chart& chart) {
    Json data{{"id", chart.id}, {"series", Json::array()}};
    for (std::size_t q = at(chart.first); q <= at(chart.last); ++q)
        data["series"].push_back(seriesOf(content.envelope, q));
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
        data["first"] = arrayOf(bins.size(), [&](std::size_t i) { return bins[i].firstX; });
        if (envelope.rowsPerBin() > 1)
            data["last"] = arrayOf(bins.size(), [&](std::size_t i) { return bins[i].lastX; });
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
