#include "host/run/UncertaintyFile.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/base/Files.h"
#include "params/Quoted.h"
#include "support/Numbers.h"
#include "uncertainty/UncertaintyNames.h"

namespace kiv::host {

namespace {

using Json = nlohmann::ordered_json;

struct Entry {
    std::string name;
    Json value;
    std::size_t place; // of the name in the text
};

class UncertaintyReader {
public:
    UncertaintyReader(const std::string& fileName, std::string content, std::ostream& messages)
        : file(fileName), text(std::move(content)), err(messages) {}

    bool read(int mode, Uncertainties& uncertainties) {
        if (!parse())
            return false;
        bool good = true;
        NamedUncertainties given;
        for (std::size_t i = 0; i < entries.size(); ++i)
            good = take(i, mode, given) && good;
        uncertainties = given.values();
        return good;
    }

private:
    bool parse() {
        bool flat = true;
        std::size_t from = 0;
        const auto take = [&](int depth, Json::parse_event_t event, Json& parsed) {
            if (event == Json::parse_event_t::key && depth == 1) {
                const auto name = parsed.get<std::string>();
                const std::size_t found = text.find('"' + name + '"', from);
                from = found == text.npos ? from : found + 1;
                entries.push_back({name, {}, found == text.npos ? 0 : found});
            } else if (event == Json::parse_event_t::value && depth == 1 && !entries.empty()) {
                entries.back().value = parsed;
                from = std::max(from, entries.back().place + entries.back().name.size() + 2);
            }
            return true;
        };
        try {
            flat = Json::parse(text, take).is_object();
        } catch (const Json::parse_error& e) {
            return report(e.byte > 0 ? e.byte - 1 : 0, "JSON", shortest(e.byte));
        } catch (const Json::out_of_range&) {
            return report(entries.empty() ? 0 : valuePlace(entries.back()),
                          "JSON with numbers within double precision", "a larger one");
        }
        return flat || report(0, "a JSON object of names and numbers", "another value");
    }

    std::string shortest(std::size_t byte) const {
        return byte == 0 || byte > text.size() ? "the end" : kiv::quoted(text.substr(byte - 1, 1));
    }

    std::size_t valuePlace(const Entry& entry) const {
        if (entry.place == 0) // the name stands there in other letters
            return 0;
        const std::size_t colon = text.find(':', entry.place + entry.name.size());
        return text.find_first_not_of(" \t\r\n", colon + 1);
    }

    bool take(std::size_t i, int mode, NamedUncertainties& given) {
        const Entry& entry = entries[i];
        const double number = entry.value.is_number() ? entry.value.get<double>() : -1;
        const UncertaintyFault fault = given.give(principleOf(mode), entry.name, number);
        const std::string found = kiv::quoted(entry.name);
        if (fault == UncertaintyFault::name) {
            std::string all;
            for (const UncertaintyName& each : uncertaintyNames)
                all.append(all.empty() ? "one of " : ", ").append(each.text);
            return report(entry.place, all, found);
        }
        if (fault == UncertaintyFault::unread)
            return report(entry.place, "what mount mode " + std::to_string(mode) + " reads", found);
        const auto before = entries.begin() + static_cast<std::ptrdiff_t>(i);
        const auto same = [&](const Entry& each) { return each.name == entry.name; };
        if (std::any_of(entries.begin(), before, same))
            return report(entry.place, "each name once", found + " again");
        if (fault == UncertaintyFault::value)
            return report(valuePlace(entry),
                          "a number from 0 to " + shown(largestUncertainty) + " for " + found,
                          entry.value.is_null() ? "another value"
                                                : kiv::printable(entry.value.dump()));
        if (fault == UncertaintyFault::vector)
            return report(entry.place, "x, y and z, or vector_along and vector_across",
                          kiv::quoted(given.firstOfVector()) + " and " + found);
        return true;
    }

    // At a byte of the text; always false.
    bool report(std::size_t place, std::string_view expected, std::string_view found) const {
        const std::string_view before = std::string_view(text).substr(0, place);
        const auto line = 1 + std::count(before.begin(), before.end(), '\n');
        const std::size_t start = before.rfind('\n');
        const std::size_t column = place - (start == before.npos ? 0 : start + 1) + 1;
        err << file << ':' << line << ':' << column << ": expected " << expected << ", found "
            << found << '\n';
        return false;
    }

    const std::string& file;
    std::string text;
    std::ostream& err;
    std::vector<Entry> entries;
};

} // namespace

bool readUncertainties(const std::string& file, int mountMode, Uncertainties& uncertainties,
                       const Streams& streams) {
    Input input;
    if (!input.open(file, streams))
        return false;
    std::string text;
    if (!input.readAll(text, streams.err))
        return false;
    return UncertaintyReader(input.name(), std::move(text), streams.err)
        .read(mountMode, uncertainties);
}

} // namespace kiv::host
