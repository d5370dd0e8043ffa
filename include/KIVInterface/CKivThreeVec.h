#pragma once

#include "KIVInterface/CKivModel.h"

// Mount modes 7 and 8: the measured direction and the vertical, each known in the sensor's and in
// the instrument's frame. Reads M[0] to M[2], M[4] (the level) to M[6], the QVC parameters, the
// level 1 parameters 3 to 6 and the parity. Always true, also where the vector is zero or along the
// vertical: the rotation then means nothing.
class KIV_API CKivThreeVec : public CKivModel {
public:
    CKivThreeVec();
    CKivThreeVec(const CKivThreeVec& other);
    CKivThreeVec& operator=(const CKivThreeVec& other);
    ~CKivThreeVec() override;

    void UpdateSFactors(float* values, int count) override;
    bool CalTranxMatrix(double* const M, double azimuthOffset, double elevationOffset, int n,
                        bool levelXOutside, bool levelYOutside) override;
    void UpdateQVCParameters(float* values, int count) override;
    void UpdateLevel1Parameters(float* values, int count) override;
    void UpdateLevel2Parameters(float* values, int count) override;
    void GetQVCMatrix(float* out, int count) override;
};
