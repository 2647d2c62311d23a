#include "trace/addinfo.h"

#include <string_view>

#include "trace/element.h"

namespace ifwatch {

namespace {

/// Appends to the buffer as far as there is room and counts everything.
struct element_writer {
    std::span<std::uint8_t> buffer;
    int used;

    void octet(std::uint32_t value) {
        if (static_cast<std::size_t>(used) < buffer.size()) {
            buffer[static_cast<std::size_t>(used)] = static_cast<std::uint8_t>(value);
        }
        ++used;
    }

    void header(std::uint8_t type, std::uint32_t length) {
        const std::uint32_t word = element_header(type, length);
        for (const int shift : {24, 16, 8, 0}) {
            octet(word >> shift);
        }
    }
};

void put_line_elements(element_writer& writer, const atm_parameters& atm) {
    if (atm.vci >= 0) {
        writer.header(ELEMENT_VCI, 2);
        writer.octet(static_cast<std::uint32_t>(atm.vci) >> 8);
        writer.octet(static_cast<std::uint32_t>(atm.vci));
    }
    if (atm.vpi >= 0) {
        writer.header(ELEMENT_VPI, 1);
        writer.octet(static_cast<std::uint32_t>(atm.vpi));
    }
    if ((atm.flags & 1) != 0) {
        writer.header(ELEMENT_LINE_FLAG, 0);
    }
}

}  // namespace

int add_filter(std::span<std::uint8_t> buffer, const char* text, char kind_letter, int used_length) {
    const std::string_view octets = text != nullptr ? text : "";
    element_writer writer{buffer, used_length};
    if (used_length == 0) {
        writer.header(ELEMENT_FILTER, ELEMENT_OPEN_LENGTH);
    }
    writer.header(static_cast<std::uint8_t>(kind_letter), static_cast<std::uint32_t>(octets.size()));
    for (const char character : octets) {
        writer.octet(static_cast<std::uint8_t>(character));
    }
    return writer.used;
}

int build_addinfo(int version, std::span<std::uint8_t> buffer, const atm_parameters& atm, bool list_mode,
                  int used_length) {
    element_writer writer{buffer, used_length};
    if (used_length != 0) {
        writer.header(ELEMENT_END, 0);
    }
    if (list_mode) {
        writer.header(ELEMENT_INFO, 0);
    } else {
        put_line_elements(writer, atm);
        if (version < 2 && writer.used == 0) {
            return 0;
        }
        writer.header(ELEMENT_START, 0);
    }
    writer.header(ELEMENT_END, 0);
    return writer.used;
}

}  // namespace ifwatch
