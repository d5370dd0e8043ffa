#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace kiv {

class ByteSource;

// Counted from 1, the column in bytes.
struct TextPlace {
    std::size_t line = 1;
    std::size_t column = 1;
};

enum class NumberResult { read, absent, outOfRange, tooLong };

// The words and numbers of a text. Reading a word or number first takes the whitespace before it,
// as the C locale has it.
class Scanner {
public:
    static constexpr std::size_t maxLength = 255; // of a word and of a number

    explicit Scanner(ByteSource& source);

    // Nothing but whitespace is left.
    bool atEnd();

    // The next word, which is not taken: empty at the end, one longer than maxLength cut behind the
    // character that is too many. Valid until the next call.
    std::string_view peekWord();

    // Takes what peekWord has shown.
    void skip(std::size_t length) { next += length; }

    // The longest prefix of the text that is a decimal number, in any locale: an optional sign,
    // digits, for a float with an optional point and exponent; whatever follows stays. A float too
    // small for single precision becomes 0 or the nearest subnormal. When there is no number, or it
    // is out of range or longer than maxLength, nothing is taken and value stays; trying again then
    // fails again.
    NumberResult read(float& value);
    NumberResult read(std::int32_t& value);

    // The place of the next byte.
    TextPlace place() const;

private:
    void fill();
    void skipSpace();
    void seek();
    template <typename Number>
    NumberResult readNumber(Number& value);

    ByteSource& source;
    bool exhausted = false;
    std::unique_ptr<char[]> buffer;
    const char* next; // [next, end) is read from the source and not yet taken
    const char* end;
    std::size_t bufferOffset = 0; // of the buffer's first byte in the text
    std::size_t lineOffset = 0;   // of the line's first byte
    std::size_t line = 1;
};

} // namespace kiv
