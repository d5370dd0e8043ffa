#include <cmath>
#include <span>

#include "host/report/Sections.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

// Pairs of a bin and how many of its rows are marked.
void appendMarks(std::string& json, std::span<const Envelope::Bin> bins, const char* name,
                 std::size_t Envelope::Bin::*count) {
    json.append(",\"").append(name).append("\":[");
    const char* separator = "";
    for (std::size_t i = 0; i < bins.size(); ++i) {
        if (bins[i].*count == 0)
            continue;
        json += separator;
        json += '[' + std::to_string(i) + ',' + std::to_string(bins[i].*count) + ']';
        separator = ",";
    }
    json += ']';
}

// One value a bin; what is not finite becomes null.
template <typename ValueOf>
void appendArray(std::string& json, const char* name, std::size_t count, ValueOf&& valueOf) {
    json.append(",\"").append(name).append("\":[");
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0)
            json.push_back(',');
        const auto value = valueOf(i);
        if (std::isfinite(value))
            appendNumber(json, value);
        else
            json += "null";
    }
    json += ']';
}

// Of a bin across the seam the first side; the second one comes as [bin, mean, least, largest].
void appendSeries(std::string& json, const Envelope& envelope, std::size_t q) {
    const std::size_t count = envelope.bins().size();
    const bool direction = isDirection(static_cast<Quantity>(q));
    const bool thinned = envelope.rowsPerBin() > 1;
    const auto acrossSeam = [&](std::size_t i) {
        return direction && thinned && envelope.acrossSeam(i, q);
    };
    const auto array = [&](const char* name, auto valueOf) {
        appendArray(json, name, count, [&](std::size_t i) {
            const Envelope::Range range =
                acrossSeam(i) ? envelope.side(i, q, 0) : envelope.range(i, q);
            return range.count == 0 ? NAN : static_cast<float>(valueOf(range));
        });
    };
    json.append("{\"name\":\"").append(quantityWords[q].key).append("\"");
    array("mean", [](const Envelope::Range& range) { return range.mean(); });
    if (thinned) {
        array("least", [](const Envelope::Range& range) { return range.least; });
        array("largest", [](const Envelope::Range& range) { return range.largest; });
    }
    if (direction) {
        json += ",\"seam\":[";
        const char* separator = "";
        for (std::size_t i = 0; i < count; ++i) {
            if (!acrossSeam(i))
                continue;
            const Envelope::Range& other = envelope.side(i, q, 1);
            json.append(separator).append("[").append(std::to_string(i));
            for (const double value : {other.mean(), other.least, other.largest})
                appendNumber(json += ',', static_cast<float>(value));
            json += ']';
            separator = ",";
        }
        json += ']';
    }
    json += '}';
}

void appendChart(std::string& json, const ReportContent& content, const Chart& chart) {
    json.append("{\"id\":\"").append(chart.id).append("\",\"series\":[");
    for (std::size_t q = at(chart.first); q <= at(chart.last); ++q) {
        appendSeries(json, content.envelope, q);
        json += q == at(chart.last) ? ']' : ',';
    }
    if (chart.first == Quantity::tiltX) {
        const F_VECTOR4& limits = content.levelLimits;
        const auto pair = [&](float low, float high) {
            json += low < high ? '[' + shown(low) + ',' + shown(high) + ']' : "null";
        };
        json += ",\"limits\":[";
        pair(limits.x, limits.y);
        json += ',';
        pair(limits.z, limits.w);
        json += ']';
    }
    if (content.hasUncertainty() && chart.first == Quantity::rx)
        json += ",\"bands\":\"value\"";
    if (content.hasUncertainty() && chart.first == Quantity::residualX)
        json += ",\"bands\":\"zero\"";
    json += "},";
}

} // namespace

void appendChartData(std::string& json, const ReportContent& content) {
    const Envelope& envelope = content.envelope;
    const auto bins = envelope.bins();
    json.append("{\"x\":\"").append(content.axis.name());
    json.append("\",\"dates\":").append(content.axis.overDates() ? "true" : "false");
    json += ",\"rowsPerBin\":" + std::to_string(envelope.rowsPerBin());
    json += ",\"rows\":" + std::to_string(envelope.rows());
    if (content.summary.count(RowState::reference) > 0)
        json += ",\"reference\":"
                + (content.axis.overTime() ? shown(content.referenceTime)
                                           : std::to_string(content.referenceRow));
    if (content.axis.overTime()) {
        appendArray(json, "first", bins.size(), [&](std::size_t i) { return bins[i].firstX; });
        if (envelope.rowsPerBin() > 1)
            appendArray(json, "last", bins.size(), [&](std::size_t i) { return bins[i].lastX; });
    }
    appendMarks(json, bins, "refused", &Envelope::Bin::refused);
    appendMarks(json, bins, "noOrientation", &Envelope::Bin::noOrientation);
    appendMarks(json, bins, "notGood", &Envelope::Bin::notGood);
    json += ",\"charts\":[";
    for (const Chart& chart : charts)
        if (content.has(chart))
            appendChart(json, content, chart);
    if (json.back() == ',')
        json.pop_back();
    json += "]}";
}

} // namespace kiv::host
