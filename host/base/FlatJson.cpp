#include "host/base/FlatJson.h"

#include <algorithm>
#include <ostream>

#include "host/base/FileKind.h"
#include "params/Quoted.h"

namespace kiv::host {

using Json = nlohmann::ordered_json;

bool FlatJson::parse(std::string_view ofWhat) {
    if (const std::string_view other = otherKind(text); !other.empty())
        return report(0, "JSON", other);
    if (!isUtf8(text))
        return report(0, "JSON in UTF-8", "text in another encoding; save it in UTF-8");
    bool flat = true;
    std::size_t from = 0;
    const auto take = [&](int depth, Json::parse_event_t event, Json& parsed) {
        if (event == Json::parse_event_t::key && depth == 1) {
            const auto name = parsed.get<std::string>();
            const std::size_t found = text.find('"' + name + '"', from);
            from = found == text.npos ? from : found + 1;
            all.push_back({name, {}, found == text.npos ? 0 : found});
        } else if (event == Json::parse_event_t::value && depth == 1 && !all.empty()) {
            all.back().value = parsed;
            from = std::max(from, all.back().place + all.back().name.size() + 2);
        }
        return true;
    };
    try {
        flat = Json::parse(text, take).is_object();
    } catch (const Json::parse_error& e) {
        return report(e.byte > 0 ? e.byte - 1 : 0, "JSON", shortest(e.byte));
    } catch (const Json::out_of_range&) {
        return report(all.empty() ? 0 : valuePlace(all.back()),
                      "JSON with numbers within double precision", "a larger one");
    }
    return flat || report(0, std::string("a JSON object of ").append(ofWhat), "another value");
}

std::string FlatJson::shortest(std::size_t byte) const {
    return byte == 0 || byte > text.size() ? "the end" : inQuotes(text.substr(byte - 1, 1));
}

bool FlatJson::repeats(std::size_t i) const {
    const auto before = all.begin() + static_cast<std::ptrdiff_t>(i);
    return std::any_of(all.begin(), before,
                       [&](const Entry& each) { return each.name == all[i].name; });
}

std::size_t FlatJson::valuePlace(const Entry& entry) const {
    if (entry.place == 0) // the name stands there in other letters
        return 0;
    const std::size_t colon = text.find(':', entry.place + entry.name.size());
    return text.find_first_not_of(" \t\r\n", colon + 1);
}

bool FlatJson::report(std::size_t place, std::string_view expected, std::string_view found) const {
    const std::string_view before = std::string_view(text).substr(0, place);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::size_t start = before.rfind('\n');
    const std::size_t column = place - (start == before.npos ? 0 : start + 1) + 1;
    err << file << ':' << line << ':' << column << ": expected " << expected << ", found " << found
        << '\n';
    return false;
}

std::string shownValue(const Json& value) {
    return value.is_null() ? "another value" : kiv::printable(value.dump());
}

} // namespace kiv::host
