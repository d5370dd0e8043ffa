// Loads and rewrites a parameter file, against the C library's fscanf and fprintf, a call for each
// token, nearly all of them in the four tables. Files lie in memory where the system has such a
// folder; the rewrite's waits are left out.

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>

#include "KIVInterface/CKivPrm.h"
#include "bench/Cases.h"
#include "support/platform/Clock.h"
#include "tests/ParameterText.h"

namespace kiv::bench {

namespace {

namespace fs = std::filesystem;
using benchmark::State;

// With six decimals, as a rewrite leaves them.
std::string tableRows(std::size_t rows) {
    std::string text = std::to_string(rows) + '\n';
    for (std::size_t i = 0; i < rows; ++i) {
        char row[80];
        const double angle = 360.0 * static_cast<double>(i) / static_cast<double>(rows);
        std::snprintf(row, sizeof row, "%f\t%f\n", angle, 0.05 * std::sin(1000 * angle));
        text += row;
    }
    return text;
}

// A file Tg5.prm of that many tokens in the current folder while this lasts.
class ParameterFile {
public:
    explicit ParameterFile(std::size_t tokens) {
        fs::create_directory(folder);
        fs::current_path(folder);
        const std::string rows = tableRows(tokens / 8), closing = "-30 30 0\nend";
        std::ofstream("Tg5.prm", std::ios::binary)
            << test::parameterText({.values = {{Block::azCalibration, rows},
                                               {Block::elCalibration, rows},
                                               {Block::tiltXCalibration, rows + closing},
                                               {Block::tiltYCalibration, rows + closing}}});
        platform::waitInstead = [](std::chrono::milliseconds) {};
    }
    ~ParameterFile() {
        platform::waitInstead = nullptr;
        fs::current_path(home);
        fs::remove_all(folder);
    }
    ParameterFile(const ParameterFile&) = delete;
    ParameterFile& operator=(const ParameterFile&) = delete;

private:
    const fs::path home = fs::current_path();
    const fs::path folder = (fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path())
                            / ("kivbench" + std::to_string(std::random_device()()));
};

// Each token as a number, or else as a word, and into a copy where there is one.
void readByFscanf(const char* copy) {
    using CFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
    const CFile from(std::fopen("Tg5.prm", "r"), std::fclose);
    const CFile to(std::fopen(copy ? copy : "/dev/null", "w"), std::fclose);
    for (;;) {
        float number = 0;
        char word[256] = "";
        if (std::fscanf(from.get(), "%f", &number) == 1) {
            if (copy)
                std::fprintf(to.get(), "%f\n", number);
        } else if (std::fscanf(from.get(), "%255s", word) == 1) {
            if (copy)
                std::fprintf(to.get(), "%s\n", word);
        } else {
            return;
        }
        benchmark::DoNotOptimize(number);
    }
}

template <typename Function>
void eachToken(State& state, std::size_t tokens, Function f) {
    const ParameterFile file(tokens);
    CKivPrm record;
    record.ReadCalibrationFile("", 5);
    for (auto _ : state)
        if (f(record) != KIV_OK)
            state.SkipWithError("no use of the file");
    countItems(state, tokens);
}

[[maybe_unused]] const bool registered = [] {
    for (const std::size_t tokens : {1'800U, 2'400'000U}) {
        const std::string each = " of " + std::to_string(tokens) + " tokens, each";
        const auto of = [tokens](auto f) {
            return [=](State& state) { eachToken(state, tokens, f); };
        };
        const auto byFscanf = [](const char* copy) {
            return [copy](CKivPrm&) { return readByFscanf(copy), KIV_OK; };
        };
        add("load" + each + "|library",
            of([](CKivPrm& r) { return r.ReadCalibrationFile("", 5); }));
        add("load" + each + "|fscanf", of(byFscanf(nullptr)));
        add("rewrite" + each + "|library", of([](CKivPrm& r) { return r.PrmFileCopy(); }));
        add("rewrite" + each + "|fscanf and fprintf", of(byFscanf("copy.prm")));
    }
    return true;
}();

} // namespace

} // namespace kiv::bench
