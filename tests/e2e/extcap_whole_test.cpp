// Several interfaces of a router in one capture, inside the real tshark: what each shows, in what order, and what
// becomes of the others when one fails.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <memory>
#include <string>
#include <vector>

#include "support/plugged_tshark.h"
#include "support/process.h"
#include "support/simulator.h"

namespace ifwatch::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using text_list = std::vector<std::string>;

// A D-channel and its two B-channels, on one clock.
constexpr const char* D_CHANNEL =
    "channel 0\ninterface 2100\n"
    "record R 1000\n 00 01 7F\n"
    "record R 1200 info=1\n"
    "record X 1400\n 00 01 73\n";
constexpr const char* FIRST_B_CHANNEL =
    "channel 1\ninterface 2101\n"
    "record X 1100\n FF 03 C0 21 01 01 00 04\n"
    "record R 1300 sequence=5\n FF 03 C0 21 02 01 00 04\n";
constexpr const char* SECOND_B_CHANNEL =
    "channel 1\ninterface 2102\n"
    "record X 1050\n 01 3F\n"
    "record R 1350\n 01 73\n";
const text_list LINE = {D_CHANNEL, FIRST_B_CHANNEL, SECOND_B_CHANNEL};
const text_list NAME_AND_TIME = {"frame.interface_name", "frame.time_epoch"};

const text_list ROUTER_TIME = {"-o", "extcap.ifwatch.routertime:true"};

class extcap_whole : public testing::Test, protected plugged_tshark {
protected:
    /// What tshark shows of a whole trace.
    [[nodiscard]] outcome shown(text_list router_options, const std::string& interfaces, const text_list& options,
                                const text_list& fields, int traces = 3) const {
        router_options.insert(router_options.begin(), {"--together", std::to_string(traces)});
        const simulator router(LINE, router_options);
        outcome got = run(capture(router.port(), interfaces, options, fields));
        EXPECT_EQ(got.status, 0) << got.errors;
        return got;
    }
};

TEST_F(extcap_whole, a_line_is_one_capture_in_the_order_of_the_routers_clock) {
    const outcome got =
        shown({}, "line:2100", {"-o", "extcap.ifwatch.bchannel:ppp,2102=lapb"},
              {"frame.interface_name", "frame.protocols", "frame.p2p_dir", "frame.drop_count", "frame.comment"});
    EXPECT_EQ(got.output,
              "ifwatch-2100\tlapd\t1\t\t\n"
              "ifwatch-2102\texported_pdu:lapb\t0\t\t\n"
              "ifwatch-2101\tppp:lcp\t0\t\t\n"
              "ifwatch-2100 events\tuser_dlt:data\t1\t\tACTIVATE\n"
              "ifwatch-2101\tppp:lcp\t1\t3\t\n"
              "ifwatch-2102\texported_pdu:lapb\t1\t\t\n"
              "ifwatch-2100\tlapd\t0\t\t\n");
    EXPECT_THAT(got.errors, Not(HasSubstr("ifwatch-extcap")));
}

TEST_F(extcap_whole, interfaces_are_named_by_lists_ranges_slots_and_all) {
    for (const char* choice : {"2100,2101,2102", "2100-2130", "slot:2", "all", "2100,line:2101"}) {
        EXPECT_EQ(shown({}, choice, {"-Y", "lapd or ppp or lapb"}, {"frame.interface_name"}).output.size(),
                  6 * sizeof "ifwatch-2100")
            << choice;
    }
    EXPECT_EQ(shown({}, "2101-2102", {"-c", "1"}, {"frame.interface_name"}, 2).output, "ifwatch-2102\n");
}

TEST_F(extcap_whole, each_record_has_its_place_on_the_time_line) {
    const outcome got = shown({}, "all", ROUTER_TIME, NAME_AND_TIME);
    EXPECT_EQ(got.output,
              "ifwatch-2100\t1.000000000\n"
              "ifwatch-2102\t1.050000000\n"
              "ifwatch-2101\t1.100000000\n"
              "ifwatch-2100 events\t1.200000000\n"
              "ifwatch-2101\t1.300000000\n"
              "ifwatch-2102\t1.350000000\n"
              "ifwatch-2100\t1.400000000\n");
}

TEST_F(extcap_whole, times_out_of_order_are_put_in_order) {
    const outcome got = shown({"--fault", "swap=1@2102"}, "all", ROUTER_TIME, NAME_AND_TIME);
    EXPECT_THAT(got.output, HasSubstr("ifwatch-2100\t1.000000000\nifwatch-2102\t1.050000000\nifwatch-2101\t1.1"));
    EXPECT_THAT(got.output, HasSubstr("ifwatch-2101\t1.300000000\nifwatch-2102\t1.350000000\nifwatch-2100\t1.4"));
}

TEST_F(extcap_whole, what_an_alone_interface_sends_stays_in_its_order) {
    EXPECT_EQ(shown({"--fault", "swap=1"}, "2102", ROUTER_TIME, NAME_AND_TIME, 1).output,
              "ifwatch-2102\t1.350000000\nifwatch-2102\t1.050000000\n");
}

