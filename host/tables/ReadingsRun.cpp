#include "host/tables/ReadingsRun.h"

#include "host/ParameterFile.h"
#include "sensor/SensorAccess.h"

namespace kiv::host {

bool ReadingsRun::open(std::span<const std::string_view> results) {
    if (!loadSensor(options.parameterFile, parameters, sensor, streams.err)
        || refuseOverwriting(options.output, {options.parameterFile, options.readings},
                             streams.err))
        return false;
    sensor.setMcsFlag(!options.localFrame);
    mode = SensorAccess::mountMode(sensor);
    if (!readings.open(options.readings, readingColumns, results, streams, err)
        || !written.open(options.output, streams))
        return false;
    truth.emplace(table(), !options.localFrame || mode >= firstThreeVectorMode);
    return true;
}

int ReadingsRun::finish() {
    if (!readings.finish(written, streams.err))
        return unusable;
    if (!options.quiet)
        rows.print(streams.err);
    if (Interrupt::requested())
        return interrupted;
    return rows.allGood() ? allGood : someRowsBad;
}

} // namespace kiv::host
