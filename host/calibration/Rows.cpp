#include "host/calibration/Rows.h"

#include <cmath>
#include <filesystem>
#include <ostream>
#include <thread>

#include "host/base/Files.h"
#include "host/parameters/ParameterFile.h"
#include "host/witnesses/Fillers.h"
#include "params/Quoted.h"
#include "simulator/Mounting.h"
#include "support/Numbers.h"
#include "support/Principles.h"
#include "support/ZelUtil.h"

namespace kiv::host {

namespace {

constexpr std::size_t blockBytes = 1 << 15;
constexpr std::size_t azimuthParts = 72; // of a turn

constexpr std::string_view placementColumn = "placement";
constexpr std::string_view stationColumn = "station";

// R = Rx(rx) Ry(ry) Rz(rz), degrees.
void rotationOf(const double* angles, double* rotation) {
    double x[9], y[9], z[9], xy[9];
    rotation_x(x, angles[0] * degToRad);
    rotation_y(y, angles[1] * degToRad);
    rotation_z(z, angles[2] * degToRad);
    MatrixMultiply(x, y, 3, 3, 3, xy);
    MatrixMultiply(xy, z, 3, 3, 3, rotation);
}

void mark(std::vector<bool>& parts, double azimuth) {
    parts.resize(azimuthParts);
    const double turn = azimuth / 360;
    parts[static_cast<std::size_t>((turn - std::floor(turn)) * azimuthParts) % azimuthParts] = true;
}

} // namespace

double widestGap(const std::vector<bool>& parts) {
    std::size_t gap = 0, longest = 0;
    for (std::size_t i = 0; i < 2 * parts.size(); ++i) {
        gap = parts[i % parts.size()] ? 0 : gap + 1;
        longest = std::max(longest, std::min(gap, parts.size()));
    }
    return 360.0 * static_cast<double>(longest) / static_cast<double>(parts.size());
}

CalibrationRows::CalibrationRows(const CalibrateOptions& asked, const Streams& own, CKivPrm& record,
                                 int mountMode)
    : options(asked), streams(own), files(asked.readings), format(asked.format), mode(mountMode),
      curves(record), sensorId(parseParameterFileName(asked.parameterFile)->id) {
    format.blockBytes = blockBytes;
}

void CalibrationRows::takeText(std::string readings, TableFacts poses) {
    kept = std::move(readings);
    madeFrom = std::move(poses);
    files = {"-"};
    format.otherNames.clear();
    format.decimalComma = false;
}

std::size_t CalibrationRows::jobs(std::uintmax_t bytes) const {
    const std::size_t asked = options.jobs > 0 ? options.jobs : std::thread::hardware_concurrency();
    const std::size_t all = bytes > 0 ? bytes : kept.size();
    return std::clamp<std::size_t>(asked, 1, all / blockBytes + 1);
}

std::string CalibrationRows::nameOf(std::size_t table) const {
    return madeFrom ? madeFrom->name : shownInput(files[table]);
}

std::string CalibrationRows::name() const {
    return nameOf(0);
}

Streams CalibrationRows::inputOf(std::istream& text, std::ostream& err) const {
    Streams input{text, streams.out, err};
    if (madeFrom)
        input.inName = madeFrom->name;
    return input;
}

std::string CalibrationRows::placeOf(const TableLine& place) const {
    return nameOf(place.first) + ':' + std::to_string(place.second) + ":1";
}

bool CalibrationRows::findColumns(const TableInput& table) {
    owner.emplace(table.table(), sensorId);
    if (!options.report.empty())
        columns.time.emplace(table.table());
    std::string missing;
    const auto find = [&](std::string_view name) {
        const auto place = table.table().find(name);
        if (!place)
            missing.append(missing.empty() ? "" : ", ").append(name);
        return place;
    };
    if (options.poses == Poses::stations) {
        columns.placement = find(placementColumn);
        columns.station = find(stationColumn);
    } else {
        for (std::size_t i = 0; i < 3; ++i)
            columns.angles[i] = find(truthColumns[i]);
    }
    if (missing.empty())
        return true;
    streams.err << table.name() << ":1:1: expected the columns of the poses, found none named "
                << missing
                << (options.poses == Poses::stations
                        ? "; number the placements and the stations"
                        : "; add them, or name others with --column, or use --poses stations")
                << '\n';
    return false;
}

// All of standard input, and of what else can be read only once.
bool CalibrationRows::readText() {
    for (const std::string& file : files) {
        std::error_code ignored;
        if (file != "-" && std::filesystem::is_other(pathOf(file), ignored)) {
            streams.err << shownInput(file)
                        << ":1:1: expected a file that can be read again, found a pipe; give it "
                           "as standard input, -\n";
            return false;
        }
        if (file != "-" || !kept.empty())
            continue;
        Input input;
        const Interrupt::Waiting waiting(true);
        if (!input.open(file, streams) || !input.readAll(kept, streams.err))
            return false;
    }
    return true;
}

bool CalibrationRows::mayBeHeldOut(const Observation& row) const {
    constexpr double golden = 0.6180339887498949; // its multiples are spread evenly
    const double place =
        golden * static_cast<double>(row.line) + 0.37 * static_cast<double>(row.table);
    return place - std::floor(place) < options.holdout;
}

bool CalibrationRows::heldOut(const Observation& row) const {
    if (!mayBeHeldOut(row))
        return false;
    if (options.poses != Poses::stations)
        return true;
    // Something else has to tell where the sensor and the station stand.
    const auto tied = [](const std::map<double, std::size_t>& rows, double number) {
        const auto found = rows.find(number);
        return found != rows.end() && found->second > 0;
    };
    return tied(seen.perPlacement, row.placement) && tied(seen.perStation, row.station);
}

bool CalibrationRows::readRow(Table& cursor, Observation& row, Block& block,
                              CalibrationTables& tables) const {
    if (readReadings(cursor, row.raw) != Reason::none || !owner->owns(cursor)) {
        ++block.refused;
        return false;
    }
    if (row.raw.status != 2) {
        ++block.otherStatus;
        return false;
    }
    if (isFillerOfTemperature(row.raw.temperature)) {
        ++block.refused;
        cursor.reportRow("a temperature that a sensor can have", shown(row.raw.temperature),
                         "with a filler for the temperature");
        return false;
    }
    const auto number = [&](std::size_t column, double& value, bool whole) {
        if (cursor.numberAt(column, value) && (!whole || value == std::floor(value)))
            return true;
        cursor.reportCell(column, whole ? "a whole number" : "a true angle",
                          inQuotes(cursor.cell(column)), "without a pose");
        return false;
    };
    double angles[3] = {};
    bool posed = true;
    if (options.poses == Poses::stations) {
        posed = number(*columns.placement, row.placement, true)
                && number(*columns.station, row.station, true);
    } else {
        for (std::size_t i = 0; i < 3; ++i)
            posed = posed && number(*columns.angles[i], angles[i], false);
        rotationOf(angles, row.rotation);
    }
    if (!posed) {
        ++block.withoutPose;
        return false;
    }
    if (columns.time)
        row.time = columns.time->of(cursor);
    const bool levelX = traitsOf(principleOf(mode)).levelX;
    if (!tables.take(row, levelX)) {
        ++block.outside;
        cursor.reportRow(
            "tilt readings within the tilt calibration tables",
            (levelX ? "level_x " + shown(row.raw.levelXRaw) + ", level_y " : "level_y ")
                + shown(row.raw.levelYRaw),
            "outside a table");
        return false;
    }
    if (options.poses == Poses::known && traitsOf(principleOf(mode)).startVector
        && (row.rotation[8] < 0) != simulator::invertedIn(mode)) {
        block.unusable = true;
        const bool inverted = simulator::invertedIn(mode);
        cursor.reportRow(std::string(inverted ? "an inverted" : "an upright")
                             + " sensor, as mount mode " + std::to_string(mode) + " has it",
                         std::string(inverted ? "an upright" : "an inverted")
                             + " one by its true angles; correct the mount mode or the poses",
                         "the other way up");
        return false;
    }
    return true;
}

void CalibrationRows::read(Block& block, Table& cursor, CalibrationTables& tables) const {
    block.rows.clear();
    block.messages.clear();
    block.refused = block.otherStatus = block.withoutPose = block.outside = 0;
    block.unusable = false;
    while (!block.unusable && cursor.nextRow()) {
        Observation row;
        row.table = block.lines.table;
        row.line = cursor.lineNumber();
        if (readRow(cursor, row, block, tables))
            block.rows.push_back(row);
        if (const auto said = cursor.messages(); !said.empty())
            block.messages.emplace_back(said.begin(), said.end());
    }
}

void CalibrationRows::take(const Block& block) {
    for (const Observation& row : block.rows) {
        const auto spread = [&](float value, float& least, float& most) {
            least = seen.rows == 0 ? value : std::min(least, value);
            most = seen.rows == 0 ? value : std::max(most, value);
        };
        spread(row.raw.temperature, seen.coldest, seen.hottest);
        spread(std::remainder(row.raw.elevationRaw, 360.0F), seen.lowest, seen.highest);
        mark(seen.headings, row.raw.azimuthRaw);
        ++seen.rows;
        if (options.poses != Poses::stations)
            continue;
        const std::size_t others = mayBeHeldOut(row) ? 0 : 1;
        seen.perPlacement[row.placement] += others;
        seen.perStation[row.station] += others;
        mark(seen.azimuths[row.placement], row.azimuth);
    }
    seen.refused += block.refused;
    seen.otherStatus += block.otherStatus;
    seen.withoutPose += block.withoutPose;
    seen.outside += block.outside;
}

bool CalibrationRows::open() {
    if (!readText())
        return false;
    std::istringstream text(kept);
    const Streams input = inputOf(text, streams.err);
    MessageLimit limit(format.mostMessages, streams.err);
    struct Nothing {};
    const bool good = passOver<Nothing>(
        input, ofFirstPass, [](Block&, Nothing&) {},
        [&](Block& block, Nothing&) {
            if (block.unusable) {
                show(block.messages.back(), streams.err);
                return false;
            }
            for (const std::vector<Message>& ofRow : block.messages)
                limit.take(ofRow);
            take(block);
            return true;
        });
    limit.reportOthers(name());
    seen.tables = madeFrom ? std::vector{*madeFrom} : ofFirstPass;
    if (good && seen.outside > 0) {
        streams.err << name() << ":1:1: expected tilt readings within the tilt calibration tables, "
                    << "found " << seen.outside << (seen.outside == 1 ? " row" : " rows")
                    << " outside; leave them out, as nothing is known beyond a table\n";
        return false;
    }
    return good && eachOnce();
}

// A copy would count its rows twice.
bool CalibrationRows::eachOnce() const {
    for (std::size_t i = 0; i < seen.tables.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (seen.tables[i].digest.hex() == seen.tables[j].digest.hex()) {
                streams.err << seen.tables[i].name << ":1:1: expected each table once, found "
                            << seen.tables[j].name << " again\n";
                return false;
            }
    return true;
}

} // namespace kiv::host
