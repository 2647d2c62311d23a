#include "eft/eft_capabilities.h"

#include "base/names.h"
#include "base/print.h"
#include "eft/eft_field.h"

namespace ifwatch {

namespace {

constexpr int NAVIGATION_NOT_SUPPORTED = 0x00;
constexpr int NAVIGATION_SUPPORTED = 0x4F;
constexpr int COMPRESSION = 0x5F;
constexpr int COMPRESSION_MODES = 0x60;
constexpr int COMPRESSION_PARAMETERS = 0x61;

constexpr int HEADER = 2;  // identifier and length of a sub-field

constexpr table_text FIRST_OCTET[] = {
    "\n\t\t\tT-LOAD      Group A",      "\n\t\t\tT-LOAD      Group B", "\n\t\t\tT-LOAD      Group C",
    "\n\t\t\tT-DIRECTORY Group A name", "\n\t\t\tT-DIRECTORY Group A", "\n\t\t\tT-DIRECTORY Group B",
    "\n\t\t\tT-DIRECTORY Group C",      "\n\t\t\tT-SAVE      Group A",
};

constexpr table_text SECOND_OCTET[] = {
    "\n\t\t\tT-SAVE      Group B", "\n\t\t\tT-SAVE      Group C", "\n\t\t\tT-RENAME    Group A",
    "\n\t\t\tT-RENAME    Group B", "\n\t\t\tT-RENAME    Group C", "\n\t\t\tT-DELETE    Group A",
    "\n\t\t\tT-DELETE    Group B", "\n\t\t\tT-DELETE    Group C",
};

constexpr named_value MODE_NAMES[] = {
    {0x40, "\n\t\t\tbasic compression"},
    {0x41, "\n\t\t\thigh compression"},
    {0x4F, "\n\t\t\tapplication defined compression"},
};

void print_navigation(int navigation) {
    if (navigation == NAVIGATION_NOT_SUPPORTED) {
        print<"\n\t\t\tNavigation not supported">();
    } else if (navigation == NAVIGATION_SUPPORTED) {
        print<"\n\t\t\tNavigation supported">();
    } else {
        print<"\n\t\t\tNavigation value = 0x%x">(navigation);
    }
}

/// Takes the first sub-field (identifier, length, value) off `fields`. False at the end, and when the sub-field
/// passes it.
bool take_subfield(octets& fields, int& identifier, octets& value) {
    if (fields.within() == 0 || HEADER + fields[1] > fields.length) {
        return false;
    }
    identifier = fields[0];
    value = fields.at(HEADER, fields[1]);
    fields = fields.skip(HEADER + fields[1]);
    return true;
}

void print_compression_modes(octets modes) {
    for (const std::uint8_t mode : modes.run(0, modes.length)) {
        print_named(value_name(MODE_NAMES, mode, "\n\t\t\tunknown compression mode 0x%x"), mode);
    }
}

/// False when a sub-field passes the end: what follows the whole field is then not decoded either.
bool print_compression(octets fields) {
    int identifier = 0;
    octets value;
    while (take_subfield(fields, identifier, value)) {
        if (identifier == COMPRESSION_MODES) {
            print_compression_modes(value);
        } else if (identifier == COMPRESSION_PARAMETERS) {
            print<"\n\t\t\tN1 = %d">(value[0]);
            if (value.length > 1) {
                print<"\n\t\t\tN7 = %d">(value[1]);
            }
        } else {
            print<"\n\t\t\tunknown compress capability 0x%x\n">(identifier);
        }
    }
    return fields.within() == 0;
}

}  // namespace

void print_eft_capabilities(octets value) {
    print_eft_flags(FIRST_OCTET, value[0]);
    print_eft_flags(SECOND_OCTET, value[1]);
    print_navigation(value[2]);
    octets fields = value.skip(3);
    int identifier = 0;
    octets field;
    bool whole = true;
    while (whole && take_subfield(fields, identifier, field)) {
        if (identifier == COMPRESSION) {
            whole = print_compression(field);
        } else {
            print<"\n\t\t\tunknown capability 0x%x\n">(identifier);
        }
    }
}

}  // namespace ifwatch
