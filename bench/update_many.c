/* update_many FILE: the least time of a reading in one call of kiv_sensor_update_many, in
 * nanoseconds. */
#include <stdio.h>
#include <time.h>

#include "kiv.h"

enum { count = 4000, passes = 60 };

static double now(void) {
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return 1e9 * (double)t.tv_sec + (double)t.tv_nsec;
}

int main(int argc, char** argv) {
    static kiv_reading readings[count];
    static kiv_result results[count];
    kiv_parameters* parameters;
    kiv_sensor* sensor;
    double least = 1e18;
    int i;

    if (argc != 2 || kiv_parameters_new(&parameters) || kiv_parameters_load(parameters, argv[1])
        || kiv_sensor_new(parameters, &sensor))
        return 1;
    for (i = 0; i < count; ++i) {
        const float step = (float)i;
        const kiv_reading reading = {
            0,
            2,
            {3000 + (float)(i % 700), 1000 - (float)(i % 900), 500 + (float)(i % 300)},
            (float)(i % 350),
            -12 + 0.5F * (float)(i % 30),
            1.5F + 0.3F * (float)(i % 7),
            -0.75F + 0.2F * (float)(i % 11),
            20 + step / count,
            0.1F,
            0,
            false};
        readings[i] = reading;
    }
    for (i = 0; i < passes; ++i) {
        const double start = now();
        kiv_sensor_update_many(sensor, readings, count, results, 0, 0);
        const double taken = (now() - start) / count;
        least = taken < least ? taken : least;
    }
    kiv_sensor_free(sensor);
    kiv_parameters_free(parameters);
    return printf("%.0f\n", least) < 0;
}
