#include <kiv.h>

#include <stdio.h>

int main(int argc, char** argv) {
    /* Vector, azimuth, elevation, tilts X and Y, temperature; the first becomes the reference. */
    const kiv_reading readings[] = {
        {0, 2, {4000, 1500, 450}, 12.5F, 3.0F, 1.0F, -2.0F, 20, 0.1F, 0, false},
        {0, 2, {4000, 1500, 450}, 27.5F, 3.0F, 1.0F, -2.0F, 20, 0.1F, 0, false}};
    kiv_result results[2];
    kiv_parameters* parameters = NULL;
    kiv_sensor* sensor = NULL;
    size_t i;

    int code = kiv_parameters_new(&parameters);
    if (code == KIV_STATUS_OK)
        code = kiv_parameters_load(parameters, argc > 1 ? argv[1] : "Tg5.prm");
    if (code == KIV_STATUS_OK)
        code = kiv_sensor_new(parameters, &sensor);
    if (code == KIV_STATUS_OK)
        code = kiv_sensor_update_many(sensor, readings, 2, results, NULL, NULL);
    for (i = 0; i < 2 && code == KIV_STATUS_OK; ++i)
        printf("rx %.4f  ry %.4f  rz %.4f degrees\n", results[i].rx, results[i].ry, results[i].rz);
    if (code != KIV_STATUS_OK)
        fprintf(stderr, "code %d: %s\n", code, kiv_last_error());
    kiv_sensor_free(sensor);
    kiv_parameters_free(parameters);
    return code != KIV_STATUS_OK;
}
