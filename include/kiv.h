/*
 * KIVInterface for every language that can call C. Rules for all functions:
 *
 * Status: every int that a function gives is a status code, 0 for success (KIV_STATUS_...). A call
 * that refuses writes nothing and leaves its handle as it was; a refused load changes the list of
 * faults, nothing else. Nothing throws, prints or ends the process.
 *
 * Null: a null handle or pointer gives 20, except where a pointer is said to be optional; an array
 * of 0 elements may be null. Freeing null does nothing.
 *
 * Ownership: what a ..._new or ..._copy hands out is freed once, by the ..._free of its kind; using
 * or freeing a handle after that is undefined. Arrays belong to the caller and are used during the
 * call alone. Texts that a function hands out belong to the library: those from a handle live until
 * it is loaded again or freed, that of kiv_last_error until its thread's next refused call, the
 * others as long as the library is loaded.
 *
 * Threads: handles share nothing, so that different threads use different handles at the same time.
 * Calls on one sensor wait for one another. Parameters may be read by several threads at once, but
 * not while they are loaded. No thread may use a handle that another one frees.
 *
 * Texts: UTF-8, paths too, on every platform; a backslash in a path separates folders, as a slash
 * does. Words from a parameter file are the file's bytes.
 *
 * Arrays: matrices are 3 x 3, row-major, 9 doubles; a count or capacity is one of elements.
 */
#ifndef KIV_H
#define KIV_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* The calling convention and the layout of the records, whatever a host's compiler is told. */
#ifdef _WIN32
#define KIV_CDECL __cdecl
#else
#define KIV_CDECL
#endif
#pragma pack(push, 8)

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Version and status ---- */

/* The version of this header. */
#define KIV_VERSION_MAJOR 0
#define KIV_VERSION_MINOR 1
#define KIV_VERSION_PATCH 0

/* The version of the library: such as "1.2.3", and 10000 * major + 100 * minor + patch. */
const char* KIV_CDECL kiv_version(void);
int32_t KIV_CDECL kiv_version_number(void);

enum {
    KIV_STATUS_OK = 0,
    KIV_STATUS_BAD_ARGUMENT = 20, /* null, or an argument out of its range */
    KIV_STATUS_NO_MEMORY = 21,    /* memory was refused */
    KIV_STATUS_CANNOT_OPEN = 550, /* the file cannot be opened, read or written */
    KIV_STATUS_NOT_LOADED = 551,  /* no parameter file has been loaded */
    KIV_STATUS_BAD_FORMAT = 553,  /* the parameter file does not follow its format */
    KIV_STATUS_NO_TRANSFORM = 554 /* there is no matrix, no reference or no solution */
};

/* Never null, also for a code that the library does not use. */
const char* KIV_CDECL kiv_status_text(int status);

/*
 * The detail of the calling thread's last refused call: an argument with what was expected and
 * found, a file with the system's reason ("Tg5.prm: No such file or directory"), the first fault of
 * a parameter file with its line and column. At most 1019 bytes; empty before the first refusal,
 * never null. A call that succeeds leaves it.
 */
const char* KIV_CDECL kiv_last_error(void);
/* The system's own number of that reason, errno or GetLastError; 0 where the system gave none. */
int KIV_CDECL kiv_last_system_error(void);

/* ---- Parameters: what one sensor's parameter file says ---- */

typedef struct kiv_parameters kiv_parameters;

int KIV_CDECL kiv_parameters_new(kiv_parameters** out);
void KIV_CDECL kiv_parameters_free(kiv_parameters* parameters); /* sensors made from them stay */
int KIV_CDECL kiv_parameters_copy(const kiv_parameters* parameters, kiv_parameters** out);

/*
 * Loads a parameter file, or its text of size bytes; what was loaded before goes. Where the file's
 * name is Tg<sensor ID>.prm, the file must be that sensor's. 550 (no such file, or no regular one),
 * or 553: also for a value that cannot be read, which is never taken for 0.
 */
