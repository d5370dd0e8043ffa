#pragma once

#include <string_view>

// Files that the build puts into the tool.
namespace kiv::host::embedded {

std::string_view dygraphsScript();
std::string_view dygraphsStyle();
std::string_view dygraphsLicence();
std::string_view pageScript();
std::string_view pageStyle();

std::string_view verifyParameters(); // a parameter file
std::string_view verifyCases();      // a table

} // namespace kiv::host::embedded
