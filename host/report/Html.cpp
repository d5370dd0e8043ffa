#include "host/report/Html.h"

#include <charconv>

#include "params/Quoted.h"

namespace kiv::host {

namespace {

constexpr const char* replacement = "\xEF\xBF\xBD"; // U+FFFD

// Bytes of the UTF-8 character beyond ASCII that a text begins with; 0: of none.
std::size_t characterSize(std::string_view text) {
    for (const std::size_t size : {2U, 3U, 4U})
        if (size <= text.size() && isUtf8(text.substr(0, size)))
            return size;
    return 0;
}

} // namespace

void appendEscaped(std::string& html, std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (static_cast<unsigned char>(c) >= 0x80) {
            const std::size_t size = characterSize(text.substr(i));
            html.append(size > 0 ? text.substr(i, size) : replacement);
            i += size > 0 ? size - 1 : 0;
            continue;
        }
        switch (c) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            if ((static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') || c == 0x7F)
                html += replacement;
            else
                html.push_back(c);
        }
    }
}

std::string escaped(std::string_view text) {
    std::string html;
    appendEscaped(html, text);
    return html;
}

std::string code(std::string_view text) {
    return "<code>" + escaped(text) + "</code>";
}

std::string countText(std::size_t count) {
    std::string digits = std::to_string(count);
    if (digits.size() > 4)
        for (std::size_t place = digits.size(); place > 3;)
            digits.insert(place -= 3, "\xE2\x80\xAF"); // a narrow space that does not break
    return digits;
}

std::string rowsText(std::size_t count) {
    return countText(count) + (count == 1 ? " row" : " rows");
}

std::string percentText(double share) {
    char digits[32];
    const auto [end, error] =
        std::to_chars(digits, digits + sizeof digits, 100 * share, std::chars_format::fixed, 1);
    return std::string(digits, end) + " %";
}

void appendTableHead(std::string& html, std::string_view first,
                     std::initializer_list<std::string_view> headings) {
    html.append("<table>\n<thead><tr><th>").append(first).append("</th>");
    for (const std::string_view heading : headings)
        html.append("<th class=\"number\">").append(heading).append("</th>");
    html += "</tr></thead>\n<tbody>\n";
}

void appendTableRow(std::string& html, std::string_view heading,
                    std::initializer_list<std::string> cells, const char* cellClass) {
    html.append("<tr><th scope=\"row\">").append(heading).append("</th>");
    for (const std::string& cell : cells)
        html.append("<td class=\"").append(cellClass).append("\">").append(cell).append("</td>");
    html += "</tr>\n";
}

} // namespace kiv::host
