#pragma once

#include <string>
#include <string_view>

namespace kiv {

// A text from outside, as a file's name, on one line of a terminal: UTF-8 stands as it is; each
// byte of what is none or cannot be seen, as control characters, marks of direction and blanks
// other than the ordinary one, becomes \xNN.
std::string printable(std::string_view text);

// The same in quotes, of a text's first 40 bytes. Not "quoted": for a std::string that would be
// std::quoted wherever <iomanip> is included.
std::string inQuotes(std::string_view text);

bool isUtf8(std::string_view text);

} // namespace kiv
