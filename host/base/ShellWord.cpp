#include "host/base/ShellWord.h"

#include "support/platform/File.h"

namespace kiv::host {

// Double quotes do on every system, but for what some shells see within them.
std::string shellWord(const std::string& text) {
    constexpr const char* plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                                  "-_./:\\=,+%@";
    if (!text.empty() && text.find_first_not_of(plain) == text.npos)
        return text;
    if (!text.empty() && text.find_first_of("\"$`\\!%") == text.npos)
        return '"' + text + '"';
    if (platform::namesAreLoose) { // cmd and PowerShell alike
        std::string word = "\"";
        for (const char c : text)
            word += c == '"' ? std::string("\\\"") : std::string(1, c);
        return word += '"';
    }
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word += '\'';
}

} // namespace kiv::host
