#include <chrono>

#include "KIVInterface/CKivPrm.h"
#include "params/Parser.h"
#include "params/Printer.h"
#include "support/platform/Clock.h"
#include "support/platform/File.h"

namespace {

namespace platform = kiv::platform;

constexpr const char* temporaryFile = "$tmp.prm";
constexpr std::chrono::milliseconds settlingTime{500}; // before and after the old file is deleted

// The temporary file's content is on the disk when the outcome's code is KIV_OK.
kiv::ParseOutcome copyToTemporaryFile(const char* path) {
    kiv::ParseOutcome failed{KIV_CANNOT_OPEN, 0, {}, {}};
    platform::InputFile file;
    platform::OutputFile copy;
    if (!file.open(path) || !copy.create(temporaryFile))
        return failed;
    auto [document, outcome] = kiv::parseForRewrite(file);
    file.close();
    kiv::print(document, copy);
    copy.flush();
    if (outcome.code == KIV_OK)
        copy.sync();
    return copy.close() ? outcome : failed;
}

} // namespace

int CKivPrm::PrmFileCopy() {
    const platform::PathKind kind =
        *prmPath ? platform::kindOf(prmPath) : platform::PathKind::missing;
    if (kind == platform::PathKind::missing)
        return KIV_OK;
    // Creating the temporary file would delete the only copy.
    const bool isTemporary =
        platform::isLink(prmPath)
        && platform::identityOf(prmPath) == platform::identityOf(temporaryFile);
    if (kind != platform::PathKind::file || isTemporary || !platform::makeWritable(prmPath))
        return KIV_CANNOT_OPEN;

    const kiv::ParseOutcome outcome = copyToTemporaryFile(prmPath);
    if (outcome.code == KIV_BAD_FORMAT)
        DisplayErrMsg(outcome.messageId);
    if (outcome.code != KIV_OK)
        return outcome.code;

    // Until it has its name, the temporary file is the only copy for a while; a step that fails
    // leaves it where it is.
    platform::wait(settlingTime);
    const bool removed = platform::removeFile(prmPath);
    platform::wait(settlingTime);
    platform::renameFile(temporaryFile, prmPath, removed);
    return KIV_OK;
}
