// The figures of docs/geometry.md, drawn from what the simulator says a sensor in a known pose
// reads.
//   kiv_figures FOLDER            writes one SVG file for each model
//   kiv_figures --check FOLDER    compares the folder's files with them; exit code 1 where they
//   differ

#include <charconv>
#include <cmath>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "docs/programs/Drawing.h"
#include "simulator/Mounting.h"

namespace {

using namespace kiv;
using docs::Drawing;
using docs::Ink;
using docs::Shift;
using docs::Vec;
using simulator::radians;

const Vec up{0, 0, 1}; // the instrument's z axis

std::string degrees(double value) {
    char text[32];
    const double rounded = std::round(value * 100) / 100;
    const auto [end, error] = std::to_chars(text, text + sizeof text, rounded == 0 ? 0 : rounded,
                                            std::chars_format::fixed, 2);
    const std::string digits(text, end);
    return (digits.front() == '-' ? "−" + digits.substr(1) : digits) + "°";
}

// A figure that would show something else than the simulator's readings is not drawn.
void require(bool holds, const std::string& what) {
    if (!holds)
        throw std::runtime_error("the drawing does not show the reading: " + what);
}

bool same(const Vec& a, const Vec& b) {
    const Vec d = a + -b;
    return std::sqrt(dot(d, d)) < 1e-9;
}

// A sensor in a pose, with parameters and tilts large enough to be seen.
struct Scene {
    simulator::Mounting mounting;
    simulator::Pose pose;
    simulator::Readings readings;

    // Turned about its vertical by yaw, then leant over by 18 degrees towards an azimuth.
    Scene(const simulator::Mounting& m, double yaw, double leanAzimuth) : mounting(m) {
        mounting.encoderOffset[0] = 5 * radians;
        mounting.encoderOffset[1] = -3 * radians;
        const Vec leanAxis = docs::turned({0, 1, 0}, up, leanAzimuth);
        int column = 0;
        for (const Vec& axis : {Vec{1, 0, 0}, Vec{0, 1, 0}, Vec{0, 0, 1}}) {
            const Vec v = docs::turned(docs::turned(axis, up, yaw), leanAxis, 18);
            pose.rotation[column] = v.x;
            pose.rotation[3 + column] = v.y;
            pose.rotation[6 + column] = v.z;
            ++column;
        }
        const double azimuth = 35 * radians;
        const double elevation = 30 * radians;
        pose.position[0] = 5000 * std::cos(elevation) * std::cos(azimuth);
        pose.position[1] = 5000 * std::cos(elevation) * std::sin(azimuth);
        pose.position[2] = 5000 * std::sin(elevation);
        require(simulator::readingsOf(mounting, pose, readings), "out of reach");
    }

    // Of the azimuth and elevation encoder readings less their offsets, degrees.
    double azimuthTurn() const { return readings.azimuth - mounting.encoderOffset[0] / radians; }
    double elevationTurn() const {
        return readings.elevation - mounting.encoderOffset[1] / radians;
    }

