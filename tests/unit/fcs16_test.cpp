#include "display/fcs16.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace ifwatch {
namespace {

/// The polynomial bit by bit, without a table.
std::uint16_t divided(std::uint16_t fcs, std::span<const std::uint8_t> run) {
    for (const std::uint8_t octet : run) {
        fcs ^= octet;
        for (int bit = 0; bit < 8; ++bit) {
            fcs = static_cast<std::uint16_t>((fcs & 1) != 0 ? fcs >> 1 ^ 0x8408 : fcs >> 1);
        }
    }
    return fcs;
}

std::vector<std::uint8_t> octets_from(std::string_view text) { return {text.begin(), text.end()}; }

std::vector<std::uint8_t> mixed_octets(std::size_t length) {
    std::vector<std::uint8_t> run(length);
    unsigned value = 1;
    for (std::uint8_t& octet : run) {
        value = value * 75 % 65537;
        octet = static_cast<std::uint8_t>(value);
    }
    return run;
}

// The check value that catalogues give for this check sequence over "123456789", before it is complemented.
TEST(fcs16, the_well_known_check_value) {
    const auto digits = octets_from("123456789");
    EXPECT_EQ(static_cast<std::uint16_t>(~fcs16(FCS16_START, digits)), 0x906E);
}

// RFC 1662 appendix C.2 prints its table; these are entries of it.
TEST(fcs16, the_table_is_that_of_the_standard) {
    EXPECT_EQ(fcs16(0, std::uint8_t{0x00}), 0x0000);
    EXPECT_EQ(fcs16(0, std::uint8_t{0x01}), 0x1189);
    EXPECT_EQ(fcs16(0, std::uint8_t{0x02}), 0x2312);
    EXPECT_EQ(fcs16(0, std::uint8_t{0x80}), 0x8408);
    EXPECT_EQ(fcs16(0, std::uint8_t{0xFF}), 0x0F78);
}

TEST(fcs16, a_run_of_any_length_is_divided_by_the_polynomial) {
    const auto run = mixed_octets(40);
    for (std::size_t length = 0; length <= run.size(); ++length) {
        const std::span part(run.data(), length);
        EXPECT_EQ(fcs16(FCS16_START, part), divided(FCS16_START, part)) << length;
    }
}

TEST(fcs16, runs_may_be_cut_anywhere) {
    const auto run = mixed_octets(33);
    const std::span whole(run);
    for (std::size_t cut = 0; cut <= run.size(); ++cut) {
        EXPECT_EQ(fcs16(fcs16(FCS16_START, whole.first(cut)), whole.subspan(cut)), divided(FCS16_START, run)) << cut;
    }
}

TEST(fcs16, a_frame_and_its_check_sequence_give_the_good_value) {
    for (std::size_t length = 0; length < 20; ++length) {
        auto frame = mixed_octets(length);
        const auto fcs = static_cast<std::uint16_t>(~fcs16(FCS16_START, frame));
        frame.push_back(static_cast<std::uint8_t>(fcs & 0xFF));
        frame.push_back(static_cast<std::uint8_t>(fcs >> 8));
        EXPECT_EQ(fcs16(FCS16_START, frame), FCS16_GOOD) << length;
    }
}

}  // namespace
}  // namespace ifwatch
