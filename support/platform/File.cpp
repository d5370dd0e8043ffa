#include "support/platform/File.h"

namespace kiv::platform {

bool (*failFileOperation)(FileOperation) = nullptr;

InputFile::~InputFile() {
    close();
}

} // namespace kiv::platform
