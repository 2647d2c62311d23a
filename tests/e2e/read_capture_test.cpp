// What ifwatch-read makes of what a capture tells beside the frames: times of two kinds, sections, losses, directions.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/pcap_octets.h"
#include "support/pcapng_octets.h"
#include "support/shown_capture.h"

namespace ifwatch::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

using octet_list = std::vector<std::uint8_t>;

constexpr std::uint16_t ETHERNET = 1;
constexpr std::uint16_t PPP = 9;
constexpr std::uint16_t LAPD_WITH_DIRECTION = 177;

const octet_list LCP = {0xC0, 0x21, 1, 1, 0, 4};

constexpr std::uint64_t SECOND = 1'000'000;  // in what interfaces of pcapng count unless they tell
constexpr std::uint64_t DATE = 1'600'000'000 * SECOND;
constexpr const char* DATE_LINE = "ifwatch-read: standard input: 000000.000 is 2020-09-13 12:26:40.000000 UTC\n";

// --- Times

TEST(read_times, stay_or_count_packet_by_packet) {
    pcapng_octets file;
    file.section().interface(ETHERNET).packet(0, 5 * SECOND, ethernet_frame()).packet(0, DATE, ethernet_frame());
    file.packet(0, DATE + SECOND, ethernet_frame()).packet(0, 6 * SECOND, ethernet_frame());
    const outcome got = read_input(file.text());
    EXPECT_THAT(outline_of(got.output), ElementsAre("000005.000 R DATA[0060]", "000000.000 R DATA[0060]",
                                                    "000001.000 R DATA[0060]", "000006.000 R DATA[0060]"));
    EXPECT_EQ(got.errors, std::string(DATE_LINE) + "ifwatch-read: 4 packets shown\n");
}

TEST(read_times, of_a_router_stay_behind_others) {
    pcapng_octets file;
    file.section().interface(ETHERNET).packet(0, DATE, ethernet_frame()).packet(0, 5 * SECOND, ethernet_frame());
    file.packet(0, DATE + SECOND, ethernet_frame());
    const outcome got = read_input(file.text());
    EXPECT_THAT(outline_of(got.output),
                ElementsAre("000000.000 R DATA[0060]", "000005.000 R DATA[0060]", "000001.000 R DATA[0060]"));
    EXPECT_EQ(got.errors, std::string(DATE_LINE) + "ifwatch-read: 3 packets shown\n");
}

TEST(read_times, of_classic_pcap_are_of_both_kinds_too) {
    const auto at_date = static_cast<std::uint32_t>(DATE / SECOND);
    pcap_octets router_first;
    router_first.header(ETHERNET).packet(7, 0, ethernet_frame()).packet(at_date, 0, ethernet_frame());
    router_first.packet(at_date + 2, 0, ethernet_frame());
    const outcome got = read_input(router_first.text());
    EXPECT_THAT(outline_of(got.output),
                ElementsAre("000007.000 R DATA[0060]", "000000.000 R DATA[0060]", "000002.000 R DATA[0060]"));
    EXPECT_THAT(got.errors, HasSubstr(DATE_LINE));
    pcap_octets date_first;
    date_first.header(ETHERNET).packet(at_date, 0, ethernet_frame()).packet(7, 0, ethernet_frame());
    EXPECT_THAT(outline_of(read_input(date_first.text()).output),
                ElementsAre("000000.000 R DATA[0060]", "000007.000 R DATA[0060]"));
}

TEST(read_times, of_a_later_section_may_be_of_the_other_kind) {
    pcapng_octets file;
    file.section().interface(ETHERNET).packet(0, 5 * SECOND, ethernet_frame());
    file.section().interface(ETHERNET).packet(0, DATE, ethernet_frame()).packet(0, DATE + SECOND, ethernet_frame());
    file.section().interface(ETHERNET).packet(0, DATE + 3 * SECOND, ethernet_frame());
    const outcome got = read_input(file.text());
    EXPECT_THAT(outline_of(got.output),
                ElementsAre("000005.000 R DATA[0060]", "=== interface 0: LAN", "000000.000 R DATA[0060]",
                            "000001.000 R DATA[0060]", "=== interface 0: LAN", "000003.000 R DATA[0060]"));
    EXPECT_EQ(got.errors, std::string(DATE_LINE) + "ifwatch-read: 4 packets shown\n");
}

// --- Sections

TEST(read_sections, begin_each_interface_anew) {
    pcapng_octets file;
    for (int i = 0; i < 2; ++i) {
        file.section().interface(PPP, 2, octet_list{'p', 'p', 'p', '0'}).packet(0, SECOND, LCP).packet(0, SECOND, LCP);
    }
    EXPECT_THAT(outline_of(read_input(file.text(), {"-p"}).output),
                ElementsAre("000001.000 R #00000001 DATA[0006]", "000001.000 R #00000002 DATA[0006]",
                            "=== ppp0: ISDN B-channel", "000001.000 R #00000001 DATA[0006]",
                            "000001.000 R #00000002 DATA[0006]"));
}

// --- Losses

constexpr std::uint16_t DROP_COUNT = 4;  // an option

pcapng_octets& add_lossy(pcapng_octets& file, std::uint32_t interface_id, std::uint64_t lost, const octet_list& data) {
    return file.block(6, file.packet_body(interface_id, SECOND, data).long_option(DROP_COUNT, lost).end_options());
}

