#include "inet/ber.h"

#include <algorithm>
#include <cstdint>

#include "base/print.h"

namespace ifwatch {

namespace {

constexpr int MAX_DEPTH = 32;  // levels opened below the outermost element
constexpr std::size_t INDENT_PER_LEVEL = 4;

constexpr int UNIVERSAL = 0;
constexpr int APPLICATION = 1;
constexpr int CONTEXT_SPECIFIC = 2;
constexpr int PRIVATE = 3;

constexpr int CONSTRUCTED = 0x20;
constexpr int TAG_SEQUENCE = CONSTRUCTED | 16;

struct ber_header {
    int tag_class = UNIVERSAL;
    int tag = 0;   // 6 bits: the constructed bit included
    int size = 2;  // octets of identifier and length
    std::uint32_t content_length = 0;

    [[nodiscard]] constexpr int number() const { return tag & ~CONSTRUCTED; }
};

struct ber_element {
    ber_header header;
    octets content;  // its length: the octets both declared and held
};

/// What stays the same for all elements of one tree.
struct ber_style {
    const char* prefix;
    std::span<const table_text> context_names;
};

ber_header read_header(octets element) {
    const int identifier = element[0];
    const int length = element[1];
    ber_header header{identifier >> 6, identifier & 0x3F, 2, static_cast<std::uint32_t>(length)};
    if (length >= 0x80) {
        const int length_octets = length & 0x7F;
        header.size += length_octets;
        header.content_length = 0;
        for (int i = 0; i < length_octets; ++i) {
            header.content_length = header.content_length << 8 | element[2 + i];
        }
    }
    return header;
}

std::uint32_t unsigned_value(octets content) {
    std::uint32_t value = 0;
    for (const std::uint8_t octet : content.run(0, content.length)) {
        value = value << 8 | octet;
    }
    return value;
}

void print_boolean(octets content) { print<"%u">(content[0] != 0 ? 1 : 0); }

void print_unsigned(octets content) { print<"%u">(unsigned_value(content)); }

void print_octets(octets content) {
    for (const std::uint8_t octet : content.run(0, content.length)) {
        print<"0x%x ">(octet);
    }
}

void print_string(octets content) {
    print_octets(content);
    print<" (">();
    for (const std::uint8_t octet : content.run(0, content.length)) {
        print<"%c">(is_printable(octet) ? octet : '.');
    }
    print<")">();
}

void print_object_identifier(octets content) {
    print_octets(content);
    print<" (%u.%u">(content[0] / 40, content[0] % 40);
    std::uint32_t sub_identifier = 0;
    for (const std::uint8_t octet : content.run(1, content.length - 1)) {
        sub_identifier = sub_identifier << 7 | (octet & 0x7FU);
        if ((octet & 0x80) == 0) {
            print<".%u">(sub_identifier);
            sub_identifier = 0;
        }
    }
    print<")">();
}

void print_address(octets content) { print<"%u.%u.%u.%u">(content[0], content[1], content[2], content[3]); }

void print_time_ticks(octets content) {
    const std::uint32_t ticks = unsigned_value(content);
    // The last field is the hundredths within the minute, not the seconds.
    print<"%u (%u:%u:%u)">(ticks, ticks / 360000, ticks % 360000 / 6000, ticks % 6000);
}

void print_opaque(octets /*content*/) { print<"Opaque">(); }

struct ber_type {
    table_text name;
    void (*print_value)(octets content) = nullptr;
};

constexpr ber_type UNIVERSAL_TYPES[] = {
    {"v0"},
    {"boolean", print_boolean},
    {"integer", print_unsigned},
    {"bit_string", print_octets},
    {"octet_string", print_string},
    {"null", print_octets},
    {"object_identifier", print_object_identifier},
    {"object_descriptor", print_octets},
    {"external", print_octets},
    {"real", print_octets},
    {"enumerated", print_unsigned},
    {"v11"},
    {"v12"},
    {"v13"},
    {"v14"},
    {"v15"},
    {"sequence"},
    {"set", print_octets},
    {"numeric_string", print_octets},
    {"printable_string", print_string},
    {"teletex_string", print_string},
    {"videoatex_string", print_octets},
    {"ia5string", print_string},
    {"utctime", print_unsigned},
    {"general_type", print_octets},
    {"graphic_string", print_octets},
    {"visible_string", print_string},
    {"general_string", print_octets},
    {"character_string", print_string},
    {"v29"},
    {"v30"},
    {"v31"},
};

// RFC 1155.
constexpr ber_type APPLICATION_TYPES[] = {
    {"ipaddres", print_address},     {"counter", print_unsigned}, {"gauge", print_unsigned},
    {"timeticks", print_time_ticks}, {"opaque", print_opaque},
};

ber_type type_at(std::span<const ber_type> types, int tag, table_text otherwise) {
    const auto index = static_cast<std::size_t>(tag);
    return index < types.size() ? types[index] : ber_type{otherwise};
}

void print_indent(int depth) { put_run(standard_output, ' ', static_cast<std::size_t>(depth) * INDENT_PER_LEVEL); }

void print_context_name(const ber_style& style, const ber_header& header, bool opened) {
    if (!style.context_names.empty()) {
        print<"%s">(name_at(style.context_names, header.number(), "unknown contextname"));
    } else {
        print<"%s [%d]">(opened ? "sequence" : "primitive", header.number());
    }
}

void print_name(int depth, const ber_style& style, const ber_header& header, bool opened) {
    if (header.tag_class == PRIVATE) {
        return;
    }
    print_indent(depth);
    if (header.tag_class == UNIVERSAL) {
        print<"%s">(type_at(UNIVERSAL_TYPES, header.number(), "unknown tag").name);
    } else if (header.tag_class == APPLICATION) {
        print<"%s">(type_at(APPLICATION_TYPES, header.number(), "unknown appltag").name);
    } else {
        print_context_name(style, header, opened);
    }
    print<" (0x%lx)">(header.content_length);
}

/// A constructed tag, and one too high for the table, has no value to print.
void print_value(const ber_header& header, octets content) {
    ber_type type;
    if (header.tag_class == UNIVERSAL) {
        type = type_at(UNIVERSAL_TYPES, header.tag, nullptr);
    } else if (header.tag_class == APPLICATION) {
        type = type_at(APPLICATION_TYPES, header.tag, nullptr);
    } else if (header.tag_class == CONTEXT_SPECIFIC) {
        type.print_value = print_string;
    }
    if (type.print_value != nullptr) {
        type.print_value(content);
    }
}

/// A SET is not opened, nor is anything of the application class.
bool is_opened(int depth, const ber_header& header) {
    if (depth > MAX_DEPTH) {
        return false;
    }
    if (header.tag_class == UNIVERSAL) {
        return header.tag == TAG_SEQUENCE;
    }
    return header.tag_class != APPLICATION && (header.tag & CONSTRUCTED) != 0;
}

void print_opening_brace(int depth, const ber_style& style) {
    print<"\n%s">(style.prefix);
    print_indent(depth);
    print<"{\n%s">(style.prefix);
}

void print_closing_brace(int depth, const ber_style& style) {
    print_indent(depth);
    print<"}\n%s">(style.prefix);
    if (depth == 0) {
        print<"\n%s">(style.prefix);
    }
}

void print_primitive(int depth, const ber_style& style, const ber_element& element) {
    print<"\n%s">(style.prefix);
    print_indent(depth);
    print_value(element.header, element.content);
    print<"\n%s">(style.prefix);
}

/// The elements of one level that are still to be printed.
struct ber_level {
    octets contents;
    std::uint64_t left = 0;  // octets, as declared
};

ber_element take_element(ber_level& level) {
    const ber_header header = read_header(level.contents);
    const octets behind = level.contents.skip(header.size);
    const auto held = static_cast<std::uint32_t>(behind.held());
    const auto count = static_cast<int>(std::min(header.content_length, held));
    const std::uint64_t size = static_cast<std::uint64_t>(header.size) + header.content_length;
    if (size < level.left) {
        level.contents = behind.skip(count);
        level.left -= size;
    } else {
        level.contents = {};
    }
    return {header, behind.at(0, count)};
}

}  // namespace

void dump_ber(const char* prefix, octets data, std::span<const table_text> context_names) {
    const ber_style style{prefix, context_names};
    ber_level levels[MAX_DEPTH + 2] = {{data, static_cast<std::uint64_t>(std::max(data.length, 0))}};
    for (int depth = 0; depth >= 0;) {
        if (levels[depth].contents.held() == 0) {
            if (--depth >= 0) {
                print_closing_brace(depth, style);
            }
            continue;
        }
        const ber_element element = take_element(levels[depth]);
        const bool opened = is_opened(depth, element.header);
        print_name(depth, style, element.header, opened);
        if (opened) {
            print_opening_brace(depth, style);
            levels[++depth] = {element.content.cut(element.content.length), element.header.content_length};
        } else {
            print_primitive(depth, style, element);
        }
    }
}

}  // namespace ifwatch
