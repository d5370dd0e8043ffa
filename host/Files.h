#pragma once

#include <fstream>
#include <iosfwd>
#include <string>

#include "host/Cli.h"

namespace kiv::host {

// A text input or output by name, - standing for the tool's own stream.
class Input {
public:
    // False, and a message, when the file cannot be opened.
    bool open(const std::string& name, const Streams& streams);
    std::istream& stream() { return *chosen; }
    const std::string& name() const { return shownName; }

private:
    std::ifstream file;
    std::istream* chosen = nullptr;
    std::string shownName;
};

// Collects text and writes it in blocks.
class Output {
public:
    bool open(const std::string& name, const Streams& streams);

    std::string& text() { return pending; }
    void writeWhenLarge();
    void flush();
    // False, and a message, when anything could not be written.
    bool finish(std::ostream& err);

private:
    std::ofstream file;
    std::ostream* chosen = nullptr;
    std::string shownName;
    std::string pending;
};

// Both name the same file on disk, also by different paths.
bool sameFile(const std::string& a, const std::string& b);

} // namespace kiv::host
