#pragma once

#include <span>

namespace kiv::host {

// What neighbouring values have in common makes their mean, and a slope through them, less sure
// than as many independent values would.
struct Correlation {
    double variance;  // of a single value; no number where there are too few
    double inflation; // of the variance of a mean or slope: the values for each independent one
    double degreesOfFreedom; // effective ones, of such a variance
    // So strong that independent values seldom show it, once in 160 times.
    bool evident;
};

// Of what is left of values behind a fit with so many parameters: 1 for a mean, 2 for a line.
//
// The inflation is the integrated autocorrelation, summed up to where the initial monotone
// positive sequence of pairs of lags falls below what white noise makes of it. The fit draws the
// autocovariances down by the variance of what is fitted, which is put back. The degrees of freedom
// are those of an autoregressive process of first order, by the large-sample variances of its two
// parameters.
// Sources: C. Geyer, Statistical Science 7 (1992), 473 (the sequence); F. Marriott, J. Pope,
// Biometrika 41 (1954), 390 (the bias).
Correlation correlationOf(std::span<const double> residuals, int fittedParameters);

} // namespace kiv::host
