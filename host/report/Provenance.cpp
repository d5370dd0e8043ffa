#include <span>

#include "host/report/Html.h"
#include "host/report/Page.h"
#include "host/report/Sections.h"
#include "support/Numbers.h"
#include "support/Principles.h"
#include "support/VersionText.h"

namespace kiv::host {

namespace {

std::string limitsText(float low, float high) {
    return low < high ? shown(low) + " to " + shown(high) + " degrees" : "none";
}

std::string rotationText(const ReportContent& content) {
    return content.localFrame ? "Rz(rz) \xC2\xB7 Ry(ry) \xC2\xB7 Rx(rx)"
                              : "Rx(rx) \xC2\xB7 Ry(ry) \xC2\xB7 Rz(rz)";
}

std::string tableList(std::span<const TableFacts> tables) {
    std::string html = countText(tables.size()) + " tables, one recording\n<ol>\n";
    for (const TableFacts& table : tables)
        html.append("<li>")
            .append(code(table.name))
            .append("<br>SHA-256 ")
            .append(table.readToEnd ? code(table.digest.hex())
                                    : "none, as it was not read to its end")
            .append("</li>\n");
    return html += "</ol>";
}

// The rotation that the angles describe; M leads from the sensor's frame to the instrument's.
std::string rotatedText(const ReportContent& content) {
    if (reportsOwnMatrix(content.mountMode))
        return "M";
    return content.localFrame ? "L \xC2\xB7 M \xC2\xB7 M0\xE2\x81\xBB\xC2\xB9 \xC2\xB7 "
                                "L\xE2\x81\xBB\xC2\xB9, L the local matrix, "
                                "M0 the reference"
                              : "machine matrix \xC2\xB7 M";
}

} // namespace

void appendProvenance(std::string& html, const ReportContent& content) {
    const F_VECTOR4& limits = content.levelLimits;
    FactTable facts(html, "What was run");
    facts.line("Run at", escaped(content.time));
    facts.line("Command", code(content.commandLine));
    const std::vector<TableFacts>& tables = content.facts.readings;
    if (tables.size() == 1) {
        facts.line("Readings", code(tables[0].name));
        facts.digest(tables[0].readToEnd ? tables[0].digest.hex() : "",
                     "none, as they were not read to their end");
    } else {
        facts.line("Readings", tableList(tables));
    }
    const Summary& summary = content.summary;
    if (summary.referenceLine() > 0 && summary.count(RowState::reference) == 0) {
        facts.line("Reference", code(summary.referencePlace()));
        facts.digest(content.facts.reference.hex(), "");
    }
    facts.line("Parameter file", code(content.parameterFile));
    facts.digest(content.facts.parameterFile.hex(), "");
    if (const std::size_t warnings = content.facts.parameterWarnings; warnings > 0)
        facts.line("Warnings",
                   countText(warnings) + " of the file's values, by " + code("kiv check"));
    facts.line("Sensor ID", std::to_string(content.sensorId));
    facts.line("Device owner", escaped(content.facts.deviceOwner));
    facts.line("Mount mode",
               std::to_string(content.mountMode) + ", " + modelName(content.mountMode) + " model"
                   + (hasModel(content.mountMode) ? "" : ", as no model is made for this mode"));
    facts.line("Angles", reportsOwnMatrix(content.mountMode) ? "of the sensor in the instrument"
                         : content.localFrame ? "of the motion since the reference (local frame)"
                                              : "in machine coordinates");
    facts.line("Convention",
               rotationText(content) + " = " + rotatedText(content)
                   + "; right-handed, degrees. Instrument vector = M \xC2\xB7 sensor vector.");
    facts.line("Length unit",
               content.lengthUnit.empty() ? "that of the readings" : escaped(content.lengthUnit));
    facts.line("Level limits",
               "X " + limitsText(limits.x, limits.y) + ", Y " + limitsText(limits.z, limits.w));
    const auto bins = content.envelope.bins();
    if (content.axis.overTime() && !bins.empty())
        facts.line("Time", content.axis.text(bins.front().firstX) + " to "
                               + content.axis.text(bins.back().lastX)
                               + (content.axis.overDates() ? "" : " s"));
    facts.line("Software", std::string("kiv ") + versionText + ", library " + versionText);
    facts.end();
}

} // namespace kiv::host
