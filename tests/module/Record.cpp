#include "Record.h"

#include <mutex>
#include <string>

namespace {

std::mutex lock;
std::string steps;
std::string taken;

} // namespace

void recordStep(const char* step) {
    const std::lock_guard<std::mutex> guard(lock);
    steps += step;
    steps += '\n';
}

const char* takeRecord() {
    const std::lock_guard<std::mutex> guard(lock);
    taken = steps;
    steps.clear();
    return taken.c_str();
}
