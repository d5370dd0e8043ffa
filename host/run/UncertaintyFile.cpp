#include "host/run/UncertaintyFile.h"

#include <utility>

#include "host/base/Files.h"
#include "host/base/FlatJson.h"
#include "params/Quoted.h"
#include "support/Numbers.h"
#include "uncertainty/UncertaintyNames.h"

namespace kiv::host {

namespace {

class UncertaintyReader {
public:
    explicit UncertaintyReader(FlatJson& text) : json(text) {}

    bool read(int mode, Uncertainties& uncertainties) {
        if (!json.parse("names and numbers"))
            return false;
        bool good = true;
        NamedUncertainties given;
        for (std::size_t i = 0; i < json.entries().size(); ++i)
            good = take(i, mode, given) && good;
        uncertainties = given.values();
        return good;
    }

private:
    bool take(std::size_t i, int mode, NamedUncertainties& given) {
        const FlatJson::Entry& entry = json.entries()[i];
        const double number = entry.value.is_number() ? entry.value.get<double>() : -1;
        const UncertaintyFault fault = given.give(principleOf(mode), entry.name, number);
        const std::string found = kiv::quoted(entry.name);
        if (fault == UncertaintyFault::name) {
            std::string all;
            for (const UncertaintyName& each : uncertaintyNames)
                all.append(all.empty() ? "one of " : ", ").append(each.text);
            return json.report(entry.place, all, found);
        }
        if (fault == UncertaintyFault::unread)
            return json.report(entry.place, "what mount mode " + std::to_string(mode) + " reads",
                               found);
        if (json.repeats(i))
            return json.report(entry.place, "each name once", found + " again");
        if (fault == UncertaintyFault::value)
            return json.report(json.valuePlace(entry),
                               "a number from 0 to " + shown(largestUncertainty) + " for " + found,
                               shownValue(entry.value));
        if (fault == UncertaintyFault::vector)
            return json.report(entry.place, "x, y and z, or vector_along and vector_across",
                               kiv::quoted(given.firstOfVector()) + " and " + found);
        return true;
    }

    FlatJson& json;
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
    FlatJson json(input.name(), std::move(text), streams.err);
    return UncertaintyReader(json).read(mountMode, uncertainties);
}

} // namespace kiv::host
