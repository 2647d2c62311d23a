#include "isdn/element_table.h"

#include "base/print.h"

namespace ifwatch {

void dump_by_table(std::span<const element_kind> types, table_text unknown, int variant, octets element) {
    const std::uint8_t identifier = element[0];
    for (const element_kind& type : types) {
        if (type.identifier != identifier) {
            continue;
        }
        print<"%s">(type.label);
        if (type.contents != nullptr) {
            type.contents(element);
        } else if (type.contents_by_variant != nullptr) {
            type.contents_by_variant(variant, element);
        }
        return;
    }
    print_named(unknown, identifier);
}

void print_value(std::span<const named_value> table, int value, table_text otherwise) {
    print_named(value_name(table, value, otherwise), static_cast<std::uint32_t>(value));
}

void print_characters(octets element, int offset) {
    for (const std::uint8_t octet : element.run(offset, element.length - offset)) {
        print<"%c">(octet);
    }
}

}  // namespace ifwatch