TEST_F(extcap_whole, the_capture_filter_and_the_length_go_to_each) {
    const simulator router({"channel 6\ninterface 1000\nrecord R 1\n 02*12 08 00 45 00 00 14 00*5 11 00*10\n",
                            "channel 6\ninterface 1100\nrecord R 1\n 02*12 08 06 00*28\n"});
    const outcome got = run(capture(router.port(), "all", {"-f", "-B ::17", "-o", "extcap.ifwatch.capturelength:20"},
                                    {"frame.interface_name", "frame.cap_len", "frame.len"}));
    EXPECT_EQ(got.output, "ifwatch-1000\t20\t34\n");
}

class extcap_whole_trouble : public extcap_whole {
protected:
    /// One interface of the line fails, which is named once, and the others show all that they have.
    void expect_failure_of_one(const text_list& router_options, const std::string& number, const std::string& reason,
                               int traces = 3) {
        const outcome got = shown(router_options, "2100-2102", {}, {"frame.interface_name"}, traces);
        const std::string message = "ifwatch-extcap: router 127.0.0.1, interface " + number + ": " + reason + "\n";
        EXPECT_THAT(got.errors, HasSubstr(message));
        EXPECT_EQ(got.errors.find("ifwatch-extcap: "), got.errors.rfind("ifwatch-extcap: ")) << got.errors;
        for (const char* other : {"2100", "2101", "2102"}) {
            EXPECT_TRUE(number == other || shows_both(got.output, other)) << other << ":\n" << got.output;
        }
    }

    static bool shows_both(const std::string& output, const std::string& number) {
        const std::string line = "ifwatch-" + number + "\n";
        return output.find(line) != output.rfind(line);
    }
};

TEST_F(extcap_whole_trouble, an_interface_that_the_router_refuses) {
    expect_failure_of_one({"--fault", "refuse@2101"}, "2101", "interface 2101 is not to be traced", 2);
}

TEST_F(extcap_whole_trouble, an_interface_that_the_router_does_not_have) {
    const outcome got = shown({}, "2103,2100,line:9900", {}, {"frame.interface_name"}, 1);
    EXPECT_TRUE(shows_both(got.output, "2100"));
    EXPECT_THAT(got.errors, AllOf(HasSubstr("ifwatch-extcap: router 127.0.0.1: no interface line:9900\n"),
                                  HasSubstr("ifwatch-extcap: router 127.0.0.1, interface 2103: no interface 2103\n")));
}

TEST_F(extcap_whole_trouble, a_session_that_breaks_inside_a_record) {
    expect_failure_of_one({"--fault", "cut=2@2102"}, "2102", "the trace broke off: trc hdr too short! = 0<22");
}

TEST_F(extcap_whole_trouble, a_record_of_an_impossible_length) {
    expect_failure_of_one({"--fault", "length=record:1:9@2102"}, "2102", "the trace broke off: data too short! 0<-13");
}

TEST_F(extcap_whole_trouble, more_sessions_than_the_router_serves) {
    const simulator router(LINE, {"--limit", "2", "--fault", "silence=9"});
    process analyser(capture(router.port(), "all", {}, {"frame.interface_name"}));
    EXPECT_TRUE(analyser.wait_for_output("2100\n") || analyser.wait_for_output("2101\n"));
    analyser.send_signal(SIGINT);
    const outcome got = analyser.wait();
    EXPECT_THAT(got.errors, testing::ContainsRegex("ifwatch-extcap: router 127.0.0.1, interface 210[012]: "
                                                   "no more than 2 traces at a time\n"));
    EXPECT_EQ(got.errors.find("no more than"), got.errors.rfind("no more than")) << "the others were served";
}

TEST_F(extcap_whole_trouble, all_interfaces_fail) {
    const simulator router(LINE, {"--fault", "refuse"});
    const outcome got = run(capture(router.port(), "2100,2101", {}));
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.output, "");
    EXPECT_THAT(got.errors, AllOf(HasSubstr("interface 2100: interface 2100 is not to be traced\n"),
                                  HasSubstr("interface 2101: interface 2101 is not to be traced\n")));
}

TEST_F(extcap_whole_trouble, a_router_without_such_interfaces) {
    const simulator router(LINE);
    const outcome got = run(capture(router.port(), "slot:3,4000-5000", {}));
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, HasSubstr("ifwatch-extcap: router 127.0.0.1: no interface slot:3,4000-5000\n"));
}

TEST_F(extcap_whole_trouble, a_router_that_has_no_list) {
    const simulator router(LINE, {"--version", "1", "--refuse", "serve"});
    const outcome got = run(capture(router.port(), "line:2100", {}));
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, HasSubstr("ifwatch-extcap: router 127.0.0.1: its list, for line:2100: "));
}

/// What holds one session up holds up no other: the capture shows what those have, and goes on until it is stopped.
class extcap_whole_silence : public extcap_whole, public testing::WithParamInterface<const char*> {};