    Vec fromSensor(const Vec& v) const {
        const double* r = pose.rotation;
        return {dot({r[0], r[1], r[2]}, v), dot({r[3], r[4], r[5]}, v), dot({r[6], r[7], r[8]}, v)};
    }
    Vec fromYoke(const Vec& v) const {
        return fromSensor(docs::turned(v, {0, 0, 1}, azimuthTurn()));
    }
    Vec sight() const {
        const double* p = pose.position;
        return docs::unit({p[0], p[1], p[2]});
    }
};

// The left panel of every figure: the sensor, and the yoke that the turn a carries round its z
// axis.
void drawTurns(Drawing& d, const Scene& scene, const Vec& forward, std::string_view yokeForward,
               Shift yokeShift, Shift sensorYShift) {
    d.panel(0, "Sensor, yoke and line of sight");
    d.instrumentAxes();
    const Vec x = scene.fromSensor({1, 0, 0});
    const Vec y = scene.fromSensor({0, 1, 0});
    const Vec z = scene.fromSensor({0, 0, 1});
    d.disc(Ink::sensor, x, y);
    d.arrow(Ink::sensor, x, "sensor x", {8, 12});
    d.arrow(Ink::sensor, y, "sensor y", sensorYShift);
    d.arrow(Ink::sensor, z, "sensor z", {0, -14});
    d.arrow(Ink::yoke, scene.fromYoke(forward), yokeForward, yokeShift);
    d.arc(Ink::yoke, scene.fromSensor(forward), z, scene.azimuthTurn(), 0.55, "a", {12, 6});
    d.dashes(Ink::sight, -0.95 * scene.sight(), {0, 0, 0});
    d.arrow(Ink::sight, 1.3 * scene.sight(), "u", {10, -4});
}

void drawHorizon(Drawing& d, std::string_view title) {
    d.panel(1, title);
    d.disc(Ink::instrument, {1, 0, 0}, {0, 1, 0});
}

void drawYokePlane(Drawing& d, const Scene& scene) {
    d.disc(Ink::yoke, scene.fromYoke({1, 0, 0}), scene.fromYoke({0, 1, 0}));
}

// The rise of an axis above the horizon (its fall, if negative), as an arc.
void drawRise(Drawing& d, const Vec& axis, double rise, std::string_view label, Shift shift) {
    const Vec level = docs::unit({axis.x, axis.y, 0});
    const Vec about = docs::unit(docs::cross(level, up));
    require(same(docs::turned(level, about, rise), axis), std::string(label));
    d.dashes(Ink::level, {0, 0, 0}, level);
    d.arc(Ink::level, level, about, rise, 0.85, label, shift);
}

std::string noteOfTurns(const Scene& scene, double g) {
    const auto offset = [&](int i) { return degrees(scene.mounting.encoderOffset[i] / radians); };
    return "Azimuth reading M[5] " + degrees(scene.readings.azimuth) + ", offset " + offset(0)
           + ": a = " + degrees(scene.azimuthTurn()) + ". Elevation reading M[6] "
           + degrees(scene.readings.elevation) + ", offset " + offset(1) + ": g = " + degrees(g)
           + ".";
}

const std::string noteOfPose =
    "u: from the instrument to the sensor, azimuth 35°, elevation 30°. The sensor leans by "
    "18°. Angles are larger than in use.";

std::string dualLevel() {
    simulator::Mounting mounting;
    mounting.mode = 2;
    mounting.scaleFactors[0] = 12;
    const Scene scene(mounting, -5, 0);
    const double g = -scene.elevationTurn();
    Drawing d("Dual level, mount modes 1 and 2", 20);

    drawTurns(d, scene, {1, 0, 0}, "yoke x", {8, 6}, {0, -14});
    const Vec y = scene.fromYoke({0, 1, 0});
    const Vec x = scene.fromYoke({1, 0, 0});
    require(same(docs::turned(x, y, g), scene.sight()), "g");
    d.arrow(Ink::yoke, y, "elevation axis, yoke y", {0, -14});
    d.arc(Ink::sight, x, y, g, 0.8, "g", {12, 0});

    drawHorizon(d, "The two levels against the horizon");
    drawYokePlane(d, scene);
    const Vec z = scene.fromYoke({0, 0, 1});
    const double c = 90 + mounting.scaleFactors[0];
    const Vec axisX = docs::turned(y, z, -c);
    d.arrow(Ink::level, y, "level Y, elevation axis", {0, -14});
    d.arrow(Ink::level, axisX, "level X", {8, 10});
    drawRise(d, y, scene.readings.levelY, "M[4]", {-10, 6});
    drawRise(d, axisX, -scene.readings.levelX, "M[3]", {10, 0});
    d.arc(Ink::other, y, z, -c, 0.4, "90° + f0", {2, -24});
    d.arrow(Ink::sight, scene.sight(), "u", {10, 0});

    d.note(noteOfTurns(scene, g));
    d.note("Level X reading M[3] " + degrees(scene.readings.levelX)
           + ": its axis falls. Level Y reading M[4] " + degrees(scene.readings.levelY)
           + ": its axis rises. Scale factor f0: " + degrees(mounting.scaleFactors[0]) + ".");
    d.note(noteOfPose);
    return d.svg();
}

std::string pendulum() {
    simulator::Mounting mounting;
    mounting.mode = 4;
    mounting.scaleFactors[0] = 10;
    mounting.scaleFactors[2] = 20;
    mounting.scaleFactors[3] = -35;
    const Scene scene(mounting, 15, -10);
    const double g = -scene.elevationTurn();
    Drawing d("Pendulum, mount modes 3, 4 and all that no other model has", 20);

    drawTurns(d, scene, {1, 0, 0}, "yoke x", {8, 6}, {-6, -12});
    const Vec t = scene.fromYoke({0, 1, 0});
    const Vec x = scene.fromYoke({1, 0, 0});
    const Vec headX = docs::turned(x, t, g);
    const Vec headZ = docs::cross(headX, t);
    const double c0 = 90 + mounting.scaleFactors[0];
    require(same(docs::turned(t, headZ, -c0), scene.sight()), "f0");
    d.arrow(Ink::yoke, t, "t, yoke y", {-8, -6});
    d.arrow(Ink::yoke, headX, "head x", {0, -12});
    d.arc(Ink::yoke, x, t, g, 0.8, "g", {12, 0});
    d.arc(Ink::other, t, headZ, -c0, 0.4, "90° + f0", {-4, -14});

    drawHorizon(d, "The inclination sensor against the horizon");
    drawYokePlane(d, scene);
    const Vec z = scene.fromYoke({0, 0, 1});
    const Vec foot = docs::turned(t, z, -mounting.scaleFactors[3]);
    const Vec w = docs::turned(foot, docs::cross(foot, z), mounting.scaleFactors[2]);
    d.arrow(Ink::yoke, t, "t, yoke y", {10, -8});
    d.arrow(Ink::yoke, x, "yoke x", {8, 0});
    d.dashes(Ink::other, {0, 0, 0}, foot);
    d.arrow(Ink::level, w, "axis w", {-8, -6});
    d.arc(Ink::other, t, z, -mounting.scaleFactors[3], 0.45, "f3", {-5, 12});
    d.arc(Ink::other, foot, docs::cross(foot, z), mounting.scaleFactors[2], 0.75, "f2", {-8, 0});
    drawRise(d, w, scene.readings.levelY, "M[4]", {-10, 8});

    d.note(noteOfTurns(scene, g));
    d.note("Inclination reading M[4] " + degrees(scene.readings.levelY)
           + ": w rises. Scale factors f0, f2, f3: " + degrees(mounting.scaleFactors[0]) + ", "
           + degrees(mounting.scaleFactors[2]) + ", " + degrees(mounting.scaleFactors[3])
           + "; f1 is 0, f4 to f6 are 1. Even mode.");
    d.note(noteOfPose);
    return d.svg();
}

std::string polarizer() {
    simulator::Mounting mounting;
    mounting.mode = 6;
    mounting.scaleFactors[0] = 20;
    const Scene scene(mounting, -70, -70);
    const double g = scene.elevationTurn();
    Drawing d("Polarizer, mount modes 5 and 6", -52);

    drawTurns(d, scene, {0, 1, 0}, "yoke y", {-8, -2}, {8, 0});
    const Vec x = scene.fromYoke({1, 0, 0});
    const Vec y = scene.fromYoke({0, 1, 0});
    const Vec headY = docs::turned(y, x, g);
    const Vec headZ = docs::cross(x, headY);
    require(same(docs::turned(headY, headZ, -mounting.scaleFactors[0]), scene.sight()), "f0");
    d.arrow(Ink::yoke, x, "elevation axis", {6, 10});
    d.arrow(Ink::yoke, headY, "head y", {-8, -4});
    d.arc(Ink::yoke, y, x, g, 0.8, "g", {-8, -6});
    d.arc(Ink::other, headY, headZ, -mounting.scaleFactors[0], 0.9, "f0", {0, -14});

    drawHorizon(d, "The roll about the line of sight");
    const Vec u = scene.sight();
    const Vec level = docs::unit(docs::cross(u, up));
    const Vec opticalX = docs::turned(x, headZ, -mounting.scaleFactors[0]);
    const Vec opticalZ = docs::cross(opticalX, u);
    require(same(docs::turned(level, u, scene.readings.levelY), opticalX), "M[4]");
    d.disc(Ink::level, opticalX, opticalZ);
    d.arrow(Ink::sight, 1.3 * u, "u, optical y", {0, -12});
    d.dashes(Ink::level, {0, 0, 0}, level);
    d.arrow(Ink::level, opticalX, "optical x", {-8, 10});
    d.arrow(Ink::level, opticalZ, "optical z", {-8, -6});
    d.arc(Ink::level, level, u, scene.readings.levelY, 0.8, "M[4]", {12, 4});

    d.note(noteOfTurns(scene, g));
    d.note("Polarizer reading M[4] " + degrees(scene.readings.levelY)
           + ": from the horizontal (dashed) to optical x. Scale factor f0: "
           + degrees(mounting.scaleFactors[0]) + "; f1 is 0, f4 to f6 are 1.");
    d.note(noteOfPose);
    return d.svg();
}

simulator::Mounting threeVectorMounting(int mode) {
    simulator::Mounting mounting;
    mounting.mode = mode;
    mounting.qvcParameters[3] = 12;
    mounting.qvcParameters[4] = 10;
    mounting.qvcParameters[5] = 20;
    mounting.level1Parameters[3] = -35;
    mounting.level2Parameters[3] = -70;
    return mounting;
}

double tangent(float angle) {
    return std::tan(angle * radians);
}

// The left panel of both three-vector models.
void drawStartVector(Drawing& d, const Scene& scene) {
    drawTurns(d, scene, {1, 0, 0}, "yoke x", {8, 6}, {0, -14});
    const float* q = scene.mounting.qvcParameters;
    const Vec axis = scene.fromYoke(docs::unit({tangent(q[3]), 1, tangent(q[4])}));
    const Vec x = scene.fromYoke({1, 0, 0});
    const Vec y = scene.fromYoke({0, 1, 0});
    const Vec start = docs::turned(x, y, -q[5]);
    require(same(docs::turned(start, axis, scene.elevationTurn()), scene.sight()), "g");
    d.dashes(Ink::yoke, {0, 0, 0}, y);
    d.arrow(Ink::yoke, axis, "elevation axis", {-8, -4});
    d.arrow(Ink::other, start, "start vector", {8, 0});
    d.arc(Ink::other, x, y, -q[5], 0.93, "QVC 5", {10, 2});
    d.arc(Ink::sight, start, axis, scene.elevationTurn(), 0.9, "g", {12, -6});
}

// A level axis in the yoke and its dip below the horizon.
void drawLevel(Drawing& d, const Scene& scene, const float* block, double reading,
               std::string_view name, std::string_view readingName, Shift shift) {
    const Vec axis = scene.fromYoke(docs::unit({1, tangent(block[3]), tangent(block[4])}));
    d.arrow(Ink::level, axis, name, shift);
    drawRise(d, axis, -reading, readingName, {10, 2});
}

void drawLevelSide(Drawing& d, const Scene& scene, std::string_view title) {
    drawHorizon(d, title);
    drawYokePlane(d, scene);
    d.arrow(Ink::yoke, scene.fromYoke({1, 0, 0}), "yoke x", {8, -6});
    d.arrow(Ink::sight, scene.sight(), "u", {8, -6});
    d.arrow(Ink::instrument, -0.8 * up, "gravity", {0, 16});
}

std::string threeVectors() {
    const Scene scene(threeVectorMounting(8), -5, 0);
    Drawing d("Three vectors, mount modes 7 and 8", 20);
    drawStartVector(d, scene);
    drawLevelSide(d, scene, "The level against the horizon");
    drawLevel(d, scene, scene.mounting.level1Parameters, scene.readings.levelY, "level axis",
              "M[4]", {8, 10});

    d.note(noteOfTurns(scene, scene.elevationTurn()));
    d.note("Level reading M[4] " + degrees(scene.readings.levelY)
           + ": its axis dips. QVC 3 to 5: " + degrees(scene.mounting.qvcParameters[3]) + ", "
           + degrees(scene.mounting.qvcParameters[4]) + ", "
           + degrees(scene.mounting.qvcParameters[5])
           + "; Level_X 3 to 6: " + degrees(scene.mounting.level1Parameters[3]) + ", 0, 0, 1.");
    d.note(noteOfPose);
    return d.svg();
}

std::string twoLevels() {
    const Scene scene(threeVectorMounting(10), -5, 0);
    Drawing d("Three vectors with two levels, mount modes 9 and 10", 20);
    drawStartVector(d, scene);
    drawLevelSide(d, scene, "The two levels against the horizon");
    drawLevel(d, scene, scene.mounting.level1Parameters, scene.readings.levelX, "level X", "M[3]",
              {8, 10});
    drawLevel(d, scene, scene.mounting.level2Parameters, scene.readings.levelY, "level Y", "M[4]",
              {8, 12});

    d.note(noteOfTurns(scene, scene.elevationTurn()));
    d.note("Level readings M[3] " + degrees(scene.readings.levelX) + ", M[4] "
           + degrees(scene.readings.levelY) + ": both axes dip. Level_X 3: "
           + degrees(scene.mounting.level1Parameters[3]) + ", Level_Y 3: "
           + degrees(scene.mounting.level2Parameters[3]) + ", their entries 4 to 6 are 0, 0, 1.");
    d.note(noteOfPose);
    return d.svg();
}

struct Figure {
    const char* file;
    std::string (*draw)();
};

constexpr Figure figures[] = {
    {"dual-level.svg", dualLevel},
    {"pendulum.svg", pendulum},
    {"polarizer.svg", polarizer},
    {"three-vectors.svg", threeVectors},
    {"three-vectors-two-levels.svg", twoLevels},
};

std::string textOf(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

int run(int argc, char** argv) {
    const bool check = argc == 3 && std::string_view(argv[1]) == "--check";
    if (argc != 2 && !check) {
        std::cerr << "usage: kiv_figures [--check] FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder = argv[argc - 1];
    int code = 0;
    for (const Figure& figure : figures) {
        const std::filesystem::path file = folder / figure.file;
        const std::string svg = figure.draw();
        if (!check) {
            std::ofstream out(file, std::ios::binary);
            out << svg;
            out.close();
            if (!out)
                throw std::runtime_error("cannot write " + file.string());
        } else if (textOf(file) != svg) {
            std::cerr << file.string() << " is not what kiv_figures draws\n";
            code = 1;
        }
    }
    return code;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::cerr << "kiv_figures: " << e.what() << '\n';
        return 2;
    }
}
