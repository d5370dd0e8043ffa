#include "LoadedLibrary.h"
#include "Record.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <string>
#include <thread>

#ifndef _WIN32
#include <malloc.h>
#endif

#include <gtest/gtest.h>

using kiv::test::LoadedLibrary;

namespace {

#ifdef _WIN32
constexpr bool loaderCanBeRefused = true;
#else
constexpr bool loaderCanBeRefused = false;
#endif

const std::string wholeLife = "constructed\nInitInstance\nExitInstance\ndestroyed\n";
const std::string refusedLife = "constructed\nInitInstance\ndestroyed\n";

bool isRegistered(const LoadedLibrary& module) {
    const auto query = module.symbol<bool()>("isModuleRegistered");
    return query && query();
}

// Runs use so many times, half of them on a second thread. The number of runs that failed.
int failuresOnTwoThreads(int times, const std::function<bool()>& use) {
    std::atomic<int> failures{0};
    const auto half = [&] {
        for (int i = 0; i < times / 2; ++i)
            failures += !use();
    };
    std::thread other(half);
    half();
    other.join();
    return failures;
}

// How many lives the record holds one after the other; -1 when it holds anything else.
int wholeLives(std::string record, const std::string& life) {
    int lives = 0;
    for (; record.compare(0, life.size(), life) == 0 && !record.empty(); ++lives)
        record.erase(0, life.size());
    return record.empty() ? lives : -1;
}

} // namespace

TEST(Module, IsRegisteredWhileLoadedAndGoneAfterwards) {
    takeRecord();
    for (int i = 0; i < 5; ++i) {
        {
            const LoadedLibrary module(KIV_TEST_MODULE);
            ASSERT_TRUE(module) << "load " << i;
            EXPECT_TRUE(isRegistered(module)) << "load " << i;
            EXPECT_EQ(takeRecord(), std::string("constructed\nInitInstance\n")) << "load " << i;
        }
        EXPECT_FALSE(LoadedLibrary::isLoaded(KIV_TEST_MODULE)) << "load " << i;
        EXPECT_EQ(takeRecord(), std::string("ExitInstance\ndestroyed\n")) << "load " << i;
    }
}

TEST(Module, WhoseInitInstanceFailsIsUnwoundAndNotRegistered) {
    takeRecord();
    for (int i = 0; i < 3; ++i) {
        {
            const LoadedLibrary module(KIV_FAILING_MODULE);
            EXPECT_EQ(static_cast<bool>(module), !loaderCanBeRefused) << "load " << i;
            EXPECT_FALSE(module && isRegistered(module)) << "load " << i;
        }
        EXPECT_FALSE(LoadedLibrary::isLoaded(KIV_FAILING_MODULE)) << "load " << i;
        EXPECT_EQ(takeRecord(), refusedLife) << "load " << i;
    }
}

TEST(Module, LoadsAndUnloadsOnTwoThreads) {
    takeRecord();
    const auto use = [] {
        const LoadedLibrary module(KIV_TEST_MODULE);
        return module && isRegistered(module);
    };
    EXPECT_EQ(failuresOnTwoThreads(400, use), 0);
    EXPECT_FALSE(LoadedLibrary::isLoaded(KIV_TEST_MODULE));
    const std::string record = takeRecord();
    EXPECT_GT(wholeLives(record, wholeLife), 0) << record;
}

// Bytes that the process has taken and not given back.
std::size_t memoryInUse() {
#ifdef _WIN32
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    std::size_t bytes = 0;
    for (DWORD i = 0; i < count; ++i)
        for (PROCESS_HEAP_ENTRY entry{}; HeapWalk(heaps[i], &entry);)
            bytes += entry.wFlags & PROCESS_HEAP_ENTRY_BUSY ? entry.cbData : 0;
    return bytes;
#else
    return mallinfo2().uordblks;
#endif
}

constexpr std::size_t loads = 200;

// What that many loads take and do not give back, in bytes.
std::size_t leftBehind(const char* path) {
    std::size_t before = 0;
    for (std::size_t i = 0; i <= loads; ++i) {
        EXPECT_TRUE(LoadedLibrary(path)) << path;
        before = i == 0 ? memoryInUse() : before;
    }
    return std::max(memoryInUse(), before) - before;
}

TEST(Library, LeavesNoMemoryBehind) {
    std::size_t most = 1024 * loads;
#ifdef _WIN32
    most += leftBehind("version.dll"); // by the loader itself: 2.5 kB each time under Wine 10
#endif
    for (const char* path : {KIV_LIBRARY, KIV_C_LIBRARY})
        EXPECT_LT(leftBehind(path), most) << path;
}

TEST(Library, LoadsAndUnloads) {
    // A member that reads one int, by the name that the compiler gives it.
    struct ADMModule {
        int thermalStatus;
    };
    const ADMModule module{7};
    const auto use = [&] {
        const LoadedLibrary library(KIV_LIBRARY);
        const auto thermalStatus =
            library.symbol<int(const ADMModule*)>("_ZNK10CADMModule16getThermalStatusEv");
        return thermalStatus && thermalStatus(&module) == module.thermalStatus;
    };
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(use()) << "load " << i;
        EXPECT_FALSE(LoadedLibrary::isLoaded(KIV_LIBRARY)) << "load " << i;
    }
    EXPECT_EQ(failuresOnTwoThreads(100, use), 0);
    EXPECT_FALSE(LoadedLibrary::isLoaded(KIV_LIBRARY));
}