TEST_P(extcap_whole_silence, of_one_holds_up_no_other) {
    const simulator router(LINE, {"--fault", GetParam()});
    process analyser(capture(router.port(), "2100,2101,2102", {}, {"frame.interface_name", "frame.number"}));
    EXPECT_TRUE(analyser.wait_for_output("\t5\n")) << analyser.output() << analyser.errors();
    EXPECT_THAT(analyser.output(), Not(HasSubstr("ifwatch-2102")));
    analyser.send_signal(SIGINT);
    const outcome got = analyser.wait();
    EXPECT_EQ(got.status, 0) << got.errors;
    EXPECT_THAT(got.errors, Not(HasSubstr("ifwatch-extcap")));
}

INSTANTIATE_TEST_SUITE_P(faults, extcap_whole_silence, testing::Values("mute@2102", "silence=0@2102", "stall=1@2102"));

class extcap_reconnect : public extcap_whole {
protected:
    const text_list patiently = {"-o", "extcap.ifwatch.reconnect:true"};
    const text_list fields = {"frame.interface_name", "frame.drop_count", "frame.comment"};
};

TEST_F(extcap_reconnect, tries_again_when_a_session_ends_and_tells_of_the_gap) {
    const simulator router(LINE);
    process analyser(capture(router.port(), "2100,2101", patiently, fields));
    ASSERT_TRUE(analyser.wait_for_output("ifwatch-2100\t\tgap of ")) << analyser.errors();
    ASSERT_TRUE(analyser.wait_for_output("ifwatch-2101\t\tgap of ")) << analyser.errors();
    analyser.send_signal(SIGINT);
    const outcome got = analyser.wait();
    EXPECT_EQ(got.status, 0) << got.errors;
    EXPECT_THAT(got.output, testing::ContainsRegex("ifwatch-2100\t\tgap of [0-9]+\\.[0-9]+ s: the router closed the "
                                                   "session; the router's clock began anew\n"));
    const std::string closed = "interface 2100: the router closed the session; trying again\n";
    EXPECT_THAT(got.errors, HasSubstr(closed));
    EXPECT_EQ(got.errors.find(closed), got.errors.rfind(closed));
}

TEST_F(extcap_reconnect, waits_for_a_router_that_is_stopped_and_started) {
    const std::string first = "channel 0\ninterface 2100\nrecord R 500000\n 00 01 7F\n";
    const std::string second = "channel 0\ninterface 2100\nrecord R 500900 sequence=4\n 00 01 73\n";
    std::string port;
    std::unique_ptr<process> analyser;
    {
        const simulator router({first}, {"--fault", "silence=1"});
        port = std::to_string(router.port());
        analyser = std::make_unique<process>(capture(router.port(), "2100", patiently, fields));
        ASSERT_TRUE(analyser->wait_for_output("ifwatch-2100\t\t\n")) << analyser->errors();
    }
    const simulator router({second}, {"--port", port, "--fault", "silence=1"});
    ASSERT_TRUE(analyser->wait_for_output("ifwatch-2100\t2\tgap of ")) << analyser->errors();
    analyser->send_signal(SIGINT);
    const outcome got = analyser->wait();
    EXPECT_EQ(got.status, 0) << got.errors;
    EXPECT_THAT(got.output, Not(HasSubstr("began anew"))) << "the clock and the sequence have gone on";
}

TEST_F(extcap_reconnect, waits_for_a_router_that_is_not_there_yet) {
    std::string port;
    {
        const simulator router(LINE);
        port = std::to_string(router.port());
    }
    process analyser(capture(std::stoi(port), "all", patiently, fields));
    const simulator router(LINE, {"--port", port, "--fault", "silence=9"});
    ASSERT_TRUE(analyser.wait_for_output("ifwatch-2102")) << analyser.errors();
    analyser.send_signal(SIGINT);
    EXPECT_EQ(analyser.wait().status, 0);
}

TEST_F(extcap_reconnect, does_not_try_again_where_the_router_refuses) {
    const simulator router(LINE, {"--fault", "refuse"});
    const outcome got = run(capture(router.port(), "2100", patiently, fields));
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, HasSubstr("ifwatch-extcap: router 127.0.0.1: interface 2100 is not to be traced\n"));
}

TEST_F(extcap_whole, a_clock_that_begins_anew_is_told) {
    const std::string text =
        "channel 0\ninterface 2100\nrecord R 500000\n 00 01 7F\nrecord R 500100\n 00 01 73\nrecord R 500200\n 00 01 "
        "73\n";
    const simulator router({text, FIRST_B_CHANNEL}, {"--fault", "restart=2@2100"});
    const outcome got =
        run(capture(router.port(), "2100", ROUTER_TIME, {"frame.time_epoch", "frame.drop_count", "frame.comment"}));
    EXPECT_EQ(got.output, "500.000000000\t\t\n0.000000000\t\tthe router's clock began anew\n0.100000000\t\t\n");
    EXPECT_EQ(got.status, 0) << got.errors;
}

}  // namespace
}  // namespace ifwatch::test
