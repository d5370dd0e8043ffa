#include <kiv.hpp>

#include <cstdio>
#include <exception>
#include <vector>

int main(int argc, char** argv) try {
    const kiv::Parameters parameters(argc > 1 ? argv[1] : "Tg5.prm");
    kiv::Sensor sensor(parameters);

    // Vector, azimuth, elevation, tilts X and Y, temperature; the first one becomes the reference.
    const kiv::Reading readings[] = {
        {0, 2, {4000, 1500, 450}, 12.5F, 3.0F, 1.0F, -2.0F, 20, 0.1F, 0, false},
        {0, 2, {4000, 1500, 450}, 27.5F, 3.0F, 1.0F, -2.0F, 20, 0.1F, 0, false}};
    std::vector<kiv::Result> results(2);
    std::vector<kiv::Trust> trust(2);
    sensor.judge(readings, results, trust);
    for (std::size_t i = 0; i < results.size(); ++i) {
        const kiv::Result& r = results[i];
        std::printf("rx %.4f  ry %.4f  rz %.4f degrees\n", r.rx, r.ry, r.rz);
        if (trust[i].trust > KIV_TRUST_GOOD)
            std::fprintf(stderr, "not to be trusted: %s\n", kiv_trust_name(trust[i].trust));
    }
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
