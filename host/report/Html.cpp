#include "host/report/Html.h"

#include <charconv>

namespace kiv::host {

void appendEscaped(std::string& html, std::string_view text) {
    for (const char c : text) {
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
                html += "\xEF\xBF\xBD"; // the replacement character
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

void appendTableRow(std::string& html, std::string_view heading,
                    std::initializer_list<std::string> cells, const char* cellClass) {
    html.append("<tr><th scope=\"row\">").append(heading).append("</th>");
    for (const std::string& cell : cells)
        html.append("<td class=\"").append(cellClass).append("\">").append(cell).append("</td>");
    html += "</tr>\n";
}

} // namespace kiv::host
