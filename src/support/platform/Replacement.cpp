#include "support/platform/Replacement.h"

namespace kiv::platform {

namespace {

// A file under a name of its own, which goes again unless it takes another one's.
class Copy {
public:
    Copy() = default;
    ~Copy() {
        file.close();
        if (!name.empty())
            removeFile(Utf8Path{name.c_str()});
    }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    bool create(Utf8Path beside) {
        name = file.createBeside(beside);
        return !name.empty();
    }
    bool takeRights(Utf8Path of) { return file.takeRights(of); }
    bool write(const std::function<void(ByteSink&)>& content) {
        content(file);
        file.flush();
        file.sync();
        return file.close();
    }
    bool takePlaceOf(Utf8Path path) {
        if (!replaceFile(Utf8Path{name.c_str()}, path))
            return false;
        name.clear();
        return true;
    }

private:
    OutputFile file;
    std::string name;
};

} // namespace

namespace replacement {

ReplacementFault refusalBySystem() {
    const int error = lastSystemError();
    return {systemErrorText(error), error};
}

} // namespace replacement

ReplacementFault replaceWhole(Utf8Path path, const std::function<void(ByteSink&)>& write) {
    const std::string followed = replacement::followed(path.text);
    const Utf8Path target{followed.c_str()};
    bool exists = false;
    if (ReplacementFault fault = replacement::refusal(followed, exists))
        return fault;
    Copy copy;
    if (!copy.create(target))
        return replacement::refusalBySystem();
    if (exists && !copy.takeRights(target)) {
        const ReplacementFault fault = replacement::refusalBySystem();
        return {"owner and mode cannot be kept (" + fault.reason + ")", fault.system};
    }
    if (!copy.write(write) || !copy.takePlaceOf(target))
        return replacement::refusalBySystem();
    return {};
}

} // namespace kiv::platform
