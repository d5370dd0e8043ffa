/* A host of the Visual C++ ABI that needs no run-time library: Tg5.prm of the current folder, two readings, the
 * angles of each as examples/minimal_host.c prints them. */
#include <kiv.h>

typedef void* HANDLE;
#ifdef __cplusplus
extern "C" {
#define CHECK(condition) static_assert(condition, #condition)
#else
#define CHECK(condition) _Static_assert(condition, #condition)
#endif
__declspec(dllimport) void ExitProcess(unsigned code);
__declspec(dllimport) HANDLE GetStdHandle(unsigned which);
__declspec(dllimport) int WriteFile(HANDLE file, const void* text, unsigned size, unsigned* written, void* none);
int _fltused = 0; /* asked for by all code with floating point */
void start(void);
#ifdef __cplusplus
}
#endif

CHECK(sizeof(kiv_reading) == 52 && sizeof(kiv_result) == 48);
CHECK(offsetof(kiv_reading, vector) == 8 && offsetof(kiv_reading, level_x) == 28);
CHECK(offsetof(kiv_reading, ref_metric) == 40 && offsetof(kiv_reading, ref_blocked) == 48);
CHECK(offsetof(kiv_result, rx) == 20 && offsetof(kiv_result, ry) == 28 && offsetof(kiv_result, qvc) == 36);

static char text[256];
static unsigned length = 0;

static void put(const char* part) {
    while (*part)
        text[length++] = *part++;
}

/* With four decimals. */
static void put_degrees(double value) {
    char digits[16];
    unsigned n = 0;
    const double magnitude = value < 0 ? -value : value;
    long long rest = (long long)(magnitude * 10000 + 0.5);
    if (value < 0)
        put("-");
    while (rest > 0 || n < 6) {
        digits[n++] = (char)('0' + rest % 10);
        rest /= 10;
        if (n == 4)
            digits[n++] = '.';
    }
    while (n > 0)
        text[length++] = digits[--n];
}

static const kiv_reading readings[] = {
    {0, 2, {4000, 1500, 450}, 12.5F, 3.0F, 1.0F, -2.0F, 20, 0.1F, 0, false},
    {0, 2, {4000, 1500, 450}, 27.5F, 3.0F, 1.0F, -2.0F, 20, 0.1F, 0, false}};
static kiv_result results[2];
static uint8_t states[2];

static int run(void) {
    kiv_parameters* parameters;
    kiv_sensor* sensor;
    int i, code = kiv_parameters_new(&parameters);
    if (code == 0)
        code = kiv_parameters_load(parameters, "Tg5.prm");
    if (code == 0)
        code = kiv_sensor_new(parameters, &sensor);
    if (code == 0)
        code = kiv_sensor_update_many(sensor, readings, 2, results, 0, states);
    if (code != 0)
        return code;
    if (states[0] != KIV_STATE_REFERENCE || states[1] != KIV_STATE_OK)
        return 1;
    for (i = 0; i < 2; ++i) {
        put("rx ");
        put_degrees(results[i].rx);
        put("  ry ");
        put_degrees(results[i].ry);
        put("  rz ");
        put_degrees(results[i].rz);
        put(" degrees\n");
    }
    kiv_sensor_free(sensor);
    kiv_parameters_free(parameters);
    return 0;
}

void start(void) {
    unsigned written;
    const int code = run();
    WriteFile(GetStdHandle((unsigned)-11), text, length, &written, 0);
    ExitProcess((unsigned)code);
}
