#pragma once

#include <optional>

#include "support/platform/File.h"

namespace kiv::host {

// The first operation on a file that has failed while one lives, where a code alone is given.
class FirstFailure {
public:
    FirstFailure();
    ~FirstFailure() { platform::onFileFailure = nullptr; }
    FirstFailure(const FirstFailure&) = delete;
    FirstFailure& operator=(const FirstFailure&) = delete;

    static void forget();
    std::optional<platform::FileOperation> operation() const;
    int error() const; // of the system; 0 where it is not known
};

} // namespace kiv::host
