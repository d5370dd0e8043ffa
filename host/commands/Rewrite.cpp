#include "host/commands/Rewrite.h"

#include <filesystem>
#include <ostream>
#include <string_view>

#include "KIVInterface/CKivPrm.h"
#include "host/base/FileKind.h"
#include "host/base/Files.h"
#include "host/base/FirstFailure.h"
#include "host/base/Interrupt.h"
#include "host/commands/RewriteCost.h"
#include "host/parameters/Findings.h"
#include "host/parameters/LeftCopy.h"
#include "host/parameters/ParameterFile.h"
#include "params/Parser.h"
#include "params/Printer.h"
#include "params/Quoted.h"
#include "params/Survey.h"
#include "support/platform/File.h"
#include "support/platform/FolderLock.h"

namespace kiv::host {

namespace {

namespace fs = std::filesystem;

// The current folder while this lasts.
class WorkingFolder {
public:
    explicit WorkingFolder(const std::string& folder) : home(fs::current_path(failed)) {
        fs::current_path(pathOf(folder), failed);
    }
    ~WorkingFolder() { fs::current_path(home, failed); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

    const std::error_code& fault() const { return failed; }

private:
    std::error_code failed;
    fs::path home;
};

bool isFile(const char* path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored);
}

bool exists(const std::string& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

// All rewrites in a folder make their copy under one name. False where they cannot be ordered; an
// interrupt ends the waiting and the tool.
bool waitForTurn(platform::FolderLock& turn, const std::string& folder, const Streams& streams) {
    using enum platform::FolderLock::Result;
    const std::string path = folder + '.';
    auto result = turn.take(path.c_str(), false);
    if (result == busy) {
        if (streams.errIsTerminal)
            streams.err << "kiv: waiting for the end of another rewrite in " << printable(path)
                        << std::endl;
        const Interrupt::Waiting waiting(true);
        result = turn.take(path.c_str(), true);
    }
    return result == taken;
}

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

// The rewritten file shows no longer that the old one may be cut.
void reportOpenEnd(const std::string& path, std::ostream& err) {
    platform::InputFile file;
    Survey survey;
    if (file.open(path.c_str()))
        surveyForRewrite(file, survey);
    if (survey.openEnd)
        report(err, path, {*survey.openEnd, false});
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

std::string_view nameOf(State state) {
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

private:
    std::string file;
    ParsedFile before;
    std::string expected; // of the rewritten file
};

std::string Rewriting::obstacle() const {
    if (!isFile(copyName))
        return "";
    if (platform::identityOf(copyName) == platform::identityOf(file.c_str()))
        return "a second name of " + file + "; keep it under its own name alone";
    const auto [document, outcome] = valuesIn(copyName);
    if (outcome.code == KIV_CANNOT_OPEN)
        return "a file that cannot be read: "
               + platform::systemErrorText(
                   platform::InputFile().open(copyName) ? 0 : platform::lastSystemError());
    if (outcome.code != KIV_OK || printed(document) == expected)
        return "";
    return "a whole parameter file, of sensor "
           + std::to_string(document.find(Block::serialNumber)->integer)
           + ", with other values than " + file
           + "; give it the name that it is to have or delete it";
}

int Rewriting::run(std::int32_t id) {
    CKivPrm record;
    record.ReadCalibrationFile(".", static_cast<unsigned long>(id)); // for the path alone
    return record.PrmFileCopy();
}

State Rewriting::fileState() const {
    if (!exists(file))
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
    if (!exists(copyName))
        return State::missing;
    const auto rewritten = holds(copyName, expected);
    if (!rewritten)
        return State::unreadable;
    return *rewritten && before.outcome.code == KIV_OK ? State::complete : State::incomplete;
}

// By the operation that has failed first, since the library tells no more than the code.
std::string_view stepOf(std::optional<platform::FileOperation> operation) {
    using enum platform::FileOperation;
    switch (operation.value_or(close)) {
    case status:
        return "make the file writable";
    case open:
        return "open the file";
    case create:
        return "create the copy";
    case read:
        return "read all of the file";
    case remove:
        return "delete the old file";
    case rename:
        return "rename the copy";
    default:
        return "write all of the copy";
    }
}

} // namespace

int rewriteFile(const RewriteOptions& options, const Streams& streams) {
    const auto name = requireParameterFileName(options.file, streams.err);
    if (!name)
        return unusable;
    const std::string path = printable(options.file), copyPath = printable(name->folder + copyName);
    platform::FolderLock turn;
    const bool ordered = waitForTurn(turn, name->folder, streams);
    const std::string whyNotOrdered = platform::systemErrorText(platform::lastSystemError());
    const FirstFailure failure;
    ParsedFile before = valuesIn(options.file);
    if (before.outcome.code == KIV_CANNOT_OPEN) {
        turn.release();
        reportUnopenedParameters(streams.err, options.file, failure.error());
        return unusable;
    }
    const auto refuse = [&](const std::string& place, const std::string& cause) {
        streams.err << place << cause << '\n';
        return unusable;
    };
    if (platform::isLink(options.file.c_str()))
        return refuse(path, ":1:1: expected the file itself, found a link to "
                                + printable(platform::realPath(options.file.c_str()))
                                + "; rewrite that");
    const bool faulty = before.outcome.code != KIV_OK;
    if (const auto other = faulty ? otherKindOf(options.file) : ""; !other.empty()) {
        refuse(path, ":1:1: expected a parameter file, found " + std::string(other));
        return fileFaulty;
    }
    reportOpenEnd(options.file, streams.err);
    const WorkingFolder folder(name->folder + '.');
    if (folder.fault())
        return refuse(path, ": cannot enter its folder: " + folder.fault().message());
    if (!ordered)
        return refuse(path, ": cannot lock its folder against other rewrites: " + whyNotOrdered);
    Rewriting rewriting(name->name, std::move(before));
    if (const std::string obstacle = rewriting.obstacle(); !obstacle.empty())
        return refuse(copyPath, ":1:1: expected nothing that is needed, found " + obstacle);
    if (const auto names = platform::nameCount(name->name.c_str()); names > 1)
        return refuse(path, ":1:1: expected a file of one name, found one of "
                                + std::to_string(names)
                                + " (hard links); under the others it would stay as it is");
    // What is there of it afterwards is from this rewrite.
    if (isFile(copyName) && !platform::removeFile(copyName))
        return refuse(copyPath, ": cannot delete this copy of an earlier rewrite: "
                                    + platform::systemErrorText(platform::lastSystemError()) + "; "
                                    + path + " is as before");

    FirstFailure::forget();
    const int code = rewriting.run(name->id);
    const State file = rewriting.fileState();
    const State copy = rewriting.copyState();
    if (code == KIV_OK && file == State::rewritten && copy == State::missing) {
        streams.out << path << ": rewritten\n";
        const std::int32_t id =
            rewriting.valuesBefore().document.find(Block::serialNumber)->integer;
        if (id != name->id)
            streams.out << "its serial number is " << id << ": the other subcommands take it as Tg"
                        << id << ".prm\n";
        reportCost(rewriting.valuesBefore().document, rewriting.rewrittenText(), options.file,
                   streams.out, streams.err);
        return allGood;
    }
    if (code == KIV_BAD_FORMAT)
        report(streams.err, options.file, {rewriting.valuesBefore().outcome.failure, true});
    else
        streams.err << path << ": cannot " << stepOf(failure.operation()) << ": "
                    << platform::systemErrorText(failure.error()) << '\n';
    streams.err << path << " is " << nameOf(file) << ", the copy in " << copyPath << " is "
                << nameOf(copy) << '\n';
    return code == KIV_BAD_FORMAT ? fileFaulty : unusable;
}

} // namespace kiv::host