int KIV_CDECL kiv_parameters_load(kiv_parameters* parameters, const char* path);
int KIV_CDECL kiv_parameters_load_text(kiv_parameters* parameters, const char* text, size_t size);

/*
 * What the last load refused, in the order of the text: the block that does not follow the format
 * and every value that could not be read. 0 after a load that gave another code than 553. Line and
 * column count from 1, the column in bytes.
 */
int KIV_CDECL kiv_parameters_fault_count(const kiv_parameters* parameters, size_t* count);
int KIV_CDECL kiv_parameters_fault(const kiv_parameters* parameters, size_t index, int64_t* line,
                                   int64_t* column, const char** expected, const char** found);

/*
 * What is doubtful in what is loaded, in the manner of the faults: values that the format allows
 * and a sensor's should not be, and text behind the last block, as kiv check warns of them. 0 when
 * nothing is loaded.
 */
int KIV_CDECL kiv_parameters_warning_count(const kiv_parameters* parameters, size_t* count);
int KIV_CDECL kiv_parameters_warning(const kiv_parameters* parameters, size_t index, int64_t* line,
                                     int64_t* column, const char** expected, const char** found);

/* The text that was loaded, byte for byte; size does not count the null character behind it. 551.
 */
int KIV_CDECL kiv_parameters_text(const kiv_parameters* parameters, const char** text,
                                  size_t* size);

/*
 * The blocks of a parameter file, by the names that kiv info --json prints ("angle_offset"), in the
 * order of the file; kiv_block_name gives null behind the last one.
 */
enum {
    KIV_BLOCK_INTEGER = 0,
    KIV_BLOCK_WORD = 1,
    KIV_BLOCK_NUMBERS = 2,       /* a fixed count of numbers */
    KIV_BLOCK_MATRIX = 3,        /* 9 numbers, row-major */
    KIV_BLOCK_ENCODER_TABLE = 4, /* rows of angle and correction, degrees */
    KIV_BLOCK_TILT_TABLE = 5     /* rows of knot and tilt, degrees; three limits; a word */
};
const char* KIV_CDECL kiv_block_name(size_t index);
int KIV_CDECL kiv_block_kind(const char* block, int32_t* kind);
/* The name of one of the block's numbers, or of a tilt table's limits, with its unit at the end
 * ("azimuth_deg"); null where there is no such name. */
const char* KIV_CDECL kiv_block_value_name(const char* block, size_t index);

/*
 * The values of a block, in the file's units. 20 for a block that is not known or has no such
 * values, 551 when nothing is loaded.
 */
int KIV_CDECL kiv_parameters_integer(const kiv_parameters* parameters, const char* block,
                                     int32_t* value);
/* The word of a block, or the one that closes a tilt table. */
int KIV_CDECL kiv_parameters_word(const kiv_parameters* parameters, const char* block,
                                  const char** word);
/* A table has two numbers a row. capacity: of values, at least the count, else 20. */
int KIV_CDECL kiv_parameters_number_count(const kiv_parameters* parameters, const char* block,
                                          size_t* count);
int KIV_CDECL kiv_parameters_numbers(const kiv_parameters* parameters, const char* block,
                                     float* values, size_t capacity);
/* The limits of a tilt table: low and high in degrees, and the further value; 3 floats. */
int KIV_CDECL kiv_parameters_limits(const kiv_parameters* parameters, const char* block,
                                    float* limits);

/*
 * Writes what was loaded into a file in the writer's layout, numbers with six decimals. At every
 * moment the path names a whole file, the old one or the new one, which is on the disk; a process
 * that writes to it at the same time does not disturb. The new one has the old one's owner, group
 * and mode; a link is followed. 551; 550 also for what is no regular file, has several names, is
 * read-only, or whose owner or mode cannot be kept: it stays as it is.
 */
