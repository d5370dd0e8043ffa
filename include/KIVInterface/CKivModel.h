#pragma once

#include "KIVInterface/Export.h"

// One mounting principle of the sensor: turns a measurement matrix into the sensor's rotation
// matrix.
//
// CalTranxMatrix, given in M (row-major, nine doubles):
//   M[0..2]  measured vector x, y, z in the instrument frame, length unit of the instrument
//   M[3]     corrected level X, degrees
//   M[4]     corrected level Y, degrees
//   M[5]     corrected azimuth encoder angle, degrees
//   M[6]     corrected elevation encoder angle, degrees
//   M[7..8]  not read
// and the two encoder offsets in radians; n is 3, any other order gives false and leaves M
// unchanged. Returned: true, and M the rotation with (instrument vector) = M * (sensor vector). The
// flags say that a level reading is not to be used; CKivThreeVec2Level alone reads them. CKivModel
// itself does nothing and gives true.
//
// The Update operations copy count values into the front of a block and nothing for a count of 0 or
// less; the caller passes at most the block's size (8, 6, 7, 7). A model has no lock and allocates
// nothing.
class KIV_API CKivModel {
public:
    CKivModel();
    CKivModel(const CKivModel& other);
    CKivModel& operator=(const CKivModel& other);
    virtual ~CKivModel();

    // The order of the virtual operations is part of the binary interface.
    virtual void UpdateSFactors(float* values, int count);
    virtual bool CalTranxMatrix(double* const M, double azimuthOffset, double elevationOffset,
                                int n, bool levelXOutside, bool levelYOutside);
    virtual void UpdateQVCParameters(float* values, int count);
    virtual void UpdateLevel1Parameters(float* values, int count);
    virtual void UpdateLevel2Parameters(float* values, int count);
    // Copies the first count (at most 6) values of the last QVC output, x, z, y of the QVC vector
    // in the instrument frame; models without one leave out as it was.
    virtual void GetQVCMatrix(float* out, int count);

    // The parity of the mount mode (1: odd, 0: even); a negative one is ignored. The stored parity.
    int set_iMMode(int mode);

protected:
    float scaleFactors[8] = {};
    int iMMode = 0;
    float qvcParameters[6] = {};
    float level1Parameters[7] = {};
    float level2Parameters[7] = {};
    float qvcMatrix[6] = {};
};
