#pragma once

#include <functional>
#include <string>

#include "support/platform/File.h"

namespace kiv::platform {

// Why a file was not replaced, in words; empty where it was.
struct ReplacementFault {
    std::string reason;
    int system = 0; // the system's own number; 0 where it had no part in it

    explicit operator bool() const { return !reason.empty(); }
};

// Makes a file of what write gives to the sink, or puts it in the place of the one that is there:
// at every moment the path names a whole file, the old one or the new one, whoever else writes to
// it in the same way. The new one has a name of its own in the same folder, and the old one's
// owner, group and mode, and is on the disk before it gets its name. A link is followed. Refused
// are a path that is no regular file, a file with several names, a read-only one, also where the
// system would let it be written, and one whose owner or mode cannot be kept: they stay as they
// are. Nothing is left behind.
ReplacementFault replaceWhole(Utf8Path path, const std::function<void(ByteSink&)>& write);

// The same in two steps, for files that belong together: none is replaced before all are on the
// disk.
class Replacement {
public:
    Replacement() = default;
    ~Replacement(); // takes away what has not taken its place
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    ReplacementFault prepare(Utf8Path path, const std::function<void(ByteSink&)>& write);
    const std::string& preparedName() const { return name; }
    ReplacementFault finish();

private:
    bool write(const std::function<void(ByteSink&)>& content);

    OutputFile file;
    std::string name;   // its own, until it takes the other's
    std::string target; // where the path leads
};

// What each system has its own way to tell.
namespace replacement {

// Where the links at a path lead, whether there is a file or not; the path itself without any.
std::string followed(const std::string& path);

// Why the file at a path may not be replaced; exists is false where there is none.
ReplacementFault refusal(const std::string& path, bool& exists);

ReplacementFault refusalBySystem();

} // namespace replacement

} // namespace kiv::platform
