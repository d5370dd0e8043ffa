#pragma once

#include <string>
#include <string_view>
#include <vector>

// Line drawings of directions in space, as stand-alone SVG text.
namespace kiv::docs {

struct Vec {
    double x, y, z;
};

Vec operator+(const Vec& a, const Vec& b);
Vec operator-(const Vec& a);
Vec operator*(double s, const Vec& a);
double dot(const Vec& a, const Vec& b);
Vec cross(const Vec& a, const Vec& b);
Vec unit(const Vec& a);
// Right-handed, degrees.
Vec turned(const Vec& v, const Vec& axis, double angle);

// Where a label stands, in pixels from the place that it belongs to; y counts downwards.
struct Shift {
    double x, y;
};

// Kinds of lines and labels, each with a colour of its own.
enum class Ink { instrument, sensor, yoke, sight, level, other };

// A picture of two panels and some lines of text. Directions are unit vectors in the instrument's
// frame, seen from far away, z up; every panel has its own origin.
class Drawing {
public:
    // Seen from 26 degrees above the horizon, the instrument's x axis to the right and turned
    // towards the viewer by an angle in degrees.
    Drawing(std::string_view title, double viewAngle);

    // What follows goes to the left panel (0) or the right one (1).
    void panel(int number, std::string_view title);

    // From the panel's origin to a point.
    void arrow(Ink ink, const Vec& to, std::string_view label, Shift shift);
    void dashes(Ink ink, const Vec& from, const Vec& to);
    // The unit circle in the plane of two directions.
    void disc(Ink ink, const Vec& a, const Vec& b);
    // From a direction, turned about an axis by an angle in degrees, with an arrow head at its end.
    void arc(Ink ink, const Vec& from, const Vec& axis, double angle, double radius,
             std::string_view label, Shift shift);
    // The instrument's axes in the panel's corner.
    void instrumentAxes();

    // A line of text below the panels.
    void note(std::string_view text);

    std::string svg() const;

private:
    struct Point {
        double x, y;
    };

    Point place(const Vec& v) const;
    void text(Ink ink, Point at, Shift shift, std::string_view words);
    void path(Ink ink, std::string_view kind, const std::vector<Point>& points, bool closed);
    void head(Ink ink, Point before, Point tip);

    Vec right; // the picture's axes in the instrument's frame
    Vec up;
    std::string body;
    Point origin{};
    double scale = 1;
    int notes = 0;
};

} // namespace kiv::docs