int KIV_CDECL kiv_parameters_rewrite(const kiv_parameters* parameters, const char* path);

/* ---- Sensor: turns readings into orientations ---- */

typedef struct kiv_sensor kiv_sensor;

/* One measurement's raw readings; 52 bytes. */
typedef struct kiv_reading {
    int32_t unused1; /* not read */
    int32_t status;  /* 2: a measurement that yields an orientation */
    float vector[3]; /* measured vector in the instrument frame, the instrument's length unit */
    float azimuth;   /* of the encoder, degrees */
    float elevation; /* the same */
    float level_x;   /* raw; in mount modes 5 and 6 the numerator of a ratio */
    float level_y;   /* raw; in mount modes 5 and 6 also the denominator */
    float temperature;
    float ref_metric; /* the reference orientation is captured only at 0.4 or less */
    int32_t unused2;  /* not read */
    bool ref_blocked; /* true: this measurement does not become the reference */
} kiv_reading;

/* One measurement's results; 48 bytes. What was not computed is 0. */
typedef struct kiv_result {
    int32_t unused1; /* 0 */
    float azimuth;   /* corrected readings, degrees */
    float elevation;
    float level_x;
    float level_y;
    float rx; /* rotation angles, degrees; mind the order */
    float rz;
    float ry;
    int32_t unused2; /* 0 */
    float qvc[3];    /* mount modes 7 and above: x, y, z of the QVC vector */
} kiv_result;

/* Configured with all that the parameters say. 551. */
int KIV_CDECL kiv_sensor_new(const kiv_parameters* parameters, kiv_sensor** out);
void KIV_CDECL kiv_sensor_free(kiv_sensor* sensor);
/* The copy has the settings, the reference and the count of readings. */
int KIV_CDECL kiv_sensor_copy(const kiv_sensor* sensor, kiv_sensor** out);

/*
 * The frame of rx, ry, rz, by default the machine's; the local one is that of the reference
 * orientation. Without effect in mount modes 7 and above.
 */
enum { KIV_FRAME_LOCAL = 0, KIV_FRAME_MACHINE = 1 };
int KIV_CDECL kiv_sensor_set_frame(kiv_sensor* sensor, int frame);
int KIV_CDECL kiv_sensor_frame(const kiv_sensor* sensor, int32_t* frame);

/*
 * Each replaces what the parameters say. A value with which no angle would be right gives 20: a
 * number that is not finite, and what the setters below say. Scale factors, QVC and level
 * parameters reach the model with the next kiv_sensor_set_mount_mode.
 */
/* The model is that of the parameters' mount mode and stays: another mode gives 20. */
int KIV_CDECL kiv_sensor_set_mount_mode(kiv_sensor* sensor, int32_t mode);
int KIV_CDECL kiv_sensor_mount_mode(const kiv_sensor* sensor, int32_t* mode);
/* Whether the mode gives a matrix, as 1 to 6 do; the others give the QVC vector. */
int KIV_CDECL kiv_sensor_has_matrix(const kiv_sensor* sensor, bool* has);
/* rows of angle and correction in degrees, 2 * rows floats; 0 rows take the correction away. */
int KIV_CDECL kiv_sensor_set_azimuth_table(kiv_sensor* sensor, const float* table, size_t rows);
int KIV_CDECL kiv_sensor_set_elevation_table(kiv_sensor* sensor, const float* table, size_t rows);
/* rows (at least 1) of raw reading and tilt in degrees, 2 * rows floats, the readings rising or
 * falling from row to row, else 20. */
int KIV_CDECL kiv_sensor_set_tilt_x_table(kiv_sensor* sensor, const float* table, size_t rows);
int KIV_CDECL kiv_sensor_set_tilt_y_table(kiv_sensor* sensor, const float* table, size_t rows);
/* The first count values of a block of 7, 7, 6 and 8; the others stay. */
int KIV_CDECL kiv_sensor_set_level1_parameters(kiv_sensor* sensor, const float* values,
                                               size_t count);
