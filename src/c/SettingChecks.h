#pragma once

#include <cstddef>

// Values of settings with which angles would be wrong. Each function gives 0, or the refusal of the
// first such value.
namespace kiv::c {

int checkNumber(const char* argument, double value);
// An array of rows with so many columns.
int checkNumbers(const char* argument, const float* values, std::size_t rows, std::size_t columns);
// Rows of a raw reading and a tilt, the readings rising or falling.
int checkTiltTable(const float* table, std::size_t rows);
int checkRotationMatrix(const double* m);

} // namespace kiv::c
