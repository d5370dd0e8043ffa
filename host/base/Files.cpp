#include "host/base/Files.h"

#include <array>
#include <ostream>

#include "params/Quoted.h"
#include "support/platform/File.h"
#include "support/platform/Replacement.h"
#include "support/platform/SystemError.h"

namespace kiv::host {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t blockSize = 1 << 16;

std::string shownPath(const fs::path& path) {
    const std::u8string name = path.u8string();
    return printable({reinterpret_cast<const char*>(name.data()), name.size()});
}

// Empty where there is none.
fs::path firstMissingFolder(const fs::path& file) {
    std::error_code ignored;
    fs::path missing;
    for (fs::path folder = file.parent_path(); !folder.empty() && !fs::exists(folder, ignored);
         folder = folder.parent_path())
        missing = folder;
    return missing;
}

// Where the system says no more than that something is missing, it is said what.
std::string openingCause(const fs::path& path, int error) {
    std::error_code ignored;
    if (fs::is_directory(path, ignored))
        return "Is a folder; name a file in it";
    if (!platform::meansMissing(error))
        return platform::systemErrorText(error);
    if (fs::is_symlink(path, ignored))
        return "Is a link to " + shownPath(fs::read_symlink(path, ignored))
               + ", which is not there";
    const fs::path folder = firstMissingFolder(path);
    return folder.empty() ? "No such file" : "No such folder: " + shownPath(folder);
}

// Of the file that an argument names, or to which a stream leads; empty where there is none.
std::string identityOf(const std::string& name, platform::StandardStream stream) {
    return name == "-" ? platform::identityOf(stream) : platform::identityOf(name.c_str());
}

// A name in /dev or /proc leads to what is open already, as any name of a standard stream's file
// does, and a file put in its place would not be.
bool isOfAFile(const std::string& name) {
    using platform::StandardStream;
    if (name == "-" || name.starts_with("/dev/") || name.starts_with("/proc/"))
        return false;
    const std::string identity = platform::identityOf(name.c_str());
    if (!identity.empty() && identity == platform::identityOf(StandardStream::output))
        return false;
    std::error_code ignored;
    const fs::file_status status = fs::status(pathOf(name), ignored);
    return !fs::exists(status) || fs::is_regular_file(status);
}

} // namespace

std::filesystem::path pathOf(const std::string& name) {
    const std::string form = platform::systemForm({name.c_str()});
    return std::u8string(form.begin(), form.end());
}

std::string shownInput(const std::string& name) {
    return name == "-" ? "standard input" : printable(name);
}

std::string shownOutput(const std::string& name) {
    return name == "-" ? "standard output" : printable(name);
}

bool mayWait(const std::string& name) {
    std::error_code ignored;
    return name == "-" || std::filesystem::is_other(pathOf(name), ignored);
}

bool sameFile(const std::string& one, const std::string& other) {
    const std::string identity = platform::identityOf(one.c_str());
    return !identity.empty() && identity == platform::identityOf(other.c_str());
}

bool sameOutput(const std::string& one, const std::string& other) {
    using platform::StandardStream;
    std::error_code failed;
    if (one == "-" || other == "-") {
        const std::string identity = identityOf(one, StandardStream::output);
        return one == other
               || (!identity.empty() && identity == identityOf(other, StandardStream::output));
    }
    if (other.empty() || fs::is_other(pathOf(one), failed))
        return false;
    if (sameFile(one, other))
        return true;
    const auto place = [&](const std::string& name) {
        return fs::weakly_canonical(fs::absolute(pathOf(name), failed), failed);
    };
    return place(one) == place(other);
}

bool refuseSharing(const std::string& output, const std::string& summary, std::ostream& err) {
    if (!sameOutput(output, summary))
        return false;
    err << shownOutput(summary) << ":1:1: expected an output of its own, found that of --output\n";
    return true;
}

bool refuseMissingFolder(const std::string& output, std::ostream& err) {
    const fs::path folder = firstMissingFolder(pathOf(output));
    if (folder.empty())
        return false;
    err << shownOutput(output) << ": No such folder: " << shownPath(folder) << '\n';
    return true;
}

void reportUnopened(std::ostream& err, const std::string& name, int error) {
    err << printable(name) << ": " << openingCause(pathOf(name), error) << '\n';
}

