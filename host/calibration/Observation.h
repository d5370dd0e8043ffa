#pragma once

#include <cstddef>
#include <optional>

#include "KIVInterface/CKivPrm.h"
#include "KIVInterface/Encoder.h"
#include "KIVInterface/Records.h"
#include "host/rows/TimeStamp.h"
#include "simulator/RecordTables.h"

namespace kiv::host {

enum class Poses : unsigned char {
    known,    // true angles in machine coordinates
    relative, // the same of another body, seen in another frame
    stations, // none; a sensor that stands still, seen from levelled stations
};

// A row of readings as a calibration takes it in.
struct Observation {
    KIV_RAWINFO raw{};
    double vector[3]{};   // instrument frame, length unit
    double rotation[9]{}; // of the true angles, row-major
    double placement = 0; // with stations, the numbers that the table has
    double station = 0;
    // By the tables, degrees, and the slope of each against its raw reading.
    double azimuth = 0, elevation = 0, curveX = 0, curveY = 0;
    double azimuthSlope = 1, elevationSlope = 1, curveXSlope = 1, curveYSlope = 1;
    // Where it stands.
    std::size_t table = 0, line = 0;
    std::optional<TimeStamp> time; // where a report is asked for
};

// The tables of a record.
class CalibrationTables {
public:
    explicit CalibrationTables(CKivPrm& record);

    // From the raw readings. False when a tilt that the model reads is outside its table.
    bool take(Observation& row, bool readsLevelX);

private:
    CEncoder azimuth;
    CEncoder elevation;
    simulator::TiltCurve tiltX;
    simulator::TiltCurve tiltY;
};

} // namespace kiv::host
