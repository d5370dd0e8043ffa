#include "host/tables/Blocks.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <string_view>

namespace kiv::host {

namespace {

// Takes what is at hand, so many bytes at most; waits when there is none. False at the end.
bool readSome(std::istream& in, std::string& text, std::size_t most) {
    if (in.rdbuf()->in_avail() <= 0 && in.peek() == std::istream::traits_type::eof())
        return false;
    const auto count =
        std::clamp<std::streamsize>(in.rdbuf()->in_avail(), 1, static_cast<std::streamsize>(most));
    const std::size_t start = text.size();
    text.resize(start + static_cast<std::size_t>(count));
    in.read(text.data() + start, count);
    text.resize(start + static_cast<std::size_t>(in.gcount()));
    return text.size() > start;
}

} // namespace

bool BlockReader::next(Block& block) {
    std::string& text = block.text;
    text.swap(begun);
    begun.clear();
    block.name = name;
    block.firstLine = lines + 1;
    block.inputWouldWait = false;
    std::size_t end = 0; // of the last whole line
    while (end == 0 || (text.size() < size && !block.inputWouldWait)) {
        const std::size_t start = text.size();
        if (!readSome(in, text, start < size ? size - start : size))
            break;
        const std::size_t lineEnd = std::string_view(text).substr(start).rfind('\n');
        if (lineEnd != std::string_view::npos)
            end = start + lineEnd + 1;
        block.inputWouldWait = in.rdbuf()->in_avail() <= 0;
    }
    if (end == 0 && !text.empty() && !failed()) {
        ++lines;
        openColumn = text.size() + 1;
        return true;
    }
    begun.assign(text, end);
    text.resize(end);
    lines += static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    return end > 0;
}

bool BlockReader::failed() const {
    return in.bad();
}

bool BlockReader::reportEnd(std::ostream& err) const {
    if (openColumn > 0)
        err << name << ':' << lines << ':' << openColumn
            << ": expected a line end behind the last row, which may be cut, found end of file "
               "(warning)\n";
    if (failed())
        err << name << ':' << lines + 1 << ":1: expected to read on, found a read error\n";
    return !failed();
}

} // namespace kiv::host
