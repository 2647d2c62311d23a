#include "lan/wlan_oid.h"

#include <gtest/gtest.h>

#include <string>

namespace ifwatch {
namespace {

TEST(wlan_oid, names_of_the_table_are_padded_to_32_characters) {
    EXPECT_EQ(std::string(wlan_oid_name(0x00000000, false)), "GEN_OID_MACADDRESS" + std::string(14, ' '));
    EXPECT_EQ(std::string(wlan_oid_name(0x81000003, false)), "LMAC_OID_NVDATA" + std::string(17, ' '));
}

TEST(wlan_oid, of_two_rows_the_first_is_found) {
    EXPECT_TRUE(std::string(wlan_oid_name(0x0000000F, false)).starts_with("GEN_OID_EFFECTIVETHROUGHPUT "));
}

TEST(wlan_oid, service_sets_are_numbered) {
    EXPECT_STREQ(wlan_oid_name(0x10000008, false), "DOT11_OID_SERVICESET000");
    EXPECT_STREQ(wlan_oid_name(0x10000010, false), "DOT11_OID_SERVICESET008");
    EXPECT_STREQ(wlan_oid_name(0x10000108, false), "DOT11_OID_SERVICESET256");
    EXPECT_STREQ(wlan_oid_name(0x10000109, false), "OID_UNKNOWN <0x10000109>");
    EXPECT_STREQ(wlan_oid_name(0x10000007, false), "OID_UNKNOWN <0x10000007>");
}

TEST(wlan_oid, hidden_names_are_shown_without_their_mark_when_asked_for) {
    EXPECT_EQ(wlan_oid_name(0x150007E3, false), nullptr);
    ASSERT_NE(wlan_oid_name(0x150007E3, true), nullptr);
    EXPECT_TRUE(std::string(wlan_oid_name(0x150007E3, true)).starts_with("DOT11_OID_STASTATS "));
}

TEST(wlan_oid, some_names_are_never_shown) {
    EXPECT_EQ(wlan_oid_name(0x1800000F, false), nullptr);
    EXPECT_EQ(wlan_oid_name(0x1800000F, true), nullptr);
}

}  // namespace
}  // namespace ifwatch
