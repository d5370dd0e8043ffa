#include "host/base/Files.h"

#include <ostream>

namespace kiv::host {

namespace {

constexpr std::size_t blockSize = 1 << 16;

} // namespace

std::filesystem::path pathOf(const std::string& name) {
    return std::u8string(name.begin(), name.end());
}

std::string shownInput(const std::string& name) {
    return name == "-" ? "standard input" : name;
}

std::string shownOutput(const std::string& name) {
    return name == "-" ? "standard output" : name;
}

bool sameFile(const std::string& one, const std::string& other) {
    std::error_code failed;
    return std::filesystem::equivalent(pathOf(one), pathOf(other), failed) && !failed;
}

bool sameOutput(const std::string& one, const std::string& other) {
    std::error_code failed;
    if (one == "-" || other == "-")
        return one == other;
    if (other.empty() || std::filesystem::is_other(pathOf(one), failed))
        return false;
    if (sameFile(one, other))
        return true;
    const auto place = [&](const std::string& name) {
        return std::filesystem::weakly_canonical(std::filesystem::absolute(pathOf(name), failed),
                                                 failed);
    };
    return place(one) == place(other);
}

void reportUnopened(std::ostream& err, const std::string& name, const char* expected) {
    std::error_code ignored;
    const auto status = std::filesystem::status(pathOf(name), ignored);
    const char* found = std::filesystem::is_directory(status) ? "a folder"
                        : std::filesystem::exists(status)     ? "one that cannot be opened"
                                                              : "no such file";
    err << name << ":1:1: expected " << expected << ", found " << found << '\n';
}

bool Input::open(const std::string& name, const Streams& streams, Sha256* hash) {
    shownName = shownInput(name);
    if (name == "-") {
        chosen = &streams.in;
    } else {
        chosen = &file;
        std::error_code ignored;
        if (!std::filesystem::is_directory(pathOf(name), ignored))
            file.open(name, std::ios::binary);
        if (std::filesystem::is_regular_file(pathOf(name), ignored))
            bytes = std::filesystem::file_size(pathOf(name), ignored);
        if (!file.is_open()) {
            reportUnopened(streams.err, name, "a file that can be read");
            return false;
        }
    }
    if (hash) {
        buffer.open(*chosen->rdbuf(), *hash);
        hashed.emplace(&buffer);
    }
    return true;
}

bool Output::open(const std::string& name, const Streams& streams) {
    shownName = shownOutput(name);
    if (name == "-") {
        chosen = &streams.out;
        return true;
    }
    chosen = &file;
    file.open(name, std::ios::binary | std::ios::trunc);
    if (!file.is_open()) {
        reportUnopened(streams.err, name, "a file that can be written");
        return false;
    }
    return true;
}

void Output::writePending() {
    chosen->write(pending.data(), static_cast<std::streamsize>(pending.size()));
    pending.clear();
}

bool Output::endRow(bool inputWouldWait) {
    if (!inputWouldWait && pending.size() < blockSize)
        return true;
    return write({}, inputWouldWait);
}

bool Output::write(std::string_view block, bool inputWouldWait) {
    writePending();
    chosen->write(block.data(), static_cast<std::streamsize>(block.size()));
    if (inputWouldWait)
        chosen->flush();
    return !chosen->fail();
}

bool Output::finish(std::ostream& err) {
    writePending();
    chosen->flush();
    if (chosen == &file)
        file.close();
    if (!chosen->fail())
        return true;
    err << shownName
        << ": expected to write all of the output, found that not all of it was taken\n";
    return false;
}

bool refuseOverwriting(const std::string& output, const std::vector<std::string>& inputs,
                       std::ostream& err) {
    for (const std::string& input : inputs) {
        if (sameFile(output, input)) {
            err << output << ":1:1: expected an output of its own, found the input " << input
                << '\n';
            return true;
        }
    }
    return false;
}

} // namespace kiv::host
