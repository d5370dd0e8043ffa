#include "c/SettingChecks.h"

#include <cmath>

#include "c/Refusal.h"
#include "support/RotationCheck.h"

namespace kiv::c {

namespace {

template <typename Number>
int refuseNumber(const char* argument, std::size_t index, Number found) {
    return refuse(KIV_STATUS_BAD_ARGUMENT, argument, "[", index,
                  "]: expected a finite number, found ", found);
}

} // namespace

int checkNumber(const char* argument, double value) {
    return std::isfinite(value) ? int{KIV_STATUS_OK}
                                : refuse(KIV_STATUS_BAD_ARGUMENT, argument,
                                         ": expected a finite number, found ", value);
}

int checkNumbers(const char* argument, const float* values, std::size_t rows, std::size_t columns) {
    for (std::size_t i = 0; i < rows * columns; ++i)
        if (!std::isfinite(values[i]))
            return columns == 1 ? refuseNumber(argument, i, values[i])
                                : refuse(KIV_STATUS_BAD_ARGUMENT, argument, ": row ", i / columns,
                                         ", column ", i % columns,
                                         " (from 0): expected a finite number, found ", values[i]);
    return KIV_STATUS_OK;
}

int checkTiltTable(const float* table, std::size_t rows) {
    if (const int code = checkNumbers("table", table, rows, 2))
        return code;
    const bool falls = rows > 1 && table[2] < table[0];
    for (std::size_t row = 1; row < rows; ++row) {
        const float before = table[2 * row - 2];
        const float reading = table[2 * row];
        if (falls ? !(reading < before) : !(reading > before))
            return refuse(KIV_STATUS_BAD_ARGUMENT, "table: row ", row,
                          " (from 0): expected a reading ", falls ? "below" : "above", " ", before,
                          ", that of the row before, found ", reading);
    }
    return KIV_STATUS_OK;
}

int checkRotationMatrix(const double* m) {
    for (std::size_t i = 0; i < 9; ++i)
        if (!std::isfinite(m[i]))
            return refuseNumber("m", i, m[i]);
    const RotationCheck check = checkRotation(m);
    if (!(check.departure <= rotationTolerance))
        return refuse(KIV_STATUS_BAD_ARGUMENT,
                      "m: expected a rotation, found rows that miss length 1 and right angles by ",
                      static_cast<float>(check.departure));
    if (check.determinant < 0)
        return refuse(KIV_STATUS_BAD_ARGUMENT,
                      "m: expected a rotation, found a reflection (determinant -1)");
    return KIV_STATUS_OK;
}

} // namespace kiv::c
