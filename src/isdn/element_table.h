#pragma once

#include <span>

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

/// One kind of information element: what its line begins with and who prints its contents, if anybody does.
struct element_kind {
    int identifier = 0;
    table_text label;
    void (*contents)(octets element) = nullptr;
    void (*contents_by_variant)(int variant, octets element) = nullptr;
};

/// Prints the label and the contents of `element` by its row of `types`, or `unknown`, which takes the identifier.
void dump_by_table(std::span<const element_kind> types, table_text unknown, int variant, octets element);

/// Prints the text that a value has in `table`, or `otherwise`; either may show the value.
void print_value(std::span<const named_value> table, int value, table_text otherwise);

/// Prints the octets of an element from `offset` to its end as characters, unchecked.
void print_characters(octets element, int offset);

/// print_characters as the printer of a row.
template <int Offset>
void characters_from(octets element) {
    print_characters(element, Offset);
}

/// The word that turns a statement with a blank behind it round when it does not hold.
[[nodiscard]] constexpr const char* not_unless(bool holds) { return holds ? "" : "not "; }

}  // namespace ifwatch
