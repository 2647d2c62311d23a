#include "trace/ifc_types.h"

#include <gtest/gtest.h>

namespace ifwatch {
namespace {

struct wanted_type {
    int code;
    const char* name;
    int link_type;
};

void PrintTo(const wanted_type& row, std::ostream* out) { *out << row.code; }

class ifc_types : public testing::TestWithParam<wanted_type> {};

TEST_P(ifc_types, has_its_name_and_link_type) {
    const ifc_type& found = ifc_type_entry(GetParam().code);
    EXPECT_STREQ(found.name, GetParam().name);
    EXPECT_EQ(found.link_type, GetParam().link_type);
}

INSTANTIATE_TEST_SUITE_P(
    rows, ifc_types,
    testing::Values(wanted_type{-2, "PABX", 0}, wanted_type{0, "ISDN D-channel", 0},
                    wanted_type{1, "ISDN B-channel", 9}, wanted_type{2, "ATM (old)", 11}, wanted_type{3, "ATM", 11},
                    wanted_type{4, "WLAN", 1}, wanted_type{5, "IPoX.25", 12}, wanted_type{6, "LAN", 1},
                    wanted_type{7, "LAN 802.3", 1}, wanted_type{8, "TokenBus", 6}, wanted_type{9, "TokenRing", 6},
                    wanted_type{32, "FrameRelay", 107}, wanted_type{23, "PPP", 9}, wanted_type{16, "LAPB", 50},
                    wanted_type{118, "HDLC", 104}, wanted_type{169, "SHDSL", 0}, wanted_type{94, "ADSL", 0},
                    wanted_type{131, "Tunnel", 12}, wanted_type{-1, "not-found", 0}, wanted_type{200, "unknown", 1},
                    wanted_type{10, "unknown", 1}, wanted_type{-3, "unknown", 1}));

}  // namespace
}  // namespace ifwatch
