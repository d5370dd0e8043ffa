// Loads and rewrites a parameter file, against the C library's fscanf and fprintf, a call for each
// token. The argument is the number of tokens in the file, nearly all of them in the
// four tables. Files lie in memory where the system has such a folder; the rewrite's waits are left
// out.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>

#include "KIVInterface/CKivPrm.h"
#include "support/platform/Clock.h"
#include "tests/ParameterText.h"

namespace {

using kiv::Block;
namespace fs = std::filesystem;

// With six decimals, as a rewrite leaves them.
std::string tableRows(std::size_t rows) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> correction(-0.05, 0.05);
    std::string text = std::to_string(rows) + '\n';
    for (std::size_t i = 0; i < rows; ++i) {
        char row[80];
        const double angle = 360.0 * static_cast<double>(i) / static_cast<double>(rows);
        std::snprintf(row, sizeof row, "%f\t%f\n", angle, correction(random));
        text += row;
    }
    return text;
}

// A file of that many tokens, and the current folder, while this lasts.
class ParameterFile {
public:
    explicit ParameterFile(std::size_t tokens) {
        const std::string rows = tableRows(tokens / 8);
        const std::string closing = "-30 30 0\nend";
        std::random_device random;
        const fs::path parent = fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path();
        folder = parent / ("kivbench" + std::to_string(random()));
        fs::create_directory(folder);
        fs::current_path(folder);
        std::ofstream(path(), std::ios::binary)
            << kiv::test::parameterText({.values = {{Block::azCalibration, rows},
                                                    {Block::elCalibration, rows},
                                                    {Block::tiltXCalibration, rows + closing},
                                                    {Block::tiltYCalibration, rows + closing}}});
        kiv::platform::waitInstead = [](std::chrono::milliseconds) {};
    }
    ~ParameterFile() {
        kiv::platform::waitInstead = nullptr;
        fs::current_path(home);
        fs::remove_all(folder);
    }
    ParameterFile(const ParameterFile&) = delete;
    ParameterFile& operator=(const ParameterFile&) = delete;

    std::string directory() const { return folder.string(); }
    std::string path() const { return (folder / "Tg5.prm").string(); }

private:
    fs::path home = fs::current_path();
    fs::path folder;
};

using CFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

CFile opened(const std::string& path, const char* mode) {
    CFile file(std::fopen(path.c_str(), mode), std::fclose);
    if (!file)
        throw std::runtime_error("cannot open " + path);
    return file;
}

// Each token as a number, or else as a word, and into a copy where there is one.
void readByFscanf(std::FILE* from, std::FILE* to = nullptr) {
    for (;;) {
        float number = 0;
        char word[256] = "";
        if (std::fscanf(from, "%f", &number) == 1) {
            if (to)
                std::fprintf(to, "%f\n", number);
        } else if (std::fscanf(from, "%255s", word) == 1) {
            if (to)
                std::fprintf(to, "%s\n", word);
        } else {
            return;
        }
        benchmark::DoNotOptimize(number);
    }
}

void countTokens(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void loadLibrary(benchmark::State& state) {
    const ParameterFile file(static_cast<std::size_t>(state.range(0)));
    CKivPrm record;
    const std::string directory = file.directory();
    for (auto _ : state)
        if (record.ReadCalibrationFile(directory.c_str(), 5) != KIV_OK)
            state.SkipWithError("not loaded");
    countTokens(state);
}

void loadFscanf(benchmark::State& state) {
    const ParameterFile file(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        readByFscanf(opened(file.path(), "r").get());
    countTokens(state);
}

void rewriteLibrary(benchmark::State& state) {
    const ParameterFile file(static_cast<std::size_t>(state.range(0)));
    CKivPrm record;
    record.ReadCalibrationFile(file.directory().c_str(), 5);
    for (auto _ : state)
        if (record.PrmFileCopy() != KIV_OK)
            state.SkipWithError("not rewritten");
    countTokens(state);
}

void rewriteFprintf(benchmark::State& state) {
    const ParameterFile file(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        readByFscanf(opened(file.path(), "r").get(), opened("$tmp.prm", "w").get());
        fs::remove("copy.prm");
        fs::rename("$tmp.prm", "copy.prm");
    }
    countTokens(state);
}

void sizes(benchmark::internal::Benchmark* each) {
    each->Arg(1800)->Arg(2400000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(loadLibrary)->Name("load/library")->Apply(sizes);
BENCHMARK(loadFscanf)->Name("load/fscanf")->Apply(sizes);
BENCHMARK(rewriteLibrary)->Name("rewrite/library")->Apply(sizes);
BENCHMARK(rewriteFprintf)->Name("rewrite/fprintf")->Apply(sizes);

} // namespace
