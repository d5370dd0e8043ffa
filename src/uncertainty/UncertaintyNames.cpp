#include "uncertainty/UncertaintyNames.h"

#include <algorithm>

namespace kiv {

UncertaintyFault NamedUncertainties::give(Principle principle, std::string_view name,
                                          double value) {
    const auto known = std::find_if(uncertaintyNames.begin(), uncertaintyNames.end(),
                                    [&](const UncertaintyName& each) { return each.text == name; });
    if (known == uncertaintyNames.end())
        return UncertaintyFault::name;
    const Source first = *known->sources[0];
    if (!reads(principle, first))
        return UncertaintyFault::unread;
    if (!(value >= 0 && value <= largestUncertainty))
        return UncertaintyFault::value;
    if (ofVector(first)) {
        if (vectorName && known->bySight != given.bySight)
            return UncertaintyFault::vector;
        if (!vectorName)
            vectorName = known->text;
        given.bySight = known->bySight;
    }
    for (const std::optional<Source>& source : known->sources)
        if (source)
            given[*source] = value;
    return UncertaintyFault::none;
}

} // namespace kiv
