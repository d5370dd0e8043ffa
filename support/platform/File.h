#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "support/platform/ByteSource.h"

// Files by path. A backslash in a path separates folders on every platform. All that can fail is
// reported by a result; nothing blocks on a path that is not a regular file.
namespace kiv::platform {

// Each operation below asks this first, when it is set; true makes the operation fail (a close
// still closes). For tests.
enum class FileOperation { open, read, write, flush, sync, close, status, remove, rename };
extern bool (*failFileOperation)(FileOperation);

inline bool mustFail(FileOperation operation) {
    return failFileOperation && failFileOperation(operation);
}

class InputFile final : public ByteSource {
public:
    InputFile() = default;
    ~InputFile() override;
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    // False when the path cannot be opened for reading or is not a regular file.
    bool open(const char* path);
    std::size_t read(char* buffer, std::size_t size) override;
    bool failed() const override { return readFailed; }
    void close();

private:
    std::intptr_t handle = -1;
    bool readFailed = false;
};

// The current directory as the platform spells it (a separator ends it only at a root), through a
// buffer of 255 characters; empty when it does not fit.
std::string currentDirectory();

} // namespace kiv::platform
