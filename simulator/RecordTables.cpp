#include "simulator/RecordTables.h"

#include "KIVInterface/CKivPrm.h"
#include "support/ZelUtil.h"

namespace kiv::simulator {

namespace {

template <typename Get>
TiltCurve curveOf(CKivPrm& record, Get get) {
    TiltCurve curve;
    unsigned int count = 0;
    (record.*get)(count, nullptr, nullptr);
    curve.knots = static_cast<int>(count);
    curve.table.resize(static_cast<std::size_t>(count) + 3);
    curve.spline.resize(4 * static_cast<std::size_t>(count) + 1);
    (record.*get)(count, curve.table.data(), curve.spline.data());
    return curve;
}

template <typename Get>
CEncoder encoderOf(CKivPrm& record, Get get) {
    CEncoder encoder;
    unsigned int count = 0;
    (record.*get)(count, nullptr);
    std::vector<float> rows(2 * static_cast<std::size_t>(count) + 1);
    (record.*get)(count, rows.data());
    encoder.setCalTable(rows.data(), static_cast<int>(count));
    return encoder;
}

} // namespace

double TiltCurve::at(float raw, bool& outside) {
    return CalcSpline(true, table.data(), spline.data(), knots - 1, raw, &outside);
}

TiltCurve tiltXCurveOf(CKivPrm& record) {
    return curveOf(record, &CKivPrm::getLevelXComp);
}

TiltCurve tiltYCurveOf(CKivPrm& record) {
    return curveOf(record, &CKivPrm::getLevelYComp);
}

CEncoder azimuthEncoderOf(CKivPrm& record) {
    return encoderOf(record, &CKivPrm::getAzimuthComp);
}

CEncoder elevationEncoderOf(CKivPrm& record) {
    return encoderOf(record, &CKivPrm::getElevationComp);
}

} // namespace kiv::simulator
