#include "eft/eft_attributes.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>

#include "base/names.h"
#include "base/print.h"
#include "eft/eft_field.h"

namespace ifwatch {

namespace {

constexpr int BLOCK_IDENTIFIER = 0x30;
constexpr int ATTRIBUTE_HEADER = 2;
constexpr int FIRST_ATTRIBUTE = 0x20;
constexpr int LAST_ATTRIBUTE = 0x3A;
constexpr int CHECKSUM = 0x30;
constexpr int CHECKSUM_LENGTH = 4;

constexpr named_value FILE_TYPES[] = {
    {0x40, "description file"}, {0x41, "software file"}, {0x42, "data file"},
    {0x43, "command file"},     {0x44, "text file"},
};

constexpr named_value EXECUTION_ORDERS[] = {
    {0x20, "don't care"},
    {0x21, "highest execution order"},
    {0x7F, "immediate processing"},
};

constexpr named_value DESTINATION_CODES[] = {
    {0x40, "don't care"},
    {0x41, "foreground memory"},
    {0x42, "background memory"},
    {0x43, "cassette tape"},
};

constexpr named_value FILE_CODINGS[] = {
    {0x20, "text source"},
    {0x21, "source in tokenised form"},
    {0x22, "intermediate code"},
    {0x23, "object code"},
    {0x24, "execution code"},
    {0x30, "binary code"},
    {0x31, "videotex primary graphic set"},
    {0x40, "machine dependant"},
    {0x41, "standard code"},
    {0x50, "other code"},
    {0x51, "videotex primary graphic set"},
    {0x52, "videotex code profile 1"},
    {0x53, "videotex code profile 2"},
    {0x54, "videotex code profile 3"},
    {0x55, "geometric"},
    {0x56, "photographic"},
    {0x57, "sound"},
};

constexpr named_value COMPRESSION_MODES[] = {
    {0x00, "no compression"},
    {0x40, "basic compression mode"},
    {0x41, "high efficiency compression mode"},
    {0x4F, "application defined compression mode"},
};

constexpr int ACTIONS_CODED = 0x40;
constexpr int ACTIONS_IN_WORDS = 0x47;
constexpr table_text PERMITTED_ACTIONS[] = {
    "read,", "insert,", "replace,", "extend,", "erase,", "hide,", "reserved,", "not used,",
};

using value_names = std::span<const named_value>;

void show_characters(octets value, value_names /*names*/) { print_eft_characters(value); }

void show_code(octets value, value_names names) {
    if (const table_text name = value_name(names, value[0])) {
        print<"%s">(name);
    } else {
        print<"unknown value: 0x%02lx">(value[0]);
    }
}

void show_size(octets value, value_names /*names*/) { print<"%ld bytes">(eft_number(value)); }

void show_address(octets value, value_names /*names*/) { print<"0x%lx">(eft_number(value)); }

/// The first octet drops out: each octet is shifted against what the octets before it made, not behind it.
void show_checksum(octets value, value_names /*names*/) {
    std::uint32_t checksum = value[0];
    checksum = value[1] | checksum << 24;
    checksum = value[2] | checksum << 16;
    checksum = value[3] | checksum << 8;
    print<"0x%08lx">(checksum);
}

void show_permitted_actions(octets value, value_names /*names*/) {
    if (value[0] == ACTIONS_CODED) {
        print_eft_flags(PERMITTED_ACTIONS, value[1]);
    } else if (value[0] == ACTIONS_IN_WORDS) {
        print_eft_characters(value.skip(1));
    }
}

struct attribute_printer {
    int identifier = 0;
    table_text label;
    void (*show)(octets value, value_names names) = nullptr;
    value_names names;
};

constexpr attribute_printer ATTRIBUTES[] = {
    {FIRST_ATTRIBUTE, "File type:", show_code, FILE_TYPES},
    {0x21, "Execution order:", show_code, EXECUTION_ORDERS},
    {0x22, "Transfer name:", show_characters, {}},
    {0x23, "File name:", show_characters, {}},
    {0x24, "Date:", show_characters, {}},
    {0x25, "File length:", show_size, {}},
    {0x26, "Destination code:", show_code, DESTINATION_CODES},
    {0x27, "File coding:", show_code, FILE_CODINGS},
    {0x28, "Destination name:", show_characters, {}},
    {0x29, "Cost:", show_characters, {}},
    {0x2A, "User field/Application reference:", show_characters, {}},
    {0x2B, "Load address:", show_address, {}},
    {0x2C, "Execute address (absolute):", show_address, {}},
    {0x2D, "Execute address (relative):", show_address, {}},
    {0x2E, "Compression mode:", show_code, COMPRESSION_MODES},
    {0x2F, "Device:", show_characters, {}},
    {CHECKSUM, "File checksum:", show_checksum, {}},
    {0x31, "Author name:", show_characters, {}},
    {0x32, "Future file length:", show_size, {}},
    {0x33, "Permitted actions:", show_permitted_actions, {}},
    {0x34, "Legal qualification:", show_characters, {}},
    {0x35, "Creation:", show_characters, {}},
    {0x36, "Last read access:", show_characters, {}},
    {0x37, "Identity of the last modifier:", show_characters, {}},
    {0x38, "Identity of the last reader:", show_characters, {}},
    {0x39, "Recipient:", show_characters, {}},
    {LAST_ATTRIBUTE, "Telematic file transfer version:", show_characters, {}},
};

void print_attribute(int identifier, octets value) {
    const attribute_printer* const found = std::ranges::find(ATTRIBUTES, identifier, &attribute_printer::identifier);
    if (found == std::end(ATTRIBUTES)) {
        print<"\n\t\tUnknown file attribute 0x%02x">(identifier);
        return;
    }
    print_eft_label(found->label);
    found->show(value, found->names);
}

/// A checksum begins like a block of four octets. No attribute begins with the octet that follows then.
bool is_checksum(octets attribute) {
    return attribute[0] == CHECKSUM && attribute[1] == CHECKSUM_LENGTH && attribute.within() > ATTRIBUTE_HEADER &&
           (attribute[ATTRIBUTE_HEADER] < FIRST_ATTRIBUTE || attribute[ATTRIBUTE_HEADER] > LAST_ATTRIBUTE);
}

}  // namespace

void dump_eft_attribute_list(octets attributes, int count) {
    int left = std::min(count, attributes.length);
    while (left > 0 && attributes.held() > 0) {
        const int value_length = std::min<int>(attributes[1], attributes.length - ATTRIBUTE_HEADER);
        print_attribute(attributes[0], attributes.at(ATTRIBUTE_HEADER, value_length));
        attributes = attributes.skip(ATTRIBUTE_HEADER + value_length);
        left -= ATTRIBUTE_HEADER + value_length;
    }
    print<"\n">();
}

int dump_eft_attributes(octets block) {
    if (block[0] != BLOCK_IDENTIFIER || is_checksum(block)) {
        return -1;
    }
    const int block_length = block[1];
    dump_eft_attribute_list(block.skip(EFT_BLOCK_HEADER), block_length);
    return block_length;
}

}  // namespace ifwatch
