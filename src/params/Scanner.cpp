#include "params/Scanner.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <system_error>

#include "support/platform/ByteSource.h"

namespace kiv {

namespace {

constexpr std::size_t bufferSize = 64 * 1024;

// Bytes that stand behind the next one, unless the text ends: enough to see that a word or number
// is too long, with the three bytes by which an exponent shows itself.
constexpr std::size_t lookAheadSize = 512;
static_assert(lookAheadSize > Scanner::maxLength + 3);

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

struct Conversion {
    NumberResult result = NumberResult::absent;
    const char* end = nullptr;
};

NumberResult resultOf(const char* first, const std::from_chars_result& converted) {
    if (static_cast<std::size_t>(converted.ptr - first) > Scanner::maxLength)
        return NumberResult::tooLong;
    return converted.ec == std::errc{} ? NumberResult::read : NumberResult::outOfRange;
}

Conversion convert(const char* first, const char* last, std::int32_t& value) {
    const char* number = first + (first != last && *first == '+');
    const char* digits = number + (number == first && first != last && *first == '-');
    if (digits == last || !isDigit(*digits))
        return {};
    std::int32_t whole = 0;
    const auto converted = std::from_chars(number, last, whole);
    const NumberResult result = resultOf(first, converted);
    if (result == NumberResult::read)
        value = whole;
    return {result, converted.ptr};
}

// std::from_chars reports a value too small and one too large alike. [first, last) is a number
// without sign of at most maxLength characters.
NumberResult convertTooSmall(const char* first, const char* last, float& value) {
    double wide = 0;
    const auto converted = std::from_chars(first, last, wide);
    const std::string_view text(first, static_cast<std::size_t>(last - first));
    // Beyond double too: so few digits cannot do that against their exponent.
    const bool tooSmall = converted.ec == std::errc{}
                              ? wide < 1
                              : text.find("e-") != text.npos || text.find("E-") != text.npos;
    if (!tooSmall)
        return NumberResult::outOfRange;
    value = static_cast<float>(wide);
    return NumberResult::read;
}

Conversion convert(const char* first, const char* last, float& value) {
    const bool negative = first != last && *first == '-';
    const char* digits = first + (negative || (first != last && *first == '+'));
    // std::from_chars would take a second sign, inf and nan.
    const char* digit = digits + (digits != last && *digits == '.');
    if (digit == last || !isDigit(*digit))
        return {};
    float magnitude = 0;
    const auto converted = std::from_chars(digits, last, magnitude);
    NumberResult result = resultOf(first, converted);
    if (result == NumberResult::outOfRange)
        result = convertTooSmall(digits, converted.ptr, magnitude);
    if (result == NumberResult::read)
        value = negative ? -magnitude : magnitude;
    return {result, converted.ptr};
}

} // namespace

Scanner::Scanner(ByteSource& bytes)
    : source(bytes), buffer(std::make_unique_for_overwrite<char[]>(bufferSize)), next(buffer.get()),
      end(buffer.get()) {}

bool Scanner::atEnd() {
    skipSpace();
    return next == end;
}

std::string_view Scanner::peekWord() {
    seek();
    const char* last = next + std::min<std::ptrdiff_t>(maxLength + 1, end - next);
    return {next, std::find_if(next, last, isSpace)};
}

NumberResult Scanner::read(float& value) {
    return readNumber(value);
}

NumberResult Scanner::read(std::int32_t& value) {
    return readNumber(value);
}

TextPlace Scanner::place() const {
    const auto offset = bufferOffset + static_cast<std::size_t>(next - buffer.get());
    return {line, offset - lineOffset + 1};
}

void Scanner::fill() {
    auto size = static_cast<std::size_t>(end - next);
    bufferOffset += static_cast<std::size_t>(next - buffer.get());
    std::memmove(buffer.get(), next, size);
    while (size < lookAheadSize && !exhausted) {
        const std::size_t n = source.read(buffer.get() + size, bufferSize - size);
        exhausted = n == 0;
        size += n;
    }
    next = buffer.get();
    end = next + size;
}

void Scanner::skipSpace() {
    do {
        const char* c = next;
        for (; c != end && isSpace(*c); ++c)
            if (*c == '\n') {
                ++line;
                lineOffset = bufferOffset + static_cast<std::size_t>(c - buffer.get()) + 1;
            }
        next = c;
        if (next != end)
            return;
        fill();
    } while (next != end);
}

// Goes to the next word or number, with lookAheadSize bytes of it in the buffer where there are as
// many.
void Scanner::seek() {
    skipSpace();
    if (static_cast<std::size_t>(end - next) < lookAheadSize && !exhausted)
        fill();
}

template <typename Number>
NumberResult Scanner::readNumber(Number& value) {
    seek();
    const Conversion converted = convert(next, end, value);
    if (converted.result == NumberResult::read)
        next = converted.end;
    return converted.result;
}

} // namespace kiv
