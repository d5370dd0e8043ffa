#pragma once

// The companion numeric library: small matrices, rotations, cubic splines. Matrices are row-major
// arrays of doubles, vectors are three doubles that multiply from the right. An output overlaps no
// input unless the function says in place.

// c (m x p) = a (m x n) * b (n x p).
void MatrixMultiply(const double* a, const double* b, int m, int n, int p, double* c);

// Inverts in place: the n x n matrix a becomes its inverse. False, and a left as it was, when a is
// singular (its determinant, or a pivot, vanishes against the size of its rows) or not finite, or n
// < 1.
bool MatrixInverse(double* a, int n);

// The n x n matrix a becomes the identity.
void EyeMatrix(double* a, int n);

// c = a x b.
void CrossMultiply(double* const a, double* const b, double* const c);

// Works in place: the rows x cols matrix a becomes its transpose (cols x rows).
void MatrixTransform(double* const a, int rows, int cols);

// r becomes the right-handed rotation about one axis by an angle in radians:
// rotation_z has rows (cos, -sin, 0), (sin, cos, 0), (0, 0, 1). Always 0.
int rotation_x(double* r, double angle);
int rotation_y(double* r, double angle);
int rotation_z(double* r, double angle);

// out = v turned about the unit axis by an angle in degrees, right-handed (Rodrigues' formula).
void mlaRotateAroundAxis(double* const v, double angle, double* const axis, double* const out);

// With s = -a.z, out is the unit vector with out.b = s cos(alpha) and out.c = s cos(beta) on the
// side where out.(b x c) >= 0; alpha and beta in degrees, b and c unit vectors. a = (0, 0, -1)
// gives the downward direction as the sensor sees it, (0, 0, 1) the upward one. Where no such
// vector exists, out has no part along b x c and the rest is normalised. b parallel to c determines
// nothing: out is then not finite.
void solveVectorsRelAng(double* const a, double* const b, double* const c, double alpha,
                        double beta, double* const out);

// Converts in place: (x, y, z) becomes p[0] = H in (-180, 180], p[1] = V in [-90, 90] degrees, with
// (x, y, z) along (-sin H cos V, cos H cos V, sin V); p[2] is the length. The zero vector gives 0,
// 0, 0.
void ConvertCartesianToSphericalCoordinates(double* p);

// Natural cubic spline through n + 1 strictly monotonic (rising or falling) knots x with values y.
// coef has room for 4 (n + 1) doubles and keeps no reference to x or y. One knot gives a constant,
// two a straight line; n < 0 writes nothing. Knots that repeat give values that are not finite.
// Source: de Boor, A Practical Guide to Splines, chapter IV.
void CubicSplines(float* x, float* y, int n, double* coef);

// The spline's value at v, x, coef and n as given to CubicSplines; the flag is ignored. Beyond the
// end knots the curve goes on as the straight line with the end slope. *outside: v does not lie
// between the first and the last knot (both included), or is not a number. n < 0 gives 0, outside.
float CalcSpline(bool, float* x, double* coef, int n, float v, bool* outside);

#include "support/zelutil/Inline.h" // the short ones
