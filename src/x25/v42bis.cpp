#include "x25/v42bis.h"

#include <cstdint>
#include <iterator>

#include "base/names.h"
#include "base/print.h"

namespace ifwatch {

namespace {

constexpr int PARAMETER_HEADER = 2;  // PI and PL

constexpr table_text DIRECTIONS[] = {
    "Neither direction",
    "Initiator-responder direction only",
    "Responder-initiator direction only",
    "Both directions",
};

/// Whether the walk goes on behind a parameter, and if not, the error that ended it, when there is one.
struct verdict {
    bool ended = false;
    table_text error;
    std::uint32_t value = 0;  // that the error names
};

constexpr verdict GO_ON{};
constexpr verdict STOP{.ended = true, .error = nullptr};

constexpr verdict illegal(table_text error, std::uint32_t value = 0) {
    return {.ended = true, .error = error, .value = value};
}

verdict dump_identifier(octets value) {
    if (value.length == 3 && value.text(0, 3) == "V42") {
        print<"V.42bis private parameter negotiation (ITU)\n">();
        return GO_ON;
    }
    if (value.length == 3 && value.text(0, 3) == "X75") {
        print<"V.42bis private parameter negotiation (ISO)\n">();
        return GO_ON;
    }
    return STOP;
}

verdict dump_direction(octets value) {
    print<"\t\tCompression request (P0):   ">();
    if (value.length == 0) {
        print<"Default (neither direction)\n">();
        return GO_ON;
    }
    if (value.length != 1) {
        return STOP;
    }
    const table_text name = name_at(DIRECTIONS, value[0]);
    if (!name) {
        return illegal("Unknown direction %X\n", value[0]);
    }
    print<"%s\n">(name);
    return GO_ON;
}

verdict dump_codewords(octets value) {
    print<"\t\tNumber of codewords (P1):   ">();
    if (value.length == 0) {
        print<"default\n">();
        return GO_ON;
    }
    std::uint32_t codewords = 0;
    for (const std::uint8_t octet : value.run(0, value.length)) {
        codewords = codewords << 8 | octet;
    }
    print<"%5ld = 0x%lX\n">(codewords, codewords);
    return GO_ON;
}

verdict dump_string_length(octets value) {
    if (value.length > 1) {
        return STOP;
    }
    print<"\t\tMaximum string length (P2): ">();
    if (value.length == 0) {
        print<"default\n">();
    } else {
        print<"%5d = 0x%X\n">(value[0], value[0]);
    }
    return GO_ON;
}

// By parameter identifier.
constexpr verdict (*PARAMETERS[])(octets value) = {
    dump_identifier,
    dump_direction,
    dump_codewords,
    dump_string_length,
};

/// Prints the parameter at the beginning of `rest`.
verdict dump_parameter(octets rest) {
    const std::size_t identifier = rest[0];
    const octets value = rest.at(PARAMETER_HEADER, rest[1]);
    if (PARAMETER_HEADER + value.length > rest.length) {
        return illegal("Parameter subfield too long");
    }
    if (identifier >= std::size(PARAMETERS)) {
        return illegal("unknown parameter identification");
    }
    return PARAMETERS[identifier](value);
}

}  // namespace

int dump_v42bis_parameters(octets group) {
    octets rest = group;
    verdict last;
    while (!last.ended && rest.length >= PARAMETER_HEADER && rest.held() > 0) {
        last = dump_parameter(rest);
        rest = rest.skip(PARAMETER_HEADER + rest[1]);
    }
    if (last.error) {
        print<"\nIllegal V.42bis XID: ">();
        print_named(last.error, last.value);
        print<"\n">();
    }
    return group.length;
}

}  // namespace ifwatch
