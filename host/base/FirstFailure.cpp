#include "host/base/FirstFailure.h"

namespace kiv::host {

namespace {

std::optional<platform::FileOperation> failed;
int reason = 0;

} // namespace

void FirstFailure::forget() {
    failed.reset();
    reason = 0;
}

FirstFailure::FirstFailure() {
    forget();
    platform::onFileFailure = [](platform::FileOperation operation, int error) {
        if (!failed)
            reason = error;
        failed = failed.value_or(operation);
    };
}

std::optional<platform::FileOperation> FirstFailure::operation() const {
    return failed;
}

int FirstFailure::error() const {
    return reason;
}

} // namespace kiv::host
