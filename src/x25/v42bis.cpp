#include "x25/v42bis.h"

#include <cstdint>
#include <iterator>

#include "base/names.h"
#include "base/print.h"

namespace ifwatch {

namespace {

using error_text = text_buffer<64>;

constexpr table_text DIRECTIONS[] = {
    "Neither direction",
    "Initiator-responder direction only",
    "Responder-initiator direction only",
    "Both directions",
};

// Each parameter printer returns whether the walk goes on.

bool dump_identifier(octets value, error_text& /*error*/) {
    if (value.length != 3) {
        return false;
    }
    if (value.text(0, 3) == "V42") {
        print<"V.42bis private parameter negotiation (ITU)\n">();
        return true;
    }
    if (value.text(0, 3) == "X75") {
        print<"V.42bis private parameter negotiation (ISO)\n">();
        return true;
    }
    return false;
}

bool dump_direction(octets value, error_text& error) {
    print<"\t\tCompression request (P0):   ">();
    if (value.length == 0) {
        print<"Default (neither direction)\n">();
        return true;
    }
    if (value.length != 1) {
        return false;
    }
    const table_text name = name_at(DIRECTIONS, value[0]);
    if (!name) {
        print_to<"Unknown direction %X\n">(error, value[0]);
        return false;
    }
    print<"%s\n">(name);
    return true;
}

bool dump_codewords(octets value, error_text& /*error*/) {
    print<"\t\tNumber of codewords (P1):   ">();
    if (value.length == 0) {
        print<"default\n">();
        return true;
    }
    std::uint32_t codewords = 0;
    for (const std::uint8_t octet : value.run(0, value.length)) {
        codewords = codewords << 8 | octet;
    }
    print<"%5ld = 0x%lX\n">(codewords, codewords);
    return true;
}

bool dump_string_length(octets value, error_text& /*error*/) {
    if (value.length > 1) {
        return false;
    }
    print<"\t\tMaximum string length (P2): ">();
    if (value.length == 0) {
        print<"default\n">();
    } else {
        print<"%5d = 0x%X\n">(value[0], value[0]);
    }
    return true;
}

// By parameter identifier.
constexpr bool (*PARAMETERS[])(octets value, error_text& error) = {
    dump_identifier,
    dump_direction,
    dump_codewords,
    dump_string_length,
};

bool dump_parameter(int identifier, octets value, error_text& error) {
    if (identifier >= static_cast<int>(std::size(PARAMETERS))) {
        put(error, "unknown parameter identification");
        return false;
    }
    return PARAMETERS[identifier](value, error);
}

}  // namespace

int dump_v42bis_parameters(octets group) {
    constexpr int PARAMETER_HEADER = 2;
    error_text error;
    octets rest = group;
    bool more = true;
    while (more && rest.length >= PARAMETER_HEADER && rest.held() > 0) {
        const octets value = rest.at(PARAMETER_HEADER, rest[1]);
        if (PARAMETER_HEADER + value.length > rest.length) {
            put(error, "Parameter subfield too long");
            break;
        }
        more = dump_parameter(rest[0], value, error);
        rest = rest.skip(PARAMETER_HEADER + value.length);
    }
    if (error.used != 0) {
        print<"\nIllegal V.42bis XID: %s\n">(error.text());
    }
    return group.length;
}

}  // namespace ifwatch
