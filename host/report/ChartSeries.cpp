#include "host/report/ChartSeries.h"

#include <cmath>
#include <cstdint>

#include "host/report/Envelope.h"
#include "support/Numbers.h"

namespace kiv::host {

using Json = nlohmann::ordered_json;

Json chartNumber(double value) {
    if (!std::isfinite(value))
        return {};
    const bool whole = std::abs(value) < 1e15 && value == std::trunc(value);
    return whole ? Json(static_cast<std::int64_t>(value)) : Json(value);
}

Json chartNumber(float value) {
    return std::isfinite(value) ? chartNumber(*numberIn<double>(shown(value))) : Json();
}

Json chartAxis(const Envelope& envelope, const char* name) {
    return {{"name", name}, {"rowsPerBin", envelope.rowsPerBin()}, {"rows", envelope.rows()}};
}

Json chartSeries(const Envelope& envelope, std::size_t q, const char* name, bool direction) {
    const std::size_t count = envelope.bins().size();
    const bool thinned = envelope.rowsPerBin() > 1;
    const auto acrossSeam = [&](std::size_t i) {
        return direction && thinned && envelope.acrossSeam(i, q);
    };
    const auto array = [&](auto valueOf) {
        return chartArray(count, [&](std::size_t i) {
            const Envelope::Range range =
                acrossSeam(i) ? envelope.side(i, q, 0) : envelope.range(i, q);
            return range.count == 0 ? NAN : static_cast<float>(valueOf(range));
        });
    };
    Json series{{"name", name}};
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
            second.push_back(chartNumber(static_cast<float>(value)));
        seam.push_back(second);
    }
    return series;
}

} // namespace kiv::host
