#include <span>

#include "host/report/Html.h"
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
    const auto line = [&](const char* heading, const std::string& cell) {
        appendTableRow(html, heading, {cell}, "text");
    };
    html += "<section>\n<h2>What was run</h2>\n<table class=\"facts\">\n";
    line("Run at", escaped(content.time));
    line("Command", code(content.commandLine));
    const std::vector<TableFacts>& tables = content.facts.readings;
    if (tables.size() == 1) {
        line("Readings", code(tables[0].name));
        line("SHA-256", tables[0].readToEnd ? code(tables[0].digest.hex())
                                            : "none, as they were not read to their end");
    } else {
        line("Readings", tableList(tables));
    }
    const Summary& summary = content.summary;
    if (summary.referenceLine() > 0 && summary.count(RowState::reference) == 0) {
        line("Reference", code(summary.referencePlace()));
        line("SHA-256", code(content.facts.reference.hex()));
    }
    line("Parameter file", code(content.parameterFile));
    line("SHA-256", code(content.facts.parameterFile.hex()));
    if (const std::size_t warnings = content.facts.parameterWarnings; warnings > 0)
        line("Warnings", countText(warnings) + " of the file's values, by " + code("kiv check"));
    line("Sensor ID", std::to_string(content.sensorId));
    line("Device owner", escaped(content.facts.deviceOwner));
    line("Mount mode",
         std::to_string(content.mountMode) + ", " + modelName(content.mountMode) + " model"
             + (hasModel(content.mountMode) ? "" : ", as no model is made for this mode"));
    line("Angles", reportsOwnMatrix(content.mountMode) ? "of the sensor in the instrument"
                   : content.localFrame ? "of the motion since the reference (local frame)"
                                        : "in machine coordinates");
    line("Convention",
         rotationText(content) + " = " + rotatedText(content)
             + "; right-handed, degrees. Instrument vector = M \xC2\xB7 sensor vector.");
    line("Length unit",
         content.lengthUnit.empty() ? "that of the readings" : escaped(content.lengthUnit));
    line("Level limits",
         "X " + limitsText(limits.x, limits.y) + ", Y " + limitsText(limits.z, limits.w));
    const auto bins = content.envelope.bins();
    if (content.axis.overTime() && !bins.empty())
        line("Time", content.axis.text(bins.front().firstX) + " to "
                         + content.axis.text(bins.back().lastX)
                         + (content.axis.overDates() ? "" : " s"));
    line("Software", std::string("kiv ") + versionText + ", library " + versionText);
    html += "</table>\n</section>\n";
}

} // namespace kiv::host
