#include "atm/cell_header.h"

#include "base/format.h"
#include "base/names.h"

namespace ifwatch {

namespace {

constexpr int PTI_OAM_END_TO_END = 5;
constexpr int FIRST_FREE_VCI = 16;
constexpr int FIRST_UNNAMED_VCI = 6;

// From PTI 4 on; below stands user data.
constexpr table_text PTI_NAMES[] = {"OAM F5 Segment", "OAM F5 End-to-End", "resource management", "reserved PTI 7"};

constexpr table_text RESERVED_VCI_NAMES[] = {
    "invalid/unassigned", "Meta", "general broadcast", "OAM F4 Segment", "OAM F4 End-to-End", "point-to-point",
};

struct cell_header {
    int pti;
    int vpi;
    int vci;
};

cell_header read_header(octets cell) {
    const std::uint32_t word = cell.le32(0);
    return {static_cast<int>(word >> 1 & 0x7), static_cast<int>(word >> 20 & 0xFF),
            static_cast<int>(word >> 4 & 0xFFFF)};
}

/// ATM Forum IMA: cells of the IMA control protocol, fillers included, carry this header and an OAM label of 1 or 3.
bool is_ima(cell_header header, octets cell) {
    return header.pti == PTI_OAM_END_TO_END && header.vpi == 0 && header.vci == 0 && (cell[4] == 1 || cell[4] == 3);
}

bool is_ima_filler(octets cell) { return (cell[5] & 0x80) == 0; }

// Each of these writes the text of its kind of cell and returns the cell's class.

int format_ima(text_sink& out, octets cell) {
    if (is_ima_filler(cell)) {
        return CELL_USER_DATA;
    }
    print_to<"IMA Control Protocol  ">(out);
    return CELL_IMA;
}

int format_management(text_sink& out, cell_header header) {
    print_to<"%s VPI=%3ld  VCI=%5ld  ">(out, name_at(PTI_NAMES, header.pti & 3), header.vpi, header.vci);
    return header.pti <= PTI_OAM_END_TO_END ? CELL_OAM : CELL_USER_DATA;
}

int format_data(text_sink& out, cell_header header) {
    if (header.vci >= FIRST_FREE_VCI) {
        print_to<"(AAL5) VPI=%3ld  VCI=%5ld  ">(out, header.vpi, header.vci);
        return CELL_USER_DATA;
    }
    if (header.vci >= FIRST_UNNAMED_VCI) {
        print_to<"VPI=%3ld  reserved VCI=%5ld  ">(out, header.vpi, header.vci);
        return CELL_USER_DATA;
    }
    print_to<"%s VPI=%3ld  ">(out, name_at(RESERVED_VCI_NAMES, header.vci), header.vpi);
    const bool oam_f4 = header.vci == 3 || header.vci == 4;
    return oam_f4 ? CELL_OAM : CELL_USER_DATA;
}

}  // namespace

int format_cell_header(text_sink& out, octets cell, int& cell_class) {
    const std::size_t before = out.used;
    const cell_header header = read_header(cell);
    if (is_ima(header, cell)) {
        cell_class = format_ima(out, cell);
    } else if (header.pti >= 4) {
        cell_class = format_management(out, header);
    } else {
        cell_class = format_data(out, header);
    }
    return static_cast<int>(out.used - before);
}

}  // namespace ifwatch