int KIV_CDECL kiv_sensor_set_level2_parameters(kiv_sensor* sensor, const float* values,
                                               size_t count);
int KIV_CDECL kiv_sensor_set_qvc_parameters(kiv_sensor* sensor, const float* values, size_t count);
int KIV_CDECL kiv_sensor_set_scale_factors(kiv_sensor* sensor, const float* values, size_t count);
/* A rotation: m times its transpose is the identity to 1e-5, and m no reflection, else 20. */
int KIV_CDECL kiv_sensor_set_local_matrix(kiv_sensor* sensor, const double* m);
/* The same; the inverse of the file's machine matrix. */
int KIV_CDECL kiv_sensor_set_machine_matrix(kiv_sensor* sensor, const double* m);
/* 3 doubles, kept and not used. */
int KIV_CDECL kiv_sensor_set_known_vector(kiv_sensor* sensor, const double* v);
/* Radians. */
int KIV_CDECL kiv_sensor_set_encoder_offset(kiv_sensor* sensor, float azimuth, float elevation);
/* Degrees. */
int KIV_CDECL kiv_sensor_set_tilt_offset(kiv_sensor* sensor, float x, float y);
int KIV_CDECL kiv_sensor_set_thermal_factor(kiv_sensor* sensor, float x_slope, float x_intercept,
                                            float y_slope, float y_intercept);

/* What became of a reading, as in column state of kiv run. */
enum {
    KIV_STATE_OK = 0,             /* the angles are computed */
    KIV_STATE_STATUS = 1,         /* the measurement status is not 2: corrected readings alone */
    KIV_STATE_NO_REFERENCE = 2,   /* no reference orientation has been captured yet */
    KIV_STATE_REFERENCE = 3,      /* this reading became the reference */
    KIV_STATE_NO_ORIENTATION = 4, /* the model has none for it; angles may be no numbers */
    KIV_STATE_REFUSED = 5         /* not finite, or a zero vector: it did not reach the sensor */
};
/* The word that kiv run prints: "ok", "no_reference"; null for another number. */
const char* KIV_CDECL kiv_state_name(int state);

/*
 * One reading, or count of them in the order in which they were measured; 0 whatever came of them.
 * The first one that can becomes the reference orientation. A refused reading gives a result of
 * zeros. Allocates nothing. matrices, 9 doubles a reading, and states, 1 byte a reading, are
 * optional; the matrices are the identity where none was computed, and in mount modes 7 and above.
 * A million readings keep other calls on the sensor waiting for up to seconds: where an update must
 * not wait, they go to a copy.
 */
int KIV_CDECL kiv_sensor_update(kiv_sensor* sensor, const kiv_reading* reading, kiv_result* out);
int KIV_CDECL kiv_sensor_update_many(kiv_sensor* sensor, const kiv_reading* readings, size_t count,
                                     kiv_result* out, double* matrices, uint8_t* states);

/*
 * How far the angles of a reading can be trusted, as kiv run's columns trust and model_error_deg
 * say it: the first reason that holds, with KIV_TRUST_NO_ROTATION and KIV_TRUST_READING_LOST before
 * all others and KIV_TRUST_REFERENCE behind.
 */
