#pragma once

// The construction from the measured direction and the vertical, shared by the one-level and the
// two-level model. Level and QVC blocks are laid out as in the parameter file; QVC vectors stand in
// the order x, z, y.
namespace kiv {

// The unit vector of a block's axis: x (0) or y (1), tilted towards the other of these and towards
// z by tilts[0] and tilts[1], degrees.
void tiltedAxis(const float* tilts, int untilted, double* axis);

struct MeasuringDirection {
    double w1[3];     // unit vector in the frame of the sensor's head
    double azimuth;   // of the measured vector in the instrument frame, degrees
    double elevation; // degrees
};

// Takes the measurement matrix M, the QVC block (tilts 3, 4 of the elevation axis and angle 5 of
// the start vector, degrees) and the elevation encoder offset in radians.
MeasuringDirection measuringDirection(const double* M, const float* qvcParameters,
                                      double elevationOffset);

// The measured direction and the vertical as the instrument has them.
struct InstrumentSide {
    double w2[3];     // the vertical: down in a mount mode of parity 0, else up
    double elevation; // of the measured direction, degrees
    double frame[9];  // columns e, b0, f: b0 the measured direction, e and f across it
};

// Starts from the measured direction's azimuth and elevation in degrees and the mount mode's
// parity.
InstrumentSide instrumentSide(int parity, double azimuth, double elevation);

// The head's rotation, out row-major, from one level: its block (tilts 3, 4 of the axis, zero
// offset 5 in degrees, gain 6), its reading in degrees with the sign reversed, and the measuring
// direction w1 in the sensor's frame.
void rotationFromLevel(const float* levelParameters, double levelReading, double* w1,
                       InstrumentSide& instrument, double* out);

// qvcMatrix[0..2] = the QVC vector carried into the instrument frame by k.
void storeQvcOutput(const double* k, const float* qvcParameters, float* qvcMatrix);

// M = k turned back by the azimuth encoder (angle in degrees, offset in radians).
void rotateBackByAzimuth(const double* k, double azimuthAngle, double azimuthOffset, double* M);

} // namespace kiv
