#pragma once

#include <memory>

#include "KIVInterface/Export.h"
#include "KIVInterface/Records.h"
#include "KIVInterface/StatusCodes.h"

namespace kiv {
struct RecordLoading;
}

// The calibration parameters of one sensor as its parameter file gives them. A record has no lock:
// the host orders the calls on one record.
//
// Every accessor with a result answers KIV_NOT_LOADED until a file has been loaded, then
// KIV_BAD_ARGUMENT for a null pointer; a refused call writes nothing but the count where noted.
class KIV_API CKivPrm {
public:
    CKivPrm();
    ~CKivPrm();
    CKivPrm(const CKivPrm&) = delete;
    CKivPrm& operator=(const CKivPrm& other); // the tables are copied

    // Releases the tables; every other value stays.
    void Destroy();

    // Reads directory\Tg<id>.prm, an empty directory standing for the current one. KIV_OK,
    // KIV_CANNOT_OPEN (nothing stored; also for a path that is no regular file or does not fit in
    // 260 bytes), or KIV_BAD_FORMAT (the blocks before the failing one are stored). id is taken as
    // a 32-bit signed value.
    int ReadCalibrationFile(const char* directory, unsigned long id);

    // Copies the file that ReadCalibrationFile last tried into the layout of the writer, by way of
    // $tmp.prm in the current directory: the titles as the format has them, every number in single
    // precision and with six decimals. Nothing of the record but that path is used, and nothing
    // changed. The file becomes writable; it is replaced only when the whole copy is on the disk.
    // KIV_OK, also when there is no such file or no path yet (nothing is done) and when the old
    // file could not be deleted (it stays, the copy in $tmp.prm) or the copy not be renamed (it is
    // in $tmp.prm alone); KIV_CANNOT_OPEN when the file cannot be made writable or be read, is a
    // link to $tmp.prm (nothing is touched), or the copy cannot be written; KIV_BAD_FORMAT, with
    // what was copied up to the fault in $tmp.prm. Takes a second; one at a time in a process.
    int PrmFileCopy();

    // Called with the id (601 to 624) of every format error; shows nothing.
    void DisplayErrMsg(unsigned int id);

    int getADMOffset(float& v) const;
    // (angle, correction) pairs in degrees: n rows, 2n floats. n is set before the pointer is
    // tested.
    int getAzimuthComp(unsigned int& n, float* table) const;
    int getElevationComp(unsigned int& n, float* table) const;
    // Angles of the table's first and last row, degrees.
    int getAzimuthCompRollover(float& first, float& last);
    int getElevationCompRollover(float& first, float& last);
    // Azimuth low, high, elevation low, high: degrees.
    int getEncoderLimit(F_VECTOR4& v) const;
    int getEncoderOffset(F_VECTOR2& v) const;                 // azimuth, elevation: radians
    int getKnownVector(double* v) const;                      // 3 doubles
    int getLevel1Parameters(float* v, unsigned int& n) const; // n = 7
    int getLevel2Parameters(float* v, unsigned int& n) const; // n = 7
    int getQVCParameters(float* v, unsigned int& n) const;    // n = 6
    int getScaleFactors(float* v, unsigned int& n) const;     // n = 8
    // Tilt spline: n knots and three further values (n + 3 floats), 4n coefficients. n is set
    // before the pointers are tested.
    int getLevelXComp(unsigned int& n, float* table, double* spline) const;
    int getLevelYComp(unsigned int& n, float* table, double* spline) const;
    // The first order * order stored values; KIV_BAD_ARGUMENT for an order outside 1 to 3.
    int getLocalMatrix(double* m, int order) const;
    int getMachineMatrix(double* m, int order); // the inverse of the file's machine matrix
    int getMountMode(int& mode) const;
    int getThermalFactor(F_VECTOR4& v) const; // X slope, X intercept, Y slope, Y intercept
    int getTiltOffset(F_VECTOR2& v) const;    // X, Y: degrees
    int GetKIVLevelLimits(F_VECTOR4& v);      // X low, X high, Y low, Y high

    int setEncoderOffset(const F_VECTOR2& v); // radians
    int setKnownVector(const double* v);
    int setLocalMatrix(const double* m, int order);      // order as in getLocalMatrix
    int setMachineMatrix(double* m, int order);          // stored as given
    int setScaleFactors(const float* v, unsigned int n); // KIV_BAD_ARGUMENT for n outside 1 to 8
    int setThermalFactor(const F_VECTOR4& v);
    int setTiltOffset(const F_VECTOR2& v);
    int SetKIVLevelLimits(F_VECTOR4 v);
    void SetVector(D_VECTOR3 v); // the known vector; also before a file is loaded

    // Rescales the intercept of one tilt channel (0: X, else Y) so that the thermal gain at the
    // mean of the three temperatures t (not null) becomes factor times what it was; also before a
    // file is loaded.
    void TgUpdateThermal(float factor, float* t, int channel);

private:
    friend struct kiv::RecordLoading;

    bool loaded = false;
    char prmPath[260] = {};
    double encoderOffset[2] = {}; // radians
    double knownVector[3] = {};
    double localMatrix[9] = {};
    double machineMatrix[9] = {};
    float tiltOffset[2] = {};
    float thermalFactor[4] = {};
    int mountMode = 0;
    float admOffset = 0.0F;
    unsigned int levelXCount = 0;
    std::unique_ptr<float[]> levelXTable;   // levelXCount + 3
    std::unique_ptr<double[]> levelXSpline; // 4 * levelXCount
    unsigned int levelYCount = 0;
    std::unique_ptr<float[]> levelYTable;
    std::unique_ptr<double[]> levelYSpline;
    unsigned int azimuthCompCount = 0;
    unsigned int elevationCompCount = 0;
    std::unique_ptr<float[]> azimuthComp; // 2 * azimuthCompCount
    std::unique_ptr<float[]> elevationComp;
    float scaleFactors[8] = {};
    float azimuthCompRollover[2] = {1.0F, 360.0F};
    float elevationCompRollover[2] = {1.0F, 360.0F};
    float qvcParameters[6] = {};
    float level1Parameters[7] = {};
    float level2Parameters[7] = {};
    float halfAngle[2] = {180.0F, 60.0F}; // degrees until a file is loaded, then radians
    float levelLimits[4] = {-35.0F, 35.0F, -35.0F, 35.0F};
};
