#pragma once

#include <string>
#include <string_view>

namespace kiv {

// Takes text from front to back; a line ends with \n whatever the platform makes of it.
class ByteSink {
public:
    virtual ~ByteSink() = default;

    // A failure shows later, where the sink is told to finish.
    virtual void write(std::string_view text) = 0;
};

class TextSink final : public ByteSink {
public:
    void write(std::string_view more) override { text += more; }

    std::string text;
};

} // namespace kiv
