#pragma once

#include "KIVInterface/CKivModel.h"

// Mount modes 1 and 2: the sensor's tilted vertical from two level readings, the frame from the
// measured direction and that vertical. Reads M[0] to M[6], scale factors 0 (degrees over 90
// between the level axes) and 1 (degrees added to the direction of the tilt). False when the result
// is not finite.
class KIV_API CKivDualLevel : public CKivModel {
public:
    CKivDualLevel();
    CKivDualLevel(const CKivDualLevel& other);
    CKivDualLevel& operator=(const CKivDualLevel& other);
    ~CKivDualLevel() override;

    void UpdateSFactors(float* values, int count) override;
    bool CalTranxMatrix(double* const M, double azimuthOffset, double elevationOffset, int n,
                        bool levelXOutside, bool levelYOutside) override;
    void UpdateQVCParameters(float* values, int count) override;
    void UpdateLevel1Parameters(float* values, int count) override;
    void UpdateLevel2Parameters(float* values, int count) override;
    void GetQVCMatrix(float* out, int count) override;
    virtual bool CalTranxMatrix(double* const M, double azimuthOffset, double elevationOffset,
                                int n);
};
