#include "atm/cell_header.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/text_sink.h"

namespace ifwatch {
namespace {

struct formatted_cell {
    std::string text;
    int returned;
    int cell_class;
};

formatted_cell format(std::uint32_t header_word, std::uint8_t first = 0, std::uint8_t second = 0) {
    std::vector<std::uint8_t> cell;
    for (int shift = 0; shift < 32; shift += 8) {
        cell.push_back(static_cast<std::uint8_t>(header_word >> shift));
    }
    cell.push_back(first);
    cell.push_back(second);
    text_buffer<128> text;
    put(text, "R ");
    int cell_class = -1;
    const int returned = format_cell_header(text, octets_of(cell), cell_class);
    return {std::string(text.text()), returned, cell_class};
}

constexpr std::uint32_t header_word(unsigned vpi, unsigned vci, unsigned pti) {
    return vpi << 20 | vci << 4 | pti << 1;
}

TEST(cell_header, appends_and_returns_what_it_appended) {
    const formatted_cell cell = format(header_word(1, 32, 0));
    EXPECT_EQ(cell.text, "R (AAL5) VPI=  1  VCI=   32  ");
    EXPECT_EQ(cell.returned, static_cast<int>(cell.text.size()) - 2);
    EXPECT_EQ(cell.cell_class, CELL_USER_DATA);
}

TEST(cell_header, gfc_and_clp_are_not_shown) {
    EXPECT_EQ(format(0xF0000001U | header_word(255, 65535, 3)).text, "R (AAL5) VPI=255  VCI=65535  ");
}

TEST(cell_header, a_filler_cell_writes_nothing_and_is_user_data) {
    for (const std::uint8_t label : {std::uint8_t{1}, std::uint8_t{3}}) {
        const formatted_cell filler = format(header_word(0, 0, 5), label, 0x7F);
        EXPECT_EQ(filler.text, "R ");
        EXPECT_EQ(filler.returned, 0);
        EXPECT_EQ(filler.cell_class, CELL_USER_DATA);
        EXPECT_EQ(format(header_word(0, 0, 5), label, 0x80).cell_class, CELL_IMA);
    }
}

TEST(cell_header, classes_of_every_payload_type) {
    constexpr int expected[] = {CELL_USER_DATA, CELL_USER_DATA, CELL_USER_DATA, CELL_USER_DATA,
                                CELL_OAM,       CELL_OAM,       CELL_USER_DATA, CELL_USER_DATA};
    for (unsigned pti = 0; pti < 8; ++pti) {
        EXPECT_EQ(format(header_word(1, 100, pti)).cell_class, expected[pti]) << "PTI " << pti;
    }
}

TEST(cell_header, only_vci_3_and_4_of_the_reserved_ones_are_oam) {
    for (unsigned vci = 0; vci < 17; ++vci) {
        EXPECT_EQ(format(header_word(1, vci, 0)).cell_class, vci == 3 || vci == 4 ? CELL_OAM : CELL_USER_DATA)
            << "VCI " << vci;
    }
}

}  // namespace
}  // namespace ifwatch