bool Input::open(const std::string& name, const Streams& streams, Sha256* hash) {
    shownName = name == "-" ? std::string(streams.inName) : printable(name);
    if (name == "-") {
        chosen = &streams.in;
    } else {
        chosen = &file;
        std::error_code ignored;
        platform::setLastSystemError(0);
        if (!fs::is_directory(pathOf(name), ignored))
            file.open(pathOf(name), std::ios::binary);
        if (!file.is_open()) {
            reportUnopened(streams.err, name, platform::lastSystemError());
            return false;
        }
        if (fs::is_regular_file(pathOf(name), ignored))
            bytes = fs::file_size(pathOf(name), ignored);
    }
    if (hash) {
        buffer.open(*chosen->rdbuf(), *hash);
        hashed.emplace(&buffer);
    }
    return true;
}

bool Input::readAll(std::string& text, std::ostream& err) {
    std::array<char, 4096> block;
    platform::setLastSystemError(0);
    do {
        stream().read(block.data(), block.size());
        text.append(block.data(), static_cast<std::size_t>(stream().gcount()));
    } while (stream());
    if (!stream().bad())
        return true;
    err << name() << ": " << platform::systemErrorText(platform::lastSystemError())
        << "; not all of the file could be read\n";
    return false;
}

bool Output::open(const std::string& name, const Streams& streams) {
    shownName = shownOutput(name);
    if (name == "-") {
        chosen = &streams.out;
        return true;
    }
    chosen = &file;
    if (platform::namesDevice(name)) {
        streams.err << shownName << ": Is the name of a device; choose another\n";
        return false;
    }
    platform::setLastSystemError(0);
    file.open(pathOf(name), std::ios::binary | std::ios::trunc);
    if (!file.is_open()) {
        reportUnopened(streams.err, name, platform::lastSystemError());
        return false;
    }
    return true;
}

bool Output::replace(std::string_view text, const char* consequence, std::ostream& err) {
    const auto fault =
        platform::replaceWhole({replaced.c_str()}, [&](ByteSink& target) { target.write(text); });
    if (!fault)
        return true;
    if (platform::meansMissing(fault.system))
        reportUnopened(err, replaced, fault.system);
    else
        err << shownName << ": " << fault.reason << consequence << '\n';
    return false;
}

bool Output::openWhole(const std::string& name, const Streams& streams) {
    if (platform::namesDevice(name) || !isOfAFile(name))
        return open(name, streams);
    shownName = shownOutput(name);
    replaced = name;
    return replace({}, "", streams.err);
}

// Once one has failed, nothing further is attempted.
template <typename Action>
void Output::attempt(Action action) {
    if (chosen->fail())
        return;
    platform::setLastSystemError(0);
    action();
    if (chosen->fail())
        error = platform::lastSystemError();
}

void Output::writePending() {
    attempt([&] { chosen->write(pending.data(), static_cast<std::streamsize>(pending.size())); });
    pending.clear();
}

bool Output::endRow(bool inputWouldWait) {
    if (!inputWouldWait && pending.size() < blockSize)
        return true;
    return write({}, inputWouldWait);
}

bool Output::write(std::string_view block, bool inputWouldWait) {
    if (!replaced.empty()) {
        pending.append(block);
        return true;
    }
    writePending();
    attempt([&] { chosen->write(block.data(), static_cast<std::streamsize>(block.size())); });
    if (inputWouldWait)
        attempt([&] { chosen->flush(); });
    return !chosen->fail();
}

bool Output::finish(std::ostream& err) {
    constexpr const char* consequence = "; not all of the output is there";
    if (!replaced.empty())
        return replace(pending, consequence, err);
    writePending();
    attempt([&] { chosen->flush(); });
    if (chosen == &file)
        attempt([&] { file.close(); });
    if (!chosen->fail())
        return true;
    err << shownName << ": " << platform::systemErrorText(error) << consequence << '\n';
    return false;
}

bool writeToStandardOutput(std::string_view text, const Streams& streams) {
    Output output;
    output.open("-", streams);
    output.text() = text;
    return output.finish(streams.err);
}

bool refuseOverwriting(const std::string& output, const std::vector<std::string>& inputs,
                       std::ostream& err) {
    using platform::StandardStream;
    const std::string written = identityOf(output, StandardStream::output);
    for (const std::string& name : inputs) {
        if (written.empty() || written != identityOf(name, StandardStream::input))
            continue;
        if (output == "-")
            err << "standard output: expected a file of its own, found the input "
                << shownInput(name)
                << ", which the shell has opened for it; give -o another file\n";
        else
            err << shownOutput(output) << ":1:1: expected an output of its own, found the input "
                << shownInput(name) << '\n';
        return true;
    }
    return false;
}

} // namespace kiv::host
