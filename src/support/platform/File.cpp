#include "support/platform/File.h"

#include <algorithm>

namespace kiv::platform {

bool (*failFileOperation)(FileOperation) = nullptr;
void (*onFileFailure)(FileOperation, int error) = nullptr;

InputFile::~InputFile() {
    close();
}

OutputFile::~OutputFile() {
    close();
}

void OutputFile::begin() {
    close();
    size = 0;
    writeFailed = false;
}

void OutputFile::append(std::string_view text) {
    while (!text.empty()) {
        if (size == sizeof buffer)
            drain();
        const std::size_t n = text.copy(buffer + size, sizeof buffer - size);
        size += n;
        text.remove_prefix(n);
    }
}

void OutputFile::flush() {
    drain();
    noteUnless(FileOperation::flush, !mustFail(FileOperation::flush));
}

void OutputFile::noteUnless(FileOperation operation, bool done) {
    if (noted(operation, done) || writeFailed)
        return;
    writeFailed = true;
    error = lastSystemError();
}

} // namespace kiv::platform
