#include "base/names.h"

namespace ifwatch {

table_text value_name(std::span<const named_value> table, int value, table_text otherwise) {
    for (const named_value& row : table) {
        if (!row.name) {
            break;
        }
        if (row.value == value) {
            return row.name;
        }
    }
    return otherwise;
}

table_text name_at(std::span<const table_text> names, int index, table_text otherwise) {
    return index >= 0 && static_cast<std::size_t>(index) < names.size() ? names[static_cast<std::size_t>(index)]
                                                                        : otherwise;
}

}  // namespace ifwatch
