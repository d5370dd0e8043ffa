#include "LoadedLibrary.h"
#include "Record.h"

#include <atomic>
#include <functional>
#include <string>
#include <thread>

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