enum {
    KIV_TRUST_NONE = -1,            /* there are no angles */
    KIV_TRUST_GOOD = 0,             /* none of what follows */
    KIV_TRUST_OUTSIDE_LIMITS = 1,   /* a tilt is outside its table or the file's level limits */
    KIV_TRUST_MIRROR_NEAR = 2,      /* a second, mirrored pose fits and is within the limits, too */
    KIV_TRUST_SEAM = 3,             /* the two levels' angles lie on both sides of 180 degrees */
    KIV_TRUST_LEVELS_DISAGREE = 4,  /* the two levels show turns that differ by over 0.1 degrees */
    KIV_TRUST_TWO_SIGNS = 5,        /* dual level: z and level Y differ in sign */
    KIV_TRUST_NEAR_LEVEL_SIGHT = 6, /* pendulum: z is so close to 0 that digits cancel */
    KIV_TRUST_ROLL_UNSEEN = 7,      /* the level hardly shows the turn about the line of sight */
    KIV_TRUST_NOT_SETTLED = 8,      /* the result does not show its level's reading again */
    KIV_TRUST_REFERENCE = 9,        /* local frame: the reference was not good */
    KIV_TRUST_NO_ROTATION = 10,     /* the matrix of the frame in use is no rotation */
    KIV_TRUST_READING_LOST = 11,    /* a parameter leaves a reading without effect */
    KIV_TRUST_RY_NEAR_90 = 12,      /* ry is so close to 90 degrees that rx and rz are unsure */
    KIV_TRUST_SPARE_DISAGREES =
        13 /* dual level: the levels ask for another elevation than the encoder's */
};
/* The word that kiv run prints: "good", "outside_limits"; null for another number. */
const char* KIV_CDECL kiv_trust_name(int trust);

/* The trust in one reading's angles; 8 bytes. */
typedef struct kiv_trust {
    int32_t trust;     /* KIV_TRUST_... */
    float model_error; /* bound of the model's own error of the largest of the three, degrees from
                          0 to 180; NaN where there are no angles */
} kiv_trust;

/*
 * Standard uncertainties (one standard deviation) of one reading's angles, from those that the
 * sensor was given and the rounding to single precision; 36 bytes. All NaN where there are no
 * angles, or none on one side of the readings.
 */
typedef struct kiv_uncertainty {
    float rx; /* degrees */
    float ry;
    float rz;
    float correlation_rx_ry; /* from -1 to 1; 0 where one of the two does not vary */
    float correlation_rx_rz;
    float correlation_ry_rz;
    float reference_rx; /* local frame: from the readings of the reference, which all have in */
    float reference_ry; /* common, not contained in rx, ry, rz; degrees, 0 in another frame */
    float reference_rz;
} kiv_uncertainty;

/*
 * Gives the sensor a standard uncertainty of a reading or parameter, by default 0, exactly known;
 * from 0 to 1e6. Names, those of kiv run --uncertainties, with their units at the end: x, y, z of
 * the vector, or vector_along and vector_across the line of sight, in its length unit; azimuth_deg,
 * elevation_deg; level_x, level_y, temperature, raw; azimuth_offset_deg, elevation_offset_deg,
 * tilt_offset_x_deg, tilt_offset_y_deg. 20 for another name, for what the model does not read, and
 * for the vector in both ways.
 */
int KIV_CDECL kiv_sensor_set_uncertainty(kiv_sensor* sensor, const char* name, double value);
/* Makes all of them 0 again, the vector in neither way. */
int KIV_CDECL kiv_sensor_clear_uncertainties(kiv_sensor* sensor);
/* The names in the order above; null behind the last one. */
const char* KIV_CDECL kiv_uncertainty_name(size_t index);

/*
 * As kiv_sensor_update and kiv_sensor_update_many, and how far the results can be trusted: trust
 * and uncertainty, one each a reading, are optional. An uncertainty takes up to 14 further updates.
 * Allocates nothing; what it needs, the sensor's setters allocate.
 */
int KIV_CDECL kiv_sensor_judge(kiv_sensor* sensor, const kiv_reading* reading, kiv_result* out,
                               kiv_trust* trust, kiv_uncertainty* uncertainty);
int KIV_CDECL kiv_sensor_judge_many(kiv_sensor* sensor, const kiv_reading* readings, size_t count,
                                    kiv_result* out, double* matrices, uint8_t* states,
                                    kiv_trust* trust, kiv_uncertainty* uncertainties);

