// The analyser's plug-in inside the real tshark: it lists the interface, traces the simulated router through it, and
// decodes what was sent.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "support/plugged_tshark.h"
#include "support/process.h"
#include "support/simulator.h"

namespace ifwatch::test {
namespace {

using testing::HasSubstr;
using testing::Not;

using text_list = std::vector<std::string>;

class extcap : public testing::Test, protected plugged_tshark {
protected:
    /// What tshark shows of a whole trace of one of the samples.
    [[nodiscard]] std::string shown(const std::string& name, int interface_index, const text_list& options,
                                    const text_list& fields) const {
        const simulator router({sample(name)});
        const outcome got = run(capture(router.port(), std::to_string(interface_index), options, fields));
        EXPECT_EQ(got.status, 0) << got.errors;
        EXPECT_THAT(got.errors, Not(HasSubstr("ifwatch-extcap")));
        return got.output;
    }
};

TEST_F(extcap, is_in_the_list_of_interfaces) {
    const outcome got = run(tshark({"-D"}));
    EXPECT_EQ(got.status, 0) << got.errors;
    EXPECT_THAT(got.output, HasSubstr(". ifwatch (Router interface)\n"));
    EXPECT_THAT(got.errors, Not(HasSubstr("invalid"))) << "every sentence is understood";
}

TEST_F(extcap, tells_its_link_types) {
    const outcome got = run(tshark({"-L", "-i", "ifwatch"}));
    EXPECT_EQ(got.status, 0) << got.errors;
    EXPECT_THAT(got.output + got.errors, HasSubstr("  LAPD (ISDN D-channels: LAPD)\n"));
}

// Directions: 0 and 2 are packets that the router sent, 1 and 1 those that it received.

TEST_F(extcap, shows_a_call_on_the_d_channel) {
    EXPECT_EQ(shown("isdn-call", 2100, {"-Y", "q931.message_type == 5"},
                    {"frame.protocols", "frame.p2p_dir", "frame.packet_flags_direction", "lapd.direction", "lapd.tei",
                     "q931.calling_party_number.digits", "q931.called_party_number.digits", "frame.interface_name",
                     "frame.interface_description"}),
              "lapd:q931\t0\t0x00000002\t0\t70\t555010\t8915550100\tifwatch-2100\t"
              "Interface 2100 of 127.0.0.1: ISDN D-channel\n"
              "lapd:q931\t1\t0x00000001\t1\t127\t895550177\t555011\tifwatch-2100\t"
              "Interface 2100 of 127.0.0.1: ISDN D-channel\n");
}

TEST_F(extcap, shows_a_ppp_dial_in) {
    EXPECT_EQ(shown("ppp-dialin", 2102, {"-Y", "chap"},
                    {"frame.protocols", "frame.p2p_dir", "frame.packet_flags_direction", "ppp.direction", "chap.code",
                     "chap.name"}),
              "ppp:chap\t0\t0x00000002\t0\t1\thq-router\n"
              "ppp:chap\t1\t0x00000001\t1\t2\tbranch12\n"
              "ppp:chap\t0\t0x00000002\t0\t3\t\n");
}

TEST_F(extcap, shows_a_session_on_the_lan) {
    EXPECT_EQ(shown("lan-session", 1000, {"-Y", "dns or http.request"},
                    {"frame.protocols", "frame.p2p_dir", "frame.packet_flags_direction", "ip.src", "dns.qry.name",
                     "http.host"}),
              "eth:ethertype:ip:udp:dns\t1\t0x00000001\t192.168.0.10\twww.example.net\t\n"
              "eth:ethertype:ip:udp:dns\t0\t0x00000002\t192.0.2.53\twww.example.net\t\n"
              "eth:ethertype:ip:tcp:http\t1\t0x00000001\t192.168.0.10\t\twww.example.net\n");
}

TEST_F(extcap, hands_the_capture_filter_to_the_router) {
    EXPECT_EQ(shown("lan-session", 1000, {"-f", "-B 192.168.0.10::17"}, {"frame.protocols"}),
              "eth:ethertype:ip:udp:dns\neth:ethertype:ip:udp:dns\n");
}

TEST_F(extcap, shows_an_x25_session) {
    EXPECT_EQ(shown("x25-session", 2101, {"-o", "extcap.ifwatch.bchannel:lapb", "-Y", "x25.type == 0x0b"},
                    {"frame.protocols", "frame.p2p_dir", "frame.packet_flags_direction", "lapb.address", "x25.lcn",
                     "x25.calling_address", "x25.called_address"}),
              "exported_pdu:lapb:x25\t0\t0x00000002\t0x01\t1\t555010\t51000310\n");
}

TEST_F(extcap, shows_frames_and_cells_of_an_atm_line) {
    const std::string got =
        shown("dsl-pppoe", 6000, {"-c", "4"},
              {"frame.protocols", "frame.p2p_dir", "atm.vpi", "atm.vci", "frame.interface_name", "_ws.col.Info"});
    EXPECT_EQ(got,
              "exported_pdu:mplspwatmn1nocw:mplspwatmcellheader:oamaal\t0\t1\t32\tifwatch-6000 cells\t"
              "1 ATM cell, VPI:0001, VCI:00032, PTI:5, CLP:0\n"
              "exported_pdu:mplspwatmn1nocw:mplspwatmcellheader:oamaal\t1\t1\t32\tifwatch-6000 cells\t"
              "1 ATM cell, VPI:0001, VCI:00032, PTI:5, CLP:0\n"
              "atm:llc:eth:ethertype:pppoed\t0\t1\t32\tifwatch-6000\tActive Discovery Initiation (PADI)\n"
              "atm:llc:eth:ethertype:pppoed\t1\t1\t32\tifwatch-6000\t"
              "Active Discovery Offer (PADO) AC-Name='BRAS-ESN1'\n");
}

TEST_F(extcap, shows_messages_of_the_pabx) {
    EXPECT_THAT(shown("pabx", 2200, {}, {"frame.protocols", "q931.calling_party_number.digits", "frame.comment"}),
                testing::StartsWith("exported_pdu:q931\t5\tport 2:5, call 0x1234\n"));
}

TEST_F(extcap, is_stopped_when_enough_was_captured) {
    simulator router({"channel 0\nrecord R 1000\n 00 01 7F\nrecord X 1200\n 00 01 73\n"}, {"--loop", "0", "--once"});
    const outcome got = run(capture(router.port(), "1000", {"-c", "3"}, {"frame.protocols"}));
    EXPECT_EQ(got.status, 0) << got.errors;
    EXPECT_EQ(got.output, "lapd\nlapd\nlapd\n");
    EXPECT_EQ(router.program().wait().status, 0) << "the session has ended";
}

TEST_F(extcap, is_stopped_with_the_analyser_while_the_line_is_silent) {
    simulator router({"channel 0\nrecord R 1000\n 00 01 7F\n"}, {"--fault", "silence=1", "--once"});
    process analyser(capture(router.port(), "1000", {}, {"frame.protocols"}));
    EXPECT_TRUE(analyser.wait_for_output("lapd\n")) << analyser.errors();
    analyser.send_signal(SIGINT);
    const outcome got = analyser.wait();
    EXPECT_EQ(got.status, 0) << got.errors;
    EXPECT_THAT(got.errors, Not(HasSubstr("ifwatch-extcap")));
    EXPECT_EQ(router.program().wait().status, 0) << "the session has ended";
}

class extcap_trouble : public extcap {
protected:
    /// Captures nothing and ends with status 1, the error in its own words.
    void expect_error(const command& what, const std::string& error) {
        const outcome got = run(what);
        EXPECT_EQ(got.status, 1);
        EXPECT_EQ(got.output, "");
        EXPECT_THAT(got.errors, HasSubstr("ifwatch-extcap: " + error + "\n"));
    }