TEST(read_losses, of_more_than_can_be_told_are_the_most_that_can) {
    pcapng_octets file;
    file.section().interface(ETHERNET);
    for (const std::uint64_t lost :
         {std::uint64_t{5'000'000'000}, std::uint64_t{3'000'000'000}, std::uint64_t{1} << 32}) {
        add_lossy(file, 0, lost, ethernet_frame());
    }
    add_lossy(file, 0, ~std::uint64_t{0}, ethernet_frame());
    // The numbers behind it, which the records would have had, are signed ones of 32 bits as well.
    EXPECT_THAT(outline_of(read_input(file.text()).output),
                ElementsAre("### 2147483647 messages have been lost -2147483647 2", "000001.000 R DATA[0060]",
                            "### 2147483647 messages have been lost 1 -2147483646", "000001.000 R DATA[0060]",
                            "### 2147483647 messages have been lost -2147483647 2", "000001.000 R DATA[0060]",
                            "### 2147483647 messages have been lost 1 -2147483646", "000001.000 R DATA[0060]"));
}

TEST(read_losses, behind_number_0_are_told) {
    pcapng_octets file;
    file.section().interface(ETHERNET);
    for (const std::uint64_t lost : {2'147'483'647U, 2'147'483'646U, 5U}) {
        add_lossy(file, 0, lost, ethernet_frame());
    }
    EXPECT_THAT(read_input(file.text()).output, HasSubstr("### 2147483646 messages have been lost 0 -2147483646\n"));
    EXPECT_THAT(read_input(file.text()).output, HasSubstr("### 5 messages have been lost 7 2\n"));
}

TEST(read_losses, of_a_packet_that_is_too_short_show_with_the_next_of_its_interface) {
    pcapng_octets file;
    file.section().interface(LAPD_WITH_DIRECTION).interface(PPP);
    add_lossy(file, 0, 3, octet_list(15));
    add_lossy(file, 0, 1, octet_list(2));
    file.packet(1, SECOND, LCP);
    add_lossy(file, 0, 2, octet_list(19, 1));
    file.packet(0, SECOND, octet_list(19, 1));
    EXPECT_THAT(outline_of(read_input(file.text(), {"-p", "-2"}).output),
                ElementsAre("=== interface 1: ISDN B-channel", "000001.000 R #00000001 DATA[0006]",
                            "=== interface 0: ISDN D-channel", "### 6 messages have been lost 8 2",
                            "000001.000 R #00000008 DATA[0003]", "000001.000 R #00000009 DATA[0003]"));
}

// --- Directions

TEST(read_sent, an_address_that_an_interface_cannot_show_is_told_once) {
    pcapng_octets file;
    file.section().interface(ETHERNET).interface(PPP).interface(PPP);
    file.packet(0, SECOND, ethernet_frame(7)).packet(1, SECOND, LCP).packet(1, SECOND, LCP).packet(2, SECOND, LCP);
    const outcome got = read_input(file.text(), {"-p", "--sent", "02:00:00:00:00:07"});
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.output, HasSubstr("000001.000 X DATA[0060]"));
    EXPECT_EQ(got.errors,
              "ifwatch-read: standard input: the address of --sent is not in the frames of interface 1 (ISDN "
              "B-channel): they count as received\n"
              "ifwatch-read: 4 packets shown\n");
}

TEST(read_sent, an_address_is_not_asked_for_where_the_capture_tells) {
    pcapng_octets file;
    file.section().interface(LAPD_WITH_DIRECTION).interface(PPP).packet(0, SECOND, octet_list(19, 1));
    file.block(6, file.packet_body(1, SECOND, LCP).word_option(2, 2).end_options());
    for (const char* const address : {"192.0.2.1", "02:00:00:00:00:07"}) {
        EXPECT_EQ(read_input(file.text(), {"-p", "--sent", address}).errors, "ifwatch-read: 2 packets shown\n");
    }
    file.packet(1, SECOND, LCP);
    EXPECT_THAT(read_input(file.text(), {"-p", "--sent", "all"}).errors, Not(HasSubstr("--sent")));
}

TEST(read_sent, all_that_a_host_of_the_sample_sends_has_its_address) {
    const std::string sample = std::string(SAMPLES_DIRECTORY) + "/lan-session.pcap";
    const auto shown = [&](const char* const address) {
        return run({IFWATCH_READ_PROGRAM, {"-i", "--sent", address, sample}}).output;
    };
    EXPECT_THAT(shown("192.168.0.10"), HasSubstr("000001.000 X DATA[0060]"));  // it asks by ARP
    EXPECT_EQ(shown("192.168.0.10"), shown("02:00:02:05:0a:10"));
}

// --- Nothing to read

TEST(read_nothing, is_told_with_the_place_and_the_reason) {
    EXPECT_THAT(read_input("").errors, HasSubstr("ifwatch-read: standard input: offset 0: the file is empty\n"));
    EXPECT_THAT(read_input("\xD4\xC3\xB2").errors,
                HasSubstr("ifwatch-read: standard input: offset 0: the number that tells its format is cut off: 3 of 4 "
                          "octets held\n"));
}

}  // namespace
}  // namespace ifwatch::test
