#pragma once

#include <string>
#include <string_view>

// What the pages of all subcommands have in common: texts that are given as HTML are escaped.
namespace kiv::host {

// What stands in front of and behind the sections of a page that loads nothing and draws its charts
// itself. Their data are JSON with numbers and names of our own alone; a page without charts has
// none. No script runs but those of the page.
void appendPageHead(std::string& html, std::string_view title, std::string_view heading);
void appendPageFoot(std::string& html, std::string_view chartData);

// A sentence at the top: good, bad or warn.
void appendVerdict(std::string& html, const char* look, std::string_view sentence);

// A section that tells what the page was made from, line by line.
class FactTable {
public:
    FactTable(std::string& html, std::string_view title);
    void line(std::string_view name, std::string_view value);
    // Of a file, where it is known.
    void digest(const std::string& hex, const char* otherwise);
    void convention(bool localFrame); // of the angles of tables
    void end();

private:
    std::string& html;
};

// The section of the charts, up to the first of them, with what is to be said of all.
void appendChartsHead(std::string& html, std::string_view note);
std::string pointsNote(std::size_t rowsPerBin); // empty where each point is a row

// Where a chart is drawn; the unit, as HTML, stands behind the title.
void appendFigure(std::string& html, std::string_view id, std::string_view title,
                  std::string_view unit);

// A text that leads to rows of the charts, counted from 1.
std::string rowsLink(std::string_view text, std::size_t first, std::size_t last);

// Now, or the moment that a build or a test which has to be the same again asks for.
std::string timeOfPage();

} // namespace kiv::host
