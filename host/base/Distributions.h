#pragma once

namespace kiv::host {

// Distributions of statistics' tests and intervals. Degrees of freedom are any positive number, an
// effective one too; above a million they count as a million. What is out of range gives no number.

// The probability of a value up to t of Student's distribution.
double studentProbability(double t, double degreesOfFreedom);
// The value that is not exceeded with the probability, from 0 to 1.
double studentQuantile(double probability, double degreesOfFreedom);

// The same of the chi-squared distribution; the value is at least 0.
double chiSquaredProbability(double value, double degreesOfFreedom);
double chiSquaredQuantile(double probability, double degreesOfFreedom);

} // namespace kiv::host
