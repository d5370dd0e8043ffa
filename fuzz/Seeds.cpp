// fuzz_seeds FOLDER DICTIONARY: writes what the fuzzers start from, texts into FOLDER/text and
// readings into FOLDER/models, and a dictionary of what means something in a parameter file. Texts
// and dictionary come from the block table.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "fuzz/ModelInput.h"
#include "tests/ParameterText.h"
#include "tests/PreparedSensor.h"

namespace {

using namespace kiv;
using kiv::test::parameterText;
using kiv::test::parameterValues;

constexpr const char* numbers[] = {"0",    "-0",    "+7",    ".5",   "-5.",        "1.5E-3",
                                   "1e39", "1e-46", "1e400", "1e+",  "2147483647", "2147483648",
                                   "-1",   "--1",   "0x10",  "-inf", "nan",        "0.0000005"};

class Folder {
public:
    explicit Folder(std::filesystem::path path) : folder(std::move(path)) {
        std::filesystem::create_directories(folder);
    }

    void add(const std::string& text) {
        std::ofstream file(folder / std::to_string(count++), std::ios::binary);
        file << text;
    }

private:
    std::filesystem::path folder;
    int count = 0;
};

void addTexts(Folder folder) {
    folder.add(parameterText());
    for (const BlockLayout& layout : blockTable) {
        const auto block = static_cast<std::size_t>(layout.block);
        const std::string usual = parameterValues(layout, 0);
        folder.add(parameterText({.blocks = block}));
        folder.add(parameterText({.titles = {{layout.block, "x" + std::string(layout.title)}}}));
        folder.add(parameterText({.titles = {{layout.block, "no title"}}}));
        folder.add(parameterText({.values = {{layout.block, std::string(300, '7')}}}));
        folder.add(parameterText({.values = {{layout.block, "x " + usual}}}));
        folder.add(parameterText({.values = {{layout.block, usual.substr(0, usual.size() / 2)}}}));
    }
    for (const char* number : numbers) {
        const std::string n = std::string(number) + ' ';
        folder.add(parameterText({.values = {{Block::azPositionGain, n + n + n + n + n + n},
                                             {Block::elCalibration, "2 " + n + n + "1 2"}}}));
        folder.add(parameterText(
            {.values = {{Block::tiltXCalibration, n + "1 2 3 w"}, {Block::mountingMode, n}}}));
    }
}

// One for each mount mode.
void addReadings(Folder folder) {
    for (int mode = 1; mode <= 10; ++mode) {
        fuzz::ModelInput input{.M = {3000, 1000, 500, 1.5, -0.75, 10, -12, 0, 0},
                               .encoderOffset = {0.01, 0.02},
                               .scaleFactors = {0, 0, 0, 0, 1, 1, 1, 0},
                               .qvcParameters = {10, 20, 30, 0, 0, 0},
                               .level1Parameters = {0, 0, 0, -30, 0, 0, 1},
                               .level2Parameters = {0, 0, 0, -65, 0, 0, 1},
                               .mode = mode,
                               .raw = test::goodReading()};
        folder.add({reinterpret_cast<const char*>(&input), fuzz::modelInputSize});
    }
}

void writeDictionary(const std::string& path) {
    std::ofstream file(path);
    for (const BlockLayout& layout : blockTable)
        file << '"' << layout.title << "\\x0A\"\n";
    for (const char* number : numbers)
        file << '"' << number << "\\x09\"\n";
    file << "\"\\x0D\\x0A\"\n\"\\x00\"\n\"e-\"\n";
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: fuzz_seeds FOLDER DICTIONARY\n";
        return 2;
    }
    const std::filesystem::path folder(argv[1]);
    addTexts(Folder(folder / "text"));
    addReadings(Folder(folder / "models"));
    writeDictionary(argv[2]);
    return 0;
}
