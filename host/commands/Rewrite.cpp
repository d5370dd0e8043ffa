#include "host/commands/Rewrite.h"

#include <filesystem>
#include <ostream>
#include <string_view>

#include "KIVInterface/CKivPrm.h"
#include "host/Files.h"
#include "host/commands/RewriteCost.h"
#include "host/parameters/Findings.h"
#include "host/parameters/ParameterFile.h"
#include "params/Parser.h"
#include "params/Printer.h"
#include "support/platform/File.h"

namespace kiv::host {

namespace {

namespace fs = std::filesystem;

constexpr const char* temporaryName = "$tmp.prm";

// The current folder while this lasts.
class WorkingFolder {
public:
    explicit WorkingFolder(const std::string& folder) : home(fs::current_path()) {
        fs::current_path(folder);
    }
    ~WorkingFolder() {
        std::error_code ignored;
        fs::current_path(home, ignored);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

private:
    fs::path home;
};

// That the file has this text, but for the kind of line ends; nothing when it cannot be read.
std::optional<bool> holds(const std::string& path, std::string_view text) {
    platform::InputFile file;
    if (!file.open(path.c_str()))
        return std::nullopt;
    char buffer[4096];
    while (const std::size_t size = file.read(buffer, sizeof buffer))
        for (const char c : std::string_view(buffer, size)) {
            if (c == '\r')
                continue;
            if (text.empty() || text.front() != c)
                return false;
            text.remove_prefix(1);
        }
    return file.failed() ? std::nullopt : std::optional(text.empty());
}

ParsedFile valuesIn(const std::string& path) {
    platform::InputFile file;
    if (!file.open(path.c_str()))
        return {{}, {KIV_CANNOT_OPEN, 0, {}, {}}};
    return parseForRewrite(file);
}

std::string printed(const Document& document) {
    TextSink sink;
    print(document, sink);
    return std::move(sink.text);
}

// What the disk shows of the file and of its copy.
enum class State { gone, asBefore, rewritten, another, missing, incomplete, complete, unreadable };

std::string_view shown(State state) {
    constexpr std::string_view names[] = {
        "gone",      "as before",  "rewritten", "another file now",
        "not there", "incomplete", "complete",  "not to be read"};
    return names[static_cast<std::size_t>(state)];
}

// One rewrite, by names in the current folder.
class Rewriting {
public:
    Rewriting(std::string fileName, ParsedFile parsed)
        : file(std::move(fileName)), before(std::move(parsed)), expected(printed(before.document)) {
    }

    // What a temporary file of an earlier rewrite is, where it must not be replaced, as its values
    // may be nowhere else; else empty.
    std::string obstacle() const;
    int run(std::int32_t id);

    const ParsedFile& valuesBefore() const { return before; }
    const std::string& rewrittenText() const { return expected; }
    State fileState() const;
    State copyState() const;
    std::string_view failedStep(int code, State fileState) const;

private:
    std::string file;
    ParsedFile before;
    std::string expected; // of the rewritten file
};

std::string Rewriting::obstacle() const {
    if (!fs::is_regular_file(temporaryName))
        return "";
    if (fs::equivalent(temporaryName, file))
        return "a second name of " + file + "; keep it under its own name alone";
    const auto [document, outcome] = valuesIn(temporaryName);
    if (outcome.code == KIV_CANNOT_OPEN)
        return "a file that cannot be read";
    if (outcome.code != KIV_OK || printed(document) == expected)
        return "";
    return "a whole parameter file, of sensor "
           + std::to_string(document.find(Block::serialNumber)->integer)
           + ", with other values than " + file
           + "; give it the name that it is to have or delete it";
}

int Rewriting::run(std::int32_t id) {
    // What is there of it afterwards is from this rewrite.
    if (fs::is_regular_file(temporaryName))
        fs::remove(temporaryName);
    CKivPrm record;
    record.ReadCalibrationFile(".", static_cast<unsigned long>(id)); // for the path alone
    return record.PrmFileCopy();
}

State Rewriting::fileState() const {
    if (!fs::exists(file))
        return State::gone;
    const auto rewritten = holds(file, expected);
    const ParsedFile now = valuesIn(file);
    if (!rewritten || now.outcome.code == KIV_CANNOT_OPEN)
        return State::unreadable;
    if (*rewritten && before.outcome.code == KIV_OK)
        return State::rewritten;
    return now == before ? State::asBefore : State::another;
}

State Rewriting::copyState() const {
    if (!fs::exists(temporaryName))
        return State::missing;
    const auto rewritten = holds(temporaryName, expected);
    if (!rewritten)
        return State::unreadable;
    return *rewritten && before.outcome.code == KIV_OK ? State::complete : State::incomplete;
}

bool canCreateCopy() {
    platform::OutputFile probe;
    return probe.create(temporaryName) && probe.close() && platform::removeFile(temporaryName);
}

// By what the disk shows and by trying again, since the library tells no more than the code.
std::string_view Rewriting::failedStep(int code, State fileState) const {
    const bool copied = fs::is_regular_file(temporaryName);
    if (code != KIV_OK) {
        platform::InputFile source;
        return copied                                  ? "copy all of the file"
               : !platform::makeWritable(file.c_str()) ? "make the file writable"
               : !source.open(file.c_str())            ? "open the file"
               : !canCreateCopy()                      ? "create the copy"
                                  : "make the file writable, open it or create the copy";
    }
    switch (fileState) {
    case State::unreadable:
        return "look at the result";
    case State::asBefore:
    case State::rewritten:
        return copied ? "delete the old file" : "read the file's status";
    default:
        return "rename the copy";
    }
}

} // namespace

int rewriteFile(const RewriteOptions& options, const Streams& streams) {
    const auto name = requireParameterFileName(options.file, streams.err);
    if (!name)
        return unusable;
    ParsedFile before = valuesIn(options.file);
    if (before.outcome.code == KIV_CANNOT_OPEN) {
        reportUnopened(streams.err, options.file, "a parameter file");
        return unusable;
    }
    const fs::path path(options.file);
    const std::string copyPath = (path.parent_path() / temporaryName).string();
    const WorkingFolder folder(name->directory);
    Rewriting rewriting(path.filename().string(), std::move(before));
    if (const std::string obstacle = rewriting.obstacle(); !obstacle.empty()) {
        streams.err << copyPath << ":1:1: expected nothing that is needed, found " << obstacle
                    << '\n';
        return unusable;
    }

    const int code = rewriting.run(name->id);
    const State file = rewriting.fileState();
    const State copy = rewriting.copyState();
    if (code == KIV_OK && file == State::rewritten && copy == State::missing) {
        streams.out << options.file << ": rewritten\n";
        reportCost(rewriting.valuesBefore().document, rewriting.rewrittenText(), options.file,
                   streams.out, streams.err);
        return allGood;
    }
    if (code == KIV_BAD_FORMAT)
        report(streams.err, options.file, {rewriting.valuesBefore().outcome.failure, true});
    else
        streams.err << options.file << ":1:1: expected to " << rewriting.failedStep(code, file)
                    << ", found that this failed\n";
    streams.err << options.file << " is " << shown(file) << ", the copy in " << copyPath << " is "
                << shown(copy) << '\n';
    return code == KIV_BAD_FORMAT ? fileFaulty : unusable;
}

} // namespace kiv::host
