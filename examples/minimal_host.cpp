#include <KIVInterface.h>

#include <cstdio>

int main(int argc, char** argv) {
    CKivPrm record; // Tg5.prm in the folder given, by default the current one
    CKiv sensor;
    int code = record.ReadCalibrationFile(argc > 1 ? argv[1] : "", 5);
    if (code == KIV_OK)
        code = kiv::configureSensor(sensor, record);
    if (code != KIV_OK)
        return std::fprintf(stderr, "code %d: %s\n", code, kivStatusText(code)), 1;

    // Vector, azimuth, elevation, tilts X and Y, temperature; the first one becomes the reference.
    const KIV_RAWINFO readings[] = {
        {0, 2, {4000, 1500, 450}, 12.5F, 3.0F, 1.0F, -2.0F, 20, 0.1F, 0, false},
        {0, 2, {4000, 1500, 450}, 27.5F, 3.0F, 1.0F, -2.0F, 20, 0.1F, 0, false}};
    for (const KIV_RAWINFO& raw : readings) {
        KIV_INFO info;
        sensor.updateKIVData(raw, info);
        std::printf("rx %.4f  ry %.4f  rz %.4f degrees\n", info.rx, info.ry, info.rz);
    }
}