/*
 * The part of a calibration in one reading's angles: their standard uncertainties from those of the
 * parameters that it found, with their correlations, degrees; 12 bytes. It is common to all
 * readings, and not contained in kiv_uncertainty. All NaN where there are no angles, or none on one
 * side of a parameter.
 */
typedef struct kiv_calibration_uncertainty {
    float rx;
    float ry;
    float rz;
} kiv_calibration_uncertainty;

/*
 * Gives the sensor what a calibration found: count names of parameters, and the covariance of their
 * errors, count x count doubles, row-major, in the units of the names. It takes the place of an
 * earlier one; 0 names take that away. What is not named is exactly known. Names are those of
 * kiv calibrate, of block and value: "angle_offset.azimuth_deg", "scale_factor.0", counted from 0
 * as are the rows of tables, "machine_coordinate_tranform_matrix.turn_z_deg",
 * "az_calibration_table.sine_1_deg". 20 for another name or one that stands there twice, an element
 * that is not finite, and a matrix that is not symmetric and positive semidefinite to 1e-6 of its
 * correlations.
 */
int KIV_CDECL kiv_sensor_set_calibration(kiv_sensor* sensor, const char* const* names, size_t count,
                                         const double* covariance);

/*
 * As kiv_sensor_judge_many, and the calibration's part, one a reading: two further updates for each
 * parameter. Allocates nothing.
 */
int KIV_CDECL kiv_sensor_judge_calibrated(kiv_sensor* sensor, const kiv_reading* readings,
                                          size_t count, kiv_result* out, double* matrices,
                                          uint8_t* states, kiv_trust* trust,
                                          kiv_uncertainty* uncertainties,
                                          kiv_calibration_uncertainty* calibration);

/*
 * The matrix of the last reading that reached the sensor, 9 doubles, as above. 554, with m filled
 * all the same, when its status was not 2 or there was none.
 */
int KIV_CDECL kiv_sensor_matrix(kiv_sensor* sensor, double* m);

/*
 * The reference: whether there is one; which reading it is; where that came among those that the
 * sensor was given, from 0, or -1 when it was captured. 554 without a reference.
 */
int KIV_CDECL kiv_sensor_has_reference(const kiv_sensor* sensor, bool* has);
int KIV_CDECL kiv_sensor_reference_reading(const kiv_sensor* sensor, kiv_reading* reading);
int KIV_CDECL kiv_sensor_reference_index(const kiv_sensor* sensor, int64_t* index);

/*
 * Makes a reading the reference, in place of one that is there: a later part of a recording then
 * gives what it gives within the whole. Nothing else of the sensor changes. 554 for a reading that
 * an update would not make the reference.
 */
int KIV_CDECL kiv_sensor_capture_reference(kiv_sensor* sensor, const kiv_reading* reading);

/*
 * Home angles in degrees from frame_x (first axis of the tilt frame, 3 doubles), a direction (3),
 * two angles in degrees (2: the first enters home_h, the second home_v) and two tilts in degrees
 * (2: about x and about y). 554 when the tilt frame is singular.
 */
int KIV_CDECL kiv_home_angles(const double* frame_x, const double* direction, const double* angles,
                              const double* tilt, double* home_h, double* home_v);

#if (defined(__cplusplus) && __cplusplus >= 201103L) || defined(_MSVC_LANG)                        \
    || (defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L)
#ifdef __cplusplus
#define KIV_ASSERT_SIZE static_assert
#else
#define KIV_ASSERT_SIZE _Static_assert
#endif
KIV_ASSERT_SIZE(sizeof(kiv_reading) == 52 && sizeof(kiv_result) == 48, "bool has another size");
KIV_ASSERT_SIZE(sizeof(kiv_trust) == 8 && sizeof(kiv_uncertainty) == 36
                    && sizeof(kiv_calibration_uncertainty) == 12,
                "float has another size");
#undef KIV_ASSERT_SIZE
#endif

#ifdef __cplusplus
}
#endif

#pragma pack(pop)

#endif
