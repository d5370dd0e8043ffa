#pragma once

#include "KIVInterface/CKivModel.h"

// Mount modes 9 and 10: the three-vector construction once per usable level, averaged through x-y-z
// angles without regard to the seam at +-180 degrees. Reads M[0] to M[6], the QVC parameters, the
// level parameters 3 to 6 and the parity. False, and M unchanged, when both levels are outside.
class KIV_API CKivThreeVec2Level : public CKivModel {
public:
    CKivThreeVec2Level();
    CKivThreeVec2Level(const CKivThreeVec2Level& other);
    CKivThreeVec2Level& operator=(const CKivThreeVec2Level& other);
    ~CKivThreeVec2Level() override;

    void UpdateSFactors(float* values, int count) override;
    bool CalTranxMatrix(double* const M, double azimuthOffset, double elevationOffset, int n,
                        bool levelXOutside, bool levelYOutside) override;
    void UpdateQVCParameters(float* values, int count) override;
    void UpdateLevel1Parameters(float* values, int count) override;
    void UpdateLevel2Parameters(float* values, int count) override;
    void GetQVCMatrix(float* out, int count) override;

    // The rotation from one level, out (row-major): level parameters (7, of which 3 to 6 are read),
    // the level reading in degrees with its sign reversed, the measuring direction w1 in the sensor
    // frame, and the measured direction's azimuth and elevation in degrees; n is 3.
    void GetF1(const float* levelParameters, double levelReading, double* w1, double azimuth,
               double elevation, int n, double* out);
};
