#include "docs/programs/Drawing.h"

#include <charconv>
#include <cmath>
#include <iterator>

#include "support/ZelUtil.h"

namespace kiv::docs {

namespace {

constexpr double panelWidth = 480; // pixels, like all that follow
constexpr double panelHeight = 380;
constexpr double titleHeight = 60;
constexpr double noteHeight = 22;
constexpr double unitLength = 165;
constexpr double headLength = 9;
constexpr int arcSteps = 32;
constexpr double viewHeight = 26; // degrees

constexpr std::string_view names[] = {"instrument", "sensor", "yoke", "sight", "level", "other"};

std::string_view nameOf(Ink ink) {
    return names[static_cast<int>(ink)];
}

// One decimal; never a negative zero.
std::string pixels(double value) {
    char text[32];
    const double rounded = std::round(value * 10) / 10;
    const auto [end, error] = std::to_chars(text, text + sizeof text, rounded == 0 ? 0 : rounded,
                                            std::chars_format::fixed, 1);
    return {text, end};
}

std::string attribute(std::string_view name, double value) {
    return ' ' + std::string(name) + "=\"" + pixels(value) + '"';
}

std::string escaped(std::string_view text) {
    std::string out;
    for (const char c : text)
        if (c == '<')
            out += "&lt;";
        else if (c == '&')
            out += "&amp;";
        else
            out += c;
    return out;
}

constexpr std::string_view styles = R"(<style>
.paper { fill: #fdfdfb; stroke: #8a8a8a; }
text { font: 14px sans-serif; paint-order: stroke; stroke: #fdfdfb; stroke-width: 4px; }
.title { font-weight: bold; font-size: 16px; }
.plain { fill: #222222; }
path { fill: none; stroke-width: 2; stroke-linecap: round; stroke-linejoin: round; }
.thin { stroke-width: 1; stroke-dasharray: 5 4; }
.disc { stroke-width: 1; fill-opacity: 0.08; }
)";

// Dark enough for text on the paper, apart also for eyes that see few colours.
constexpr std::string_view colours[] = {"#555555", "#1f55b5", "#0a7a3c",
                                        "#c2271b", "#7a2fa0", "#a05a00"};

} // namespace

Vec operator+(const Vec& a, const Vec& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

Vec operator-(const Vec& a) {
    return {-a.x, -a.y, -a.z};
}

Vec operator*(double s, const Vec& a) {
    return {s * a.x, s * a.y, s * a.z};
}

double dot(const Vec& a, const Vec& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vec cross(const Vec& a, const Vec& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Vec unit(const Vec& a) {
    return (1 / std::sqrt(dot(a, a))) * a;
}

Vec turned(const Vec& v, const Vec& axis, double angle) {
    double from[3] = {v.x, v.y, v.z};
    double about[3] = {axis.x, axis.y, axis.z};
    double out[3];
    mlaRotateAroundAxis(from, angle, about, out);
    return {out[0], out[1], out[2]};
}

Drawing::Drawing(std::string_view title, double viewAngle)
    : right(turned({1, 0, 0}, {0, 0, 1}, viewAngle)), up(turned({0, 0, 1}, right, -viewHeight)) {
    body += "<title>" + escaped(title) + "</title>\n";
    body += "<text class=\"title plain\" x=\"20\" y=\"30\">" + escaped(title) + "</text>\n";
}

void Drawing::panel(int number, std::string_view title) {
    const double left = number * panelWidth;
    origin = {left + panelWidth / 2, titleHeight + panelHeight * 0.54};
    scale = unitLength;
    body += "<text class=\"plain\"" + attribute("x", left + 20) + attribute("y", titleHeight) + '>'
            + escaped(title) + "</text>\n";
}

Drawing::Point Drawing::place(const Vec& v) const {
    return {origin.x + scale * dot(v, right), origin.y - scale * dot(v, up)};
}

void Drawing::text(Ink ink, Point at, Shift shift, std::string_view words) {
    const char* anchor = shift.x < -4 ? "end" : shift.x > 4 ? "start" : "middle";
    body += "<text class=\"" + std::string(nameOf(ink)) + "-text\" text-anchor=\"" + anchor + '"'
            + attribute("x", at.x + shift.x) + attribute("y", at.y + shift.y + 5) + '>'
            + escaped(words) + "</text>\n";
}

void Drawing::path(Ink ink, std::string_view kind, const std::vector<Point>& points, bool closed) {
    body.append("<path class=\"").append(nameOf(ink)).append(kind).append("\" d=\"");
    char command = 'M';
    for (const Point& p : points) {
        body.push_back(command);
        body.append(pixels(p.x)).append(" ").append(pixels(p.y));
        command = 'L';
    }
    body.append(closed ? "Z\"/>\n" : "\"/>\n");
}

// The arrow head of a line that ends in these two points.
void Drawing::head(Ink ink, Point before, Point tip) {
    const double length = std::hypot(tip.x - before.x, tip.y - before.y);
    const double ux = (tip.x - before.x) / length * headLength;
    const double uy = (tip.y - before.y) / length * headLength;
    path(ink, " head",
         {tip,
          {tip.x - ux - 0.4 * uy, tip.y - uy + 0.4 * ux},
          {tip.x - ux + 0.4 * uy, tip.y - uy - 0.4 * ux}},
         true);
}

void Drawing::arrow(Ink ink, const Vec& to, std::string_view label, Shift shift) {
    const Point tip = place(to);
    path(ink, "", {origin, tip}, false);
    head(ink, origin, tip);
    text(ink, tip, shift, label);
}

void Drawing::dashes(Ink ink, const Vec& from, const Vec& to) {
    path(ink, " thin", {place(from), place(to)}, false);
}

void Drawing::disc(Ink ink, const Vec& a, const Vec& b) {
    constexpr int step = 6; // degrees
    std::vector<Point> points;
    for (int angle = 0; angle < 360; angle += step)
        points.push_back(place(turned(a, unit(cross(a, b)), angle)));
    path(ink, " disc", points, true);
}

void Drawing::arc(Ink ink, const Vec& from, const Vec& axis, double angle, double radius,
                  std::string_view label, Shift shift) {
    std::vector<Point> points;
    for (int i = 0; i <= arcSteps; ++i)
        points.push_back(place(radius * turned(from, axis, angle * i / arcSteps)));
    path(ink, "", points, false);
    head(ink, points[arcSteps - 1], points[arcSteps]);
    text(ink, points[arcSteps / 2], shift, label);
}

void Drawing::instrumentAxes() {
    const Point centre = origin;
    origin = {centre.x - panelWidth / 2 + 75, titleHeight + panelHeight - 30};
    scale = 55;
    arrow(Ink::instrument, {1, 0, 0}, "x", {10, 0});
    arrow(Ink::instrument, {0, 1, 0}, "y", {-8, -4});
    arrow(Ink::instrument, {0, 0, 1}, "z, up", {0, -10});
    origin = centre;
    scale = unitLength;
}

void Drawing::note(std::string_view words) {
    body += "<text class=\"plain\" x=\"20\""
            + attribute("y", titleHeight + panelHeight + noteHeight * ++notes) + '>'
            + escaped(words) + "</text>\n";
}

std::string Drawing::svg() const {
    const std::string width = pixels(2 * panelWidth);
    const std::string height = pixels(titleHeight + panelHeight + noteHeight * (notes + 1));
    std::string out = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + width + "\" height=\""
                      + height + "\" viewBox=\"0 0 " + width + ' ' + height + "\">\n";
    out += styles;
    for (std::size_t i = 0; i < std::size(names); ++i) {
        const std::string name(names[i]);
        const std::string colour(colours[i]);
        out += '.' + name + " { stroke: " + colour + "; }\n." + name + ".head, ." + name
               + ".disc, ." + name + "-text { fill: " + colour + "; }\n";
    }
    out += "</style>\n<rect class=\"paper\" x=\"0.5\" y=\"0.5\" width=\""
           + pixels(2 * panelWidth - 1) + "\" height=\""
           + pixels(titleHeight + panelHeight + noteHeight * (notes + 1) - 1) + "\" rx=\"8\"/>\n";
    return out + body + "</svg>\n";
}

} // namespace kiv::docs
