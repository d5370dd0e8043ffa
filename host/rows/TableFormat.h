#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kiv::host {

// How a table differs from the ordinary one, and what is shown of it.
struct TableFormat {
    struct Name {
        std::string ours;
        std::string theirs;
    };

    bool decimalComma = false;             // in the cells that are read, and in the results
    std::vector<Name> otherNames;          // of columns
    std::string columnsFile;               // with more of them, where there is one
    std::vector<std::string_view> columns; // that can have another name
    bool keepAll = false;                  // the columns that are read are carried, too
    bool keepNone = false;                 // no column is
    bool hasOptions = false;               // --decimal-comma and --column, which messages name
    std::size_t mostMessages = 20;         // about rows
    std::size_t blockBytes = 1 << 14;      // read at once; not for users

    std::string_view nameOf(std::string_view column) const {
        for (const Name& name : otherNames)
            if (name.ours == column)
                return name.theirs;
        return column;
    }
};

} // namespace kiv::host
