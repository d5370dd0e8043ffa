#include <algorithm>

#include "c/Handles.h"
#include "params/BlockNames.h"

using namespace kiv;
using namespace kiv::c;

namespace {

int32_t kindOf(const BlockLayout& layout) {
    switch (layout.kind) {
    case BlockKind::sensorId:
    case BlockKind::integer:
        return KIV_BLOCK_INTEGER;
    case BlockKind::word:
        return KIV_BLOCK_WORD;
    case BlockKind::encoderTable:
        return KIV_BLOCK_ENCODER_TABLE;
    case BlockKind::tiltTable:
        return KIV_BLOCK_TILT_TABLE;
    case BlockKind::numbers:
        break;
    }
    return isMatrix(layout.block) ? KIV_BLOCK_MATRIX : KIV_BLOCK_NUMBERS;
}

int refuseUnknown(const char* block) {
    return refuse(KIV_STATUS_BAD_ARGUMENT,
                  "block: expected a name that kiv_block_name gives, found \"", block, "\"");
}

// Takes the values of a block that is of one of the kinds to use(values).
template <typename Use>
int withBlock(const kiv_parameters* parameters, const char* name, Given result,
              std::initializer_list<int32_t> kinds, const char* wanted, Use use) {
    const auto taken = [&]() -> int {
        const auto block = blockOf(name);
        if (!block)
            return refuseUnknown(name);
        if (std::count(kinds.begin(), kinds.end(), kindOf(layoutOf(*block))) == 0)
            return refuse(KIV_STATUS_BAD_ARGUMENT, "block: expected one with ", wanted, ", found ",
                          name);
        if (!parameters->file)
            return refuseUnloaded();
        return use(*parameters->file->document.find(*block));
    };
    return guarded({{"parameters", parameters}, {"block", name}, result}, taken);
}

constexpr std::initializer_list<int32_t> numeric = {KIV_BLOCK_NUMBERS, KIV_BLOCK_MATRIX,
                                                    KIV_BLOCK_ENCODER_TABLE, KIV_BLOCK_TILT_TABLE};

} // namespace

const char* kiv_block_name(size_t index) {
    return index < blockTable.size() ? keyOf(blockTable[index].block) : nullptr;
}

int kiv_block_kind(const char* block, int32_t* kind) {
    return guarded({{"block", block}, {"kind", kind}}, [=]() -> int {
        const auto known = blockOf(block);
        if (!known)
            return refuseUnknown(block);
        *kind = kindOf(layoutOf(*known));
        return KIV_STATUS_OK;
    });
}

const char* kiv_block_value_name(const char* block, size_t index) {
    const auto known = block ? blockOf(block) : std::nullopt;
    if (!known)
        return nullptr;
    const auto names = valueNamesOf(*known);
    return index < names.size() ? names[index] : nullptr;
}

int kiv_parameters_integer(const kiv_parameters* parameters, const char* block, int32_t* value) {
    return withBlock(parameters, block, {"value", value}, {KIV_BLOCK_INTEGER}, "an integer",
                     [=](const BlockValues& v) {
                         *value = v.integer;
                         return KIV_STATUS_OK;
                     });
}

int kiv_parameters_word(const kiv_parameters* parameters, const char* block, const char** word) {
    return withBlock(parameters, block, {"word", word}, {KIV_BLOCK_WORD, KIV_BLOCK_TILT_TABLE},
                     "a word", [=](const BlockValues& v) {
                         *word = v.word.c_str();
                         return KIV_STATUS_OK;
                     });
}

int kiv_parameters_number_count(const kiv_parameters* parameters, const char* block,
                                size_t* count) {
    return withBlock(parameters, block, {"count", count}, numeric, "numbers",
                     [=](const BlockValues& v) {
                         *count = v.numbers.size();
                         return KIV_STATUS_OK;
                     });
}

int kiv_parameters_numbers(const kiv_parameters* parameters, const char* block, float* values,
                           size_t capacity) {
    return withBlock(parameters, block, {"values", values, capacity}, numeric, "numbers",
                     [=](const BlockValues& v) {
                         if (capacity < v.numbers.size())
                             return refuse(KIV_STATUS_BAD_ARGUMENT, "capacity: expected at least ",
                                           v.numbers.size(), ", the count of ", block, ", found ",
                                           capacity);
                         std::copy(v.numbers.begin(), v.numbers.end(), values);
                         return int{KIV_STATUS_OK};
                     });
}

int kiv_parameters_limits(const kiv_parameters* parameters, const char* block, float* limits) {
    return withBlock(parameters, block, {"limits", limits}, {KIV_BLOCK_TILT_TABLE}, "limits",
                     [=](const BlockValues& v) {
                         std::copy(v.trailing.begin(), v.trailing.end(), limits);
                         return KIV_STATUS_OK;
                     });
}
