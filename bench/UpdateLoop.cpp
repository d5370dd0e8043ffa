// update_loop PARAMETER_FILE READINGS REPEATS: takes the records in a file through updateKIVData,
// as a host in C++ does, and prints the least time of a whole pass in seconds.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "KIVInterface/ConfigureSensor.h"

int main(int argc, char** argv) {
    if (argc != 4)
        return 2;
    const std::string path = argv[1];
    CKivPrm record;
    CKiv sensor;
    if (record.ReadCalibrationFile(path.substr(0, path.find_last_of('/')).c_str(), 5) != KIV_OK
        || kiv::configureSensor(sensor, record) != KIV_OK)
        return 2;
    std::ifstream file(argv[2], std::ios::binary | std::ios::ate);
    std::vector<KIV_RAWINFO> readings(static_cast<std::size_t>(file.tellg()) / sizeof(KIV_RAWINFO));
    std::vector<KIV_INFO> results(readings.size());
    file.seekg(0);
    file.read(reinterpret_cast<char*>(readings.data()),
              static_cast<std::streamsize>(readings.size() * sizeof(KIV_RAWINFO)));

    using Clock = std::chrono::steady_clock;
    double least = 1e9;
    for (int i = std::atoi(argv[3]); i > 0; --i) {
        const auto start = Clock::now();
        for (std::size_t k = 0; k < readings.size(); ++k)
            sensor.updateKIVData(readings[k], results[k]);
        least = std::min(least, std::chrono::duration<double>(Clock::now() - start).count());
    }
    std::printf("%.9f\n", least);
}
