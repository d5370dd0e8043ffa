#pragma once

#include "KIVInterface/CKivModel.h"

// Mount modes 5 and 6: a roll about the measured direction by the polarizer reading. Reads M[0] to
// M[2], M[4] (the roll) to M[6], scale factors 0, 1, 4, 5, 6. Always true; a zero vector gives
// entries that are not finite.
class KIV_API CKivPolarizer : public CKivModel {
public:
    CKivPolarizer();
    CKivPolarizer(const CKivPolarizer& other);
    CKivPolarizer& operator=(const CKivPolarizer& other);
    ~CKivPolarizer() override;

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
