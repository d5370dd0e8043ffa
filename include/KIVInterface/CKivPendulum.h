#pragma once

#include "KIVInterface/CKivModel.h"

// Mount modes 3 and 4, and every mode that no other model claims: the sensor's transverse axis from
// one inclination reading by a relaxed iteration. Reads M[0] to M[2], M[4] (the inclination) to
// M[6], scale factors 0 to 6 and the parity. False when the result is not finite.
class KIV_API CKivPendulum : public CKivModel {
public:
    CKivPendulum();
    CKivPendulum(const CKivPendulum& other);
    CKivPendulum& operator=(const CKivPendulum& other);
    ~CKivPendulum() override;

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
