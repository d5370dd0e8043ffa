#pragma once

#include <iosfwd>
#include <string>
#include <vector>

// Markdown tables on a page of the documentation.
namespace kiv::docs {

// The section of docs/accuracy-tables.md whose tables are another program's than the others.
inline const std::string trustSection = "## Trust and uncertainty";

// The lines of every table of a page's section, given by its heading, or of all others.
std::vector<std::string> tableLines(std::istream& page, const std::string& section, bool inside);

std::string tableLine(const std::vector<std::string>& cells);

// An empty line in front of each table.
void printTables(const std::vector<std::string>& lines, std::ostream& out);

// In front of a number of which only the size is known.
inline const std::string about = "about ";

// Whether a page's table lines are those computed: words equal, numbers within a tenth or within
// 1e-10, below which rounding and the platform's mathematical functions decide, numbers with about
// in front within a factor of 3. Says on err where they differ.
bool sameTables(const std::vector<std::string>& page, const std::vector<std::string>& computed,
                std::ostream& err);

} // namespace kiv::docs
