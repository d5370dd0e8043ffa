#pragma once

#include <cstddef>
#include <vector>

// Corrects the raw readings of one angle encoder through a calibration table: corrected = raw +
// correction(raw), the correction periodic over 360 degrees and piecewise linear through the rows.
//
// Hosts have no use for it, and nothing of it is exported: it stands among the public headers
// because a CKiv holds two of them, so that the object's layout needs it.
class CEncoder {
public:
    CEncoder() = default;

    // Takes count rows (angle, correction) in degrees; the encoder keeps its own copy. Angles are
    // taken into one turn; of rows at the same angle the last one counts. 0 when the table is in
    // use; 20, and no correction from then on, when it is null or empty or holds a value that is
    // not finite. If an allocation throws, the earlier table stays in use.
    int setCalTable(const float* table, int count);

    // Takes in the raw reading, degrees.
    void setRawReading(float raw);

    // The corrected angle in degrees, not wrapped. Without a table the raw angle itself.
    float encCalibration(float raw) const;

private:
    struct Row {
        double angle;      // degrees
        double correction; // degrees
        double slope;      // of the correction up to the next row
        // One turn is divided into as many equal sectors as the table has rows: the last row
        // before the sector whose number is this row's index.
        std::size_t lastBeforeSector;
    };

    std::size_t sectorOf(double angle) const; // never falls where the angle rises

    std::vector<Row> rows; // ascending; begins and ends outside one turn, so that no look-up wraps
    float rawReading = 0.0F;
};
