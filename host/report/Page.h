#pragma once

#include <string>
#include <string_view>

namespace kiv::host {

// What stands in front of and behind the sections of a page that loads nothing and draws its charts
// itself. Their data are JSON with numbers and names of our own alone.
void appendPageHead(std::string& html, std::string_view title);
void appendPageFoot(std::string& html, std::string_view chartData);

// Where a chart is drawn; the unit, as HTML, stands behind the title.
void appendFigure(std::string& html, std::string_view id, std::string_view title,
                  std::string_view unit);

// Now, or the moment that a build or a test which has to be the same again asks for.
std::string timeOfPage();

} // namespace kiv::host
