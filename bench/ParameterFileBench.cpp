// Loads and rewrites a parameter file, and does the same with the C library's fscanf and fprintf, a
// call for each line. The argument is the number of tokens in the file, nearly all of them in the
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
#include "support/ZelUtil.h"
#include "support/platform/Clock.h"
#include "tests/ParameterText.h"

namespace {

using kiv::Block;
using kiv::BlockKind;
using kiv::BlockLayout;
namespace fs = std::filesystem;

constexpr const char* lineFormats[] = {
    "", "%f\n", "%f\t%f\n", "%f\t%f\t%f\n", "%f\t%f\t%f\t%f\n", "", "%f\t%f\t%f\t%f\t%f\t%f\n"};

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

struct CFile {
    CFile(const std::string& path, const char* mode) : file(std::fopen(path.c_str(), mode)) {
        if (!file)
            throw std::runtime_error("cannot open " + path);
    }
    ~CFile() { std::fclose(file); }
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    std::FILE* file;
};

// The blocks of a file by fscanf, and of a copy by fprintf when there is one.
class StdioFile {
public:
    StdioFile(std::FILE* source, std::FILE* target) : from(source), to(target) {}

    void readBlock(const BlockLayout& layout);

    // Of the last block.
    int count = 0;
    std::unique_ptr<float[]> numbers;
    float trailing[3] = {};

private:
    void check(bool done) const {
        if (!done)
            throw std::runtime_error("not the file that was written");
    }
    void readTitle(const BlockLayout& layout);
    void readInteger();
    void readWord();
    void readLine(float* values, int size);
    void readLines(float* values, int size, const BlockLayout& layout);

    std::FILE* from;
    std::FILE* to;
};

void StdioFile::readBlock(const BlockLayout& layout) {
    readTitle(layout);
    switch (layout.kind) {
    case BlockKind::sensorId:
    case BlockKind::integer:
        readInteger();
        break;
    case BlockKind::word:
        readWord();
        break;
    case BlockKind::numbers:
        numbers = std::make_unique<float[]>(static_cast<std::size_t>(layout.count));
        readLines(numbers.get(), layout.count, layout);
        break;
    case BlockKind::encoderTable:
    case BlockKind::tiltTable:
        readInteger();
        numbers = std::make_unique<float[]>(2 * static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            readLine(&numbers[2 * static_cast<std::size_t>(i)], 2);
        if (layout.kind == BlockKind::tiltTable) {
            readLine(trailing, 3);
            readWord();
        }
        break;
    }
}

void StdioFile::readTitle(const BlockLayout& layout) {
    std::string title;
    for (int i = 0; i < layout.titleWords; ++i) {
        char word[256];
        check(std::fscanf(from, "%255s", word) == 1);
        title.append(i > 0 ? " " : "").append(word);
    }
    check(title.find(layout.title) != title.npos);
    if (to)
        std::fprintf(to, "%-s\n", title.c_str());
}

void StdioFile::readInteger() {
    check(std::fscanf(from, "%d\n", &count) == 1);
    if (to)
        std::fprintf(to, "%d\n", count);
}

void StdioFile::readWord() {
    char word[256];
    check(std::fscanf(from, "%255s\n", word) == 1);
    if (to)
        std::fprintf(to, "%s\n", word);
}

void StdioFile::readLine(float* v, int size) {
    float spare[6] = {};
    const auto at = [&](int i) { return i < size ? v + i : spare + i; };
    const char* format = lineFormats[size];
    check(std::fscanf(from, format, at(0), at(1), at(2), at(3), at(4), at(5)) == size);
    if (to)
        std::fprintf(to, format, *at(0), *at(1), *at(2), *at(3), *at(4), *at(5));
}

void StdioFile::readLines(float* values, int size, const BlockLayout& layout) {
    const int perLine = static_cast<int>(layout.groups.size);
    for (int i = 0; i < size; i += perLine)
        readLine(values + i, perLine);
}

// What a load leaves of a file: the tables, with their splines.
void loadByFscanf(const std::string& path) {
    const CFile file(path, "r");
    StdioFile reader(file.file, nullptr);
    for (const BlockLayout& layout : kiv::blockTable) {
        reader.readBlock(layout);
        benchmark::DoNotOptimize(reader.numbers.get());
        if (layout.kind != BlockKind::tiltTable)
            continue;
        const auto n = static_cast<std::size_t>(reader.count);
        const auto knots = std::make_unique<float[]>(n + 3);
        const auto ordinates = std::make_unique<float[]>(n);
        const auto spline = std::make_unique<double[]>(4 * n);
        for (std::size_t i = 0; i < n; ++i) {
            knots[i] = reader.numbers[2 * i];
            ordinates[i] = reader.numbers[2 * i + 1];
        }
        CubicSplines(knots.get(), ordinates.get(), reader.count - 1, spline.get());
        benchmark::DoNotOptimize(spline.get());
    }
}

void copyByFprintf(const std::string& path) {
    {
        const CFile file(path, "r"), copy("$tmp.prm", "w");
        StdioFile copier(file.file, copy.file);
        for (const BlockLayout& layout : kiv::blockTable)
            copier.readBlock(layout);
    }
    fs::remove(path);
    fs::rename("$tmp.prm", path);
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
        loadByFscanf(file.path());
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
    for (auto _ : state)
        copyByFprintf(file.path());
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
