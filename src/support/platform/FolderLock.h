#pragma once

#include <cstdint>

namespace kiv::platform {

// One process of a machine at a time has it for a folder; it ends with the process at the latest,
// and nothing is written for it.
class FolderLock {
public:
    enum class Result { taken, busy, failed };

    FolderLock() = default;
    ~FolderLock() { release(); }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    // Busy only without waiting, while another one has it; failed where the folder has none.
    Result take(const char* folder, bool wait);
    void release();

private:
    std::intptr_t handle = -1;
};

} // namespace kiv::platform
