#pragma once

#include <memory>
#include <mutex>

#include "KIVInterface/CKivModel.h"
#include "KIVInterface/CKivPrm.h"
#include "KIVInterface/Encoder.h"
#include "KIVInterface/Export.h"
#include "KIVInterface/Records.h"
#include "KIVInterface/StatusCodes.h"

namespace kiv {
struct SensorAccess;
struct SensorUpdate;
} // namespace kiv

// One physical sensor. Fill it through the setters, choose its model with setMountMode, then call
// updateKIVData for every measurement.
//
// Every int operation gives KIV_OK, or KIV_BAD_ARGUMENT for a null pointer, or a count or matrix
// order that the storage cannot hold; a refused call changes nothing. Values are copied.
//
// Threads: updateKIVData, ReadMatrix and the setters but setThermalFactor take the object's lock
// and may run at once. setMountMode, setThermalFactor, Destroy, Initialization, construction (also
// of a copy) and destruction take none: no other thread may use the object meanwhile. Separate
// objects share nothing.
class KIV_API CKiv {
public:
    CKiv();
    CKiv(const CKiv& other); // deep: own tables, model, record and lock
    CKiv& operator=(const CKiv&) = delete;
    // The order of the virtual operations is part of the binary interface.
    virtual ~CKiv();
    // Releases tables, model and record; every other value stays, the encoders' corrections and the
    // reference among them.
    virtual void Destroy();

    int Initialization(); // does nothing

    // The first call after construction or Destroy creates the model: 1, 2 CKivDualLevel; 3, 4
    // CKivPendulum; 5, 6 CKivPolarizer; 7, 8 CKivThreeVec; 9, 10 CKivThreeVec2Level; any other
    // CKivPendulum; its parity is mode % 2, -1 for a negative odd mode. Every call stores mode and
    // hands scale factors, QVC and level parameters to the model, which sees later changes of them
    // only at the next call. In modes 7 and above every update puts the model's QVC output in the
    // place of all six QVC parameters: set them anew before such a call.
    int setMountMode(int mode);

    // Corrects the readings; with status 2 computes the orientation. The first measurement whose
    // refMetric is at most 0.4 and that is not blocked becomes the reference orientation; later
    // ones yield the rotation angles in degrees. Results that were not computed are 0. In modes 5
    // to 10 a zero vector or a value that is not finite passes as a result that is no number, also
    // as the reference. Allocates nothing.
    void updateKIVData(const KIV_RAWINFO& raw, KIV_INFO& info);

    // m (9 doubles, row-major) = the last update's matrix, the identity where it computed none; for
    // modes 7 and above always the identity. KIV_NO_TRANSFORM, with m filled all the same, when the
    // last update's status was not 2 or there was none.
    int ReadMatrix(double* m);

    // Home angles in degrees from frameX (first axis of the tilt frame), a direction, two angles in
    // degrees (x enters homeH, y homeV) and two tilts in degrees (about x and about y; z is not
    // read). False, and outputs (not null) without meaning, when the tilt frame is singular.
    // Uses no member.
    bool Calc_HV0(D_VECTOR3 frameX, D_VECTOR3 direction, D_VECTOR2 angles, D_VECTOR3 tilt,
                  double* homeH, double* homeV);

    // count rows (angle, correction) in degrees; count 0 takes the correction away.
    int setAzimuthComp(int count, const float* table);
    int setElevationComp(int count, const float* table);
    // count >= 1 spline knots and three further values (count + 3 floats), 4 * count coefficients
    // as CKivPrm gives them.
    int setLevelXComp(int count, const float* table, const double* spline);
    int setLevelYComp(int count, const float* table, const double* spline);
    // The first count values of a block of 7, 7, 6 and 8; the others stay.
    int setLevel1Parameters(const float* values, int count);
    int setLevel2Parameters(const float* values, int count);
    int setQVCParameters(const float* values, int count);
    int setScaleFactors(const float* values, int count);
    // n * n values, row-major, n from 1 to 3; the update needs 3.
    int setLocalMatrix(const double* m, int n);
    int setMachineMatrix(double* m, int n);
    int setKnownVector(const double* v);      // 3 values, kept and not used
    int setEncoderOffset(const F_VECTOR2& v); // azimuth, elevation: radians
    int setTiltOffset(const F_VECTOR2& v);    // X, Y: degrees
    int setThermalFactor(const F_VECTOR4& v); // X slope, X intercept, Y slope, Y intercept
    int setMcsFlag(bool flag); // true: angles in machine coordinates; false: against the reference

private:
    friend struct kiv::SensorAccess;
    friend struct kiv::SensorUpdate;

    std::mutex lock;
    CEncoder elEncoder;
    CEncoder azEncoder;
    double refInverse[9] = {};
    double localInverse[9] = {};
    double encoderOffset[2] = {};
    double knownVector[3] = {};
    double localMatrix[9] = {};
    double machineMatrix[9] = {};
    float tiltOffset[2] = {};
    float thermalFactor[4] = {};
    int mountMode = 0;
    int levelXCount = 0;
    std::unique_ptr<float[]> levelXTable;
    std::unique_ptr<double[]> levelXSpline;
    int levelYCount = 0;
    std::unique_ptr<float[]> levelYTable;
    std::unique_ptr<double[]> levelYSpline;
    int azimuthCompCount = 0;
    int elevationCompCount = 0;
    std::unique_ptr<float[]> azimuthComp;
    std::unique_ptr<float[]> elevationComp;
    float scaleFactors[8] = {};
    bool referenceSet = false;
    double transform[9] = {};
    double result[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    double work[9] = {};
    bool mcsFlag = true;
    std::unique_ptr<CKivModel> model;
    bool matrixValid = false;
    float qvcParameters[6] = {};
    float level1Parameters[7] = {};
    float level2Parameters[7] = {};

public:
    // The host may load it; the sensor itself does not use it. Null after Destroy.
    std::unique_ptr<CKivPrm> prm;
};
