#include "support/platform/Replacement.h"

namespace kiv::platform {

namespace replacement {

ReplacementFault refusalBySystem() {
    const int error = lastSystemError();
    return {systemErrorText(error), error};
}

} // namespace replacement

Replacement::~Replacement() {
    file.close();
    if (!name.empty())
        removeFile(Utf8Path{name.c_str()});
}

bool Replacement::write(const std::function<void(ByteSink&)>& content) {
    content(file);
    file.flush();
    file.sync();
    return file.close();
}

ReplacementFault Replacement::prepare(Utf8Path path,
                                      const std::function<void(ByteSink&)>& content) {
    target = replacement::followed(path.text);
    const Utf8Path followed{target.c_str()};
    bool exists = false;
    if (ReplacementFault fault = replacement::refusal(target, exists))
        return fault;
    name = file.createBeside(followed);
    if (name.empty())
        return replacement::refusalBySystem();
    if (exists && !file.takeRights(followed)) {
        const ReplacementFault fault = replacement::refusalBySystem();
        return {"owner and mode cannot be kept (" + fault.reason + ")", fault.system};
    }
    return write(content) ? ReplacementFault{} : replacement::refusalBySystem();
}

ReplacementFault Replacement::finish() {
    if (!replaceFile(Utf8Path{name.c_str()}, Utf8Path{target.c_str()}))
        return replacement::refusalBySystem();
    name.clear();
    return {};
}

ReplacementFault replaceWhole(Utf8Path path, const std::function<void(ByteSink&)>& write) {
    Replacement replacement;
    const ReplacementFault fault = replacement.prepare(path, write);
    return fault ? fault : replacement.finish();
}

} // namespace kiv::platform
