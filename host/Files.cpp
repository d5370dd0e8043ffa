#include "host/Files.h"

#include <filesystem>
#include <ostream>

namespace kiv::host {

namespace {

constexpr std::size_t blockSize = 1 << 16;

void reportUnopened(std::ostream& err, const std::string& name, const char* expected) {
    std::error_code ignored;
    const auto status = std::filesystem::status(name, ignored);
    const char* found = std::filesystem::is_directory(status) ? "a folder"
                        : std::filesystem::exists(status)     ? "one that cannot be opened"
                                                              : "no such file";
    err << name << ":1:1: expected " << expected << ", found " << found << '\n';
}

} // namespace

bool Input::open(const std::string& name, const Streams& streams) {
    if (name == "-") {
        chosen = &streams.in;
        shownName = "standard input";
        return true;
    }
    shownName = name;
    chosen = &file;
    std::error_code ignored;
    if (!std::filesystem::is_directory(name, ignored))
        file.open(name, std::ios::binary);
    if (!file.is_open()) {
        reportUnopened(streams.err, name, "a file of readings");
        return false;
    }
    return true;
}

bool Output::open(const std::string& name, const Streams& streams) {
    if (name == "-") {
        chosen = &streams.out;
        shownName = "standard output";
        return true;
    }
    shownName = name;
    chosen = &file;
    file.open(name, std::ios::binary | std::ios::trunc);
    if (!file.is_open()) {
        reportUnopened(streams.err, name, "a file that can be written");
        return false;
    }
    return true;
}

void Output::writeWhenLarge() {
    if (pending.size() < blockSize)
        return;
    chosen->write(pending.data(), static_cast<std::streamsize>(pending.size()));
    pending.clear();
}

void Output::flush() {
    chosen->write(pending.data(), static_cast<std::streamsize>(pending.size()));
    pending.clear();
    chosen->flush();
}

bool Output::finish(std::ostream& err) {
    flush();
    if (chosen == &file)
        file.close();
    if (!chosen->fail())
        return true;
    err << shownName
        << ": expected to write all of the output, found that not all of it was taken\n";
    return false;
}

bool sameFile(const std::string& a, const std::string& b) {
    std::error_code failed;
    return std::filesystem::equivalent(a, b, failed) && !failed;
}

} // namespace kiv::host