    const std::string lan = "channel 6\nrecord R 1000\n 02*12 08 00\n";
};

TEST_F(extcap_trouble, wrong_password) {
    const simulator router({lan});
    expect_error(capture(router.port(), "1000", {}, {}, "guess"), "router 127.0.0.1: wrong password");
}

TEST_F(extcap_trouble, refused_connection) {
    expect_error(capture(1, "1000", {}), "router 127.0.0.1: connect (Connection refused)");
}

TEST_F(extcap_trouble, unknown_interface) {
    const simulator router({lan});
    expect_error(capture(router.port(), "2100", {}), "router 127.0.0.1: no interface 2100");
}

TEST_F(extcap_trouble, wrong_filter) {
    const simulator router({lan});
    expect_error(capture(router.port(), "1000", {"-f", "tcp port 23"}), "capture filter: unknown filter 'tcp'");
}

TEST_F(extcap_trouble, wrong_option) {
    expect_error(capture(7000, "1000", {"-o", "extcap.ifwatch.vci:70000"}),
                 "--vci takes a number from 0 to 65535, not '70000' (--help tells more)");
}

TEST_F(extcap_trouble, broken_trace) {
    const simulator router({"channel 6\nrecord R 1000\n 02*12 08 00 00*46\nrecord R 1100\n 02*12 08 00 00*46\n"},
                           {"--fault", "cut=2"});
    const outcome got = run(capture(router.port(), "1000", {}, {"frame.len"}));
    EXPECT_EQ(got.output, "60\n");
    EXPECT_THAT(got.errors, HasSubstr("ifwatch-extcap: router 127.0.0.1: the trace broke off: data too short! 0<60\n"));
}

}  // namespace
}  // namespace ifwatch::test
