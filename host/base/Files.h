#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/Cli.h"
#include "host/base/Hashing.h"

namespace kiv::host {

// A text input or output by name, - standing for the tool's own stream.
class Input {
public:
    // False, and a message, when the file cannot be opened. What is read goes into the hash, too.
    bool open(const std::string& name, const Streams& streams, Sha256* hash = nullptr);
    std::istream& stream() { return hashed ? *hashed : *chosen; }
    // False, and a message, when it breaks off before its end.
    bool readAll(std::string& text, std::ostream& err);
    const std::string& name() const { return shownName; }
    std::uintmax_t size() const { return bytes; } // 0 where unknown

private:
    std::uintmax_t bytes = 0;
    std::ifstream file;
    std::istream* chosen = nullptr;
    HashingBuffer buffer;
    std::optional<std::istream> hashed;
    std::string shownName;
};

// Collects text and writes it in blocks.
class Output {
public:
    bool open(const std::string& name, const Streams& streams);
    // For a text that is of use as a whole alone: whoever reads the file finds it empty or with all
    // of it, even where the tool is killed, and its owner and mode stay. What is no file of its
    // own, a pipe or a device, is written to as by open.
    bool openWhole(const std::string& name, const Streams& streams);

    std::string& text() { return pending; }
    // Writes what has come together once it makes a block, or at once when the next input may take
    // time.
    // False once something could not be written.
    bool endRow(bool inputWouldWait);
    // Writes what has come together, and a text behind it; false as above.
    bool write(std::string_view block, bool inputWouldWait);
    // False, and a message, when anything could not be written.
    bool finish(std::ostream& err);

private:
    template <typename Action>
    void attempt(Action action);
    void writePending();
    // False, and a message, when the file cannot be replaced by one of this text.
    bool replace(std::string_view text, const char* consequence, std::ostream& err);

    std::string replaced; // the file's name where it is written as a whole
    std::ofstream file;
    std::ostream* chosen = nullptr;
    int error = 0; // of the first attempt that has failed
    std::string shownName;
    std::string pending;
};

// All of a text; false, and a message, when it could not be written.
bool writeToStandardOutput(std::string_view text, const Streams& streams);

// A name as the tool takes and shows it is UTF-8 on Windows; a path's own conversion there takes
// it for something else.
std::filesystem::path pathOf(const std::string& name);

// These names are as messages show them, on one line.
std::string shownInput(const std::string& name);
std::string shownOutput(const std::string& name);

// A pipe or a device, which can be read only once.
bool mayWait(const std::string& name);

// Two names lead to one file that is there, also by links.
bool sameFile(const std::string& one, const std::string& other);

// Two names of outputs mean one place, where a file is or will be, or standard output.
bool sameOutput(const std::string& one, const std::string& other);

// True, and a message, when a summary would go where the output goes.
bool refuseSharing(const std::string& output, const std::string& summary, std::ostream& err);

// True, and a message, when the folder of an output is not there.
bool refuseMissingFolder(const std::string& output, std::ostream& err);

// Says why the system has not opened a file, by its error.
void reportUnopened(std::ostream& err, const std::string& name, int error);

// True, and a message, when the output names the same file on disk as one of the inputs.
bool refuseOverwriting(const std::string& output, const std::vector<std::string>& inputs,
                       std::ostream& err);

} // namespace kiv::host
