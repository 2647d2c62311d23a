// The analyser's plug-in without an analyser: what it writes, when it waits, and how it ends.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <future>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/plugin.h"
#include "support/process.h"
#include "support/read_fifo.h"
#include "support/scripted_daemon.h"
#include "support/simulator.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using text_list = std::vector<std::string>;

constexpr auto PATIENCE = 60s;
constexpr int PATIENCE_MS = 60000;

constexpr const char* LAN_CASE =
    "channel 6\n"
    "record X 1004\n  FF*6 02 00 00 00 00 02 08 06 00*46\n"
    "record R 1250 sequence=5\n  02 00 00 00 00 02 02 00 00 00 00 01 08 00 00*46\n";

// Two frames, a cell without user data two records behind the first, and two events of the physical layer.
constexpr const char* ATM_CASE =
    "channel 3\n"
    "record R 1 info=0x01002000\n  45 00\n"
    "record R 2 info=7\n  00\n"
    "record X 3 flags=0x81 sequence=5\n  0A 02 10 30 18 01\n"
    "record R 4 info=0x01002000\n  45 00\n"
    "record R 5 info=1 sequence=8\n";

/// tshark 4.0 prints a flag as 1 or 0, 4.4 as True or False.
std::string flags_as_numbers(std::string fields) {
    for (const auto& [word, number] : {std::pair<std::string, std::string>("True", "1"), {"False", "0"}}) {
        for (std::size_t at = 0; (at = fields.find("\t" + word + "\t", at)) != std::string::npos;) {
            fields.replace(at + 1, word.size(), number);
        }
    }
    return fields;
}

struct pcapng_block {
    std::uint32_t type = 0;
    std::string body;

    [[nodiscard]] std::uint32_t word(std::size_t at) const {
        std::uint32_t value = 0;
        EXPECT_LE(at + sizeof value, body.size());
        std::memcpy(&value, body.substr(at, sizeof value).data(), sizeof value);
        return value;
    }
};

/// The blocks of a pcapng file, which have to fill it exactly.
std::vector<pcapng_block> blocks_of(const std::string& file) {
    std::vector<pcapng_block> blocks;
    std::size_t at = 0;
    while (at + 12 <= file.size()) {
        std::uint32_t words[2] = {};
        std::memcpy(words, &file[at], sizeof words);
        if (words[1] < 12 || words[1] > file.size() - at) {
            break;
        }
        blocks.push_back({words[0], file.substr(at + 8, words[1] - 12)});
        at += words[1];
    }
    EXPECT_EQ(at, file.size()) << "the last block is cut";
    return blocks;
}

std::vector<std::uint32_t> block_types(const std::string& file) {
    std::vector<std::uint32_t> types;
    for (const pcapng_block& block : blocks_of(file)) {
        types.push_back(block.type);
    }
    return types;
}

constexpr std::uint32_t SECTION = 0x0A0D0D0A;
constexpr std::uint32_t INTERFACE = 1;
constexpr std::uint32_t STATISTICS = 5;
constexpr std::uint32_t PACKET = 6;
const std::vector<std::uint32_t> TWO_PACKETS = {SECTION, INTERFACE, PACKET, PACKET, STATISTICS};

class extcap_program : public testing::Test {
protected:
    temp_directory directory;

    /// Captures a whole trace into a file.
    outcome capture(int port, const text_list& more = {}) {
        return run(plugin(capture_arguments(port, directory.write("capture.pcapng", ""), more)));
    }
    [[nodiscard]] std::string captured() const {
        std::string file;
        EXPECT_TRUE(read_file(directory.file("capture.pcapng"), file));
        return file;
    }

    /// What tshark shows of the file.
    [[nodiscard]] std::string shown(const text_list& fields) const {
        command what = {.program = "tshark",
                        .arguments = {"-n", "-r", directory.file("capture.pcapng"), "-T", "fields"},
                        .timeout = PATIENCE};
        for (const std::string& field : fields) {
            what.arguments.insert(what.arguments.end(), {"-e", field});
        }
        const outcome got = run(what);
        EXPECT_EQ(got.status, 0) << got.errors;
        return got.output;
    }
};

TEST_F(extcap_program, writes_the_blocks_of_a_trace) {
    const simulator router({LAN_CASE});
    const outcome got = capture(router.port());
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, "");
    EXPECT_EQ(got.output, "");
    EXPECT_EQ(block_types(captured()), TWO_PACKETS);
    EXPECT_EQ(shown({"frame.encap_type", "frame.p2p_dir", "frame.len", "frame.drop_count"}),
              "1\t0\t60\t\n1\t1\t60\t3\n");
}

TEST_F(extcap_program, time_begins_with_the_wall_clock) {
    const simulator router({LAN_CASE});
    const auto now = [] { return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()); };
    const double before = now().count() - 0.001;  // its stamps are whole milliseconds
    ASSERT_EQ(capture(router.port()).status, 0);
    const double after = now().count();
    const std::string times = shown({"frame.time_epoch"});
    const double first = std::stod(times);
    EXPECT_GE(first, before);
    EXPECT_LE(first, after);
    EXPECT_NEAR(std::stod(times.substr(times.find('\n') + 1)) - first, 0.246, 1e-5);
}

TEST_F(extcap_program, time_can_stay_the_routers) {
    const simulator router({LAN_CASE});
    ASSERT_EQ(capture(router.port(), {"--router-time"}).status, 0);
    EXPECT_EQ(shown({"frame.time_epoch"}), "1.004000000\n1.250000000\n");
}

TEST_F(extcap_program, captures_no_more_than_asked_for) {
    const simulator router({LAN_CASE});
    ASSERT_EQ(capture(router.port(), {"--capture-length", "20"}).status, 0);
    EXPECT_EQ(shown({"frame.cap_len", "frame.len"}), "20\t60\n20\t60\n");
}

TEST_F(extcap_program, tells_the_longest_packet_of_each_interface) {
    const auto lengths = [this](const std::string& text, const text_list& options) {
        const simulator router({text});
        EXPECT_EQ(capture(router.port(), options).status, 0);
        std::vector<std::uint32_t> found;
        for (const pcapng_block& block : blocks_of(captured())) {
            if (block.type == INTERFACE) {
                found.push_back(block.word(4));
            }
        }
        return found;
    };
    const text_list twenty = {"--capture-length", "20"};
    EXPECT_THAT(lengths(LAN_CASE, {}), ElementsAre(0));
    EXPECT_THAT(lengths(LAN_CASE, twenty), ElementsAre(20));
    EXPECT_THAT(lengths(ATM_CASE, twenty), ElementsAre(20 + 4, 20 + 22, 20 + 36));
    EXPECT_THAT(lengths("channel 16\nrecord R 1\n 01 3F\n", twenty), ElementsAre(20 + 20));
}

TEST_F(extcap_program, counts_the_packets_of_each_interface) {
    const auto counts = [this](const std::string& text) {
        const simulator router({text});
        EXPECT_EQ(capture(router.port()).status, 0);
        text_list found;
        for (const pcapng_block& block : blocks_of(captured())) {
            if (block.type == STATISTICS) {  // number, time; isb_ifrecv, isb_ifdrop of 8 octets
                found.push_back(std::to_string(block.word(0)) + ": " + std::to_string(block.word(16)) + " received, " +
                                std::to_string(block.word(28)) + " lost");
            }
        }
        return found;
    };
    EXPECT_THAT(counts(LAN_CASE), ElementsAre("0: 5 received, 3 lost"));
    EXPECT_THAT(counts("channel 0\nrecord R 1 info=1\nrecord R 2\n 00 01 7F\nrecord R 3 info=2\n"),
                ElementsAre("0: 1 received, 0 lost", "1: 2 received, 0 lost"));
    EXPECT_THAT(counts(ATM_CASE),
                ElementsAre("0: 2 received, 0 lost", "1: 3 received, 1 lost", "2: 3 received, 2 lost"))
        << "frames, events, cells";
}

TEST_F(extcap_program, asks_for_one_atm_connection) {
    const simulator router({"channel 3\nrecord R 1 info=0x01002000\n 45 00\nrecord R 2 info=0x08002300\n 45 00 00\n"});
    ASSERT_EQ(capture(router.port(), {"--vpi", "8", "--vci", "35"}).status, 0);
    EXPECT_EQ(shown({"atm.vpi", "atm.vci"}), "8\t35\n");
}

TEST_F(extcap_program, marks_damaged_frames_and_writes_events_as_packets_of_their_own) {
    const simulator router(
        {"channel 0\nrecord R 1 info=1\nrecord R 2 info=4\n 02 01 7F\nrecord R 3 info=7 flags=6\n"
         " 00\nrecord X 4 info=3\nrecord X 5\nrecord X 6 info=99\n"});
    ASSERT_EQ(capture(router.port()).status, 0);
    const std::string fields = shown({"frame.interface_name", "frame.encap_type", "frame.len",
                                      "frame.packet_flags_direction", "frame.packet_flags_crc_error", "frame.comment"});
    EXPECT_EQ(flags_as_numbers(fields),
              "ifwatch-1000 events\t45\t22\t0x00000001\t0\tACTIVATE\n"
              "ifwatch-1000\t131\t3\t0x00000001\t1\tline error: CRC\n"
              "ifwatch-1000 events\t45\t23\t0x00000000\t0\tL1 F3\n"
              "ifwatch-1000 events\t45\t22\t0x00000002\t0\tRST [0000]\n"
              "ifwatch-1000 events\t45\t22\t0x00000002\t0\tDATA[0000]\n"
              "ifwatch-1000 events\t45\t22\t0x00000002\t0\tevent 99\n");
}

TEST_F(extcap_program, an_event_is_the_record_as_it_came) {
    const simulator router({"channel 3\nrecord R 0x01020304 sequence=7 info=0xAABBCC07 flags=0x10 original=9\n 5A\n"});
    ASSERT_EQ(capture(router.port()).status, 0);
    const command tshark = {
        .program = "tshark", .arguments = {"-n", "-x", "-r", directory.file("capture.pcapng")}, .timeout = PATIENCE};
    EXPECT_THAT(run(tshark).output, HasSubstr("0000  00 17 00 10 01 02 03 04 00 00 00 10 aa bb cc 07"));
    EXPECT_THAT(run(tshark).output, HasSubstr("0010  00 00 00 07 00 09 5a"));
}

TEST_F(extcap_program, traces_an_old_router) {
    const simulator router({LAN_CASE}, {"--version", "1"});
    const outcome got = capture(router.port());
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, "");
    EXPECT_EQ(block_types(captured()), TWO_PACKETS);
}

TEST_F(extcap_program, takes_the_password_from_a_credentials_file) {
    const simulator router({LAN_CASE});
    const std::string file = directory.write("routers", "# mine\n127.0.0.1 admin\n");
    ASSERT_EQ(chmod(file.c_str(), 0600), 0);
    command what =
        plugin(capture_arguments(router.port(), directory.write("capture.pcapng", ""), {"--credentials", file}),
               "not this one");
    EXPECT_EQ(run(what).errors, "");
    what.environment.clear();
    EXPECT_EQ(run(what).status, 0);
    EXPECT_EQ(block_types(captured()), TWO_PACKETS);
}

TEST_F(extcap_program, finds_the_router_in_the_environment) {
    const simulator router({LAN_CASE});
    command what = plugin({"--extcap-config", "--extcap-interface", "ifwatch", "--extcap-reload-option", "interface"});
    what.environment.insert(what.environment.end(),
                            {{"TRACE_HOST", "127.0.0.1"}, {"TRACE_PORT", std::to_string(router.port())}});
    EXPECT_EQ(run(what).output, "value {arg=2}{value=1000}{display=1000 LAN}\n");
}

TEST_F(extcap_program, lists_the_interfaces_of_the_router) {
    const simulator router({"channel 0\ninterface 2100\n", "channel 131\ninterface 100001\n"});
    const outcome got = run(reload(router.port()));
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, "");
    EXPECT_EQ(got.output,
              "value {arg=2}{value=2100}{display=2100 ISDN D-channel}\n"
              "value {arg=2}{value=100001}{display=100001 Tunnel}\n"
              "value {arg=2}{value=all}{display=The whole router: 2 interfaces}\n");
}

void expect_no_list(int port, const std::string& reason) {
    const outcome got = run(reload(port));
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.output, "");
    EXPECT_EQ(got.errors, "ifwatch-extcap: router 127.0.0.1: " + reason + "\n");
}

TEST_F(extcap_program, tells_that_the_router_closed_instead_of_a_list) {
    const std::string reason =
        "it closed the connection (perhaps it cannot list its interfaces; type the index of one)";
    const simulator old({LAN_CASE}, {"--version", "2"});
    expect_no_list(old.port(), reason);
    for (const char* step : {"connect", "request", "version", "login"}) {
        SCOPED_TRACE(step);
        const simulator closing({LAN_CASE}, {"--close-after", step});
        expect_no_list(closing.port(), reason);
    }
}

TEST_F(extcap_program, tells_that_the_router_has_no_list) {
    const scripted_daemon daemon([](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send({0, 0, 0, 0});  // the end of a reply, where the version is to come
        client.receive_all();
    });
    expect_no_list(daemon.port(), "it cannot list its interfaces; type the index of one");
}

TEST_F(extcap_program, checks_a_filter_without_a_router) {
    const auto check = [](const std::string& filter) {
        return run(plugin({"--extcap-capture-filter", filter, "--extcap-interface", "ifwatch"}));
    };
    EXPECT_EQ(check("-B 10.1.1.7::6::23").output, "");
    const outcome wrong = check("-B 10.1.1.7::6::telnet");
    EXPECT_EQ(wrong.status, 0);
    EXPECT_EQ(wrong.errors, "");
    EXPECT_EQ(wrong.output, "capture filter: -B '10.1.1.7::6::telnet': the destination port cannot be 'telnet'\n");
}

TEST_F(extcap_program, help_and_mistakes) {
    const outcome help = run(plugin({"--help"}));
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, StartsWith("ifwatch-extcap: "));
    const outcome wrong = run(plugin({"--extcap-interfaces", "--pwd=secret"}));
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.output, "");
    EXPECT_EQ(wrong.errors, "ifwatch-extcap: unknown option '--pwd=secret' (--help tells more)\n");
    EXPECT_EQ(run(plugin({"--extcap-cleanup-postkill"})).status, 0);
}

TEST_F(extcap_program, refuses_two_interfaces) {
    const outcome got = capture(1, {"--index", "2100"});
    EXPECT_EQ(got.status, 2);
    EXPECT_EQ(got.errors,
              "ifwatch-extcap: the interface and the index differ: 1000 and 2100; give one of them "
              "(--help tells more)\n");
}

TEST_F(extcap_program, tells_what_it_cannot_write_to) {
    const outcome got = run(plugin(capture_arguments(7000, directory.file("missing"))));
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, "ifwatch-extcap: " + directory.file("missing") + ": No such file or directory\n");
}

/// A plug-in that writes into a FIFO, and the reading end of it.
class extcap_fifo : public extcap_program {
protected:
    read_fifo fifo{directory.file("fifo")};

    /// Waits for data or for the end of a writer. What is seen of it: POLLIN, POLLHUP.
    int wait_for(short events) const {
        pollfd waiting = {fifo.fd(), events, 0};
        EXPECT_EQ(poll(&waiting, 1, PATIENCE_MS), 1) << "nothing was written";
        return waiting.revents;
    }

    /// Appends what there is to read, and waits for it. False at the writer's end.
    bool read_part(std::string& all) const {
        wait_for(POLLIN);
        char part[4096];
        const ssize_t count = read(fifo.fd(), part, sizeof part);
        all.append(part, static_cast<std::size_t>(count > 0 ? count : 0));
        return count > 0;
    }

    /// Begins a capture, closes the pipe behind its first octets, and expects its quiet end.
    void expect_end_without_reader(const simulator& router) {
        process program(plugin(capture_arguments(router.port(), fifo.name())));
        wait_for(POLLIN);
        fifo.close_end();
        const outcome got = program.wait();
        EXPECT_EQ(got.status, 0);
        EXPECT_EQ(got.errors, "");
    }

    /// How much a capture of the two packets writes before the router ends it.
    std::size_t size_without_statistics() {
        const simulator router({LAN_CASE});
        EXPECT_EQ(capture(router.port()).status, 0);
        const std::string whole = captured();
        std::uint32_t last = 0;
        std::memcpy(&last, &whole[whole.size() - sizeof last], sizeof last);
        return whole.size() - last;
    }
};

TEST_F(extcap_fifo, is_opened_before_the_router_is_asked) {
    const outcome got = run(plugin(capture_arguments(1, fifo.name())));
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, "ifwatch-extcap: router 127.0.0.1: connect (Connection refused)\n");
    EXPECT_NE(wait_for(POLLIN) & POLLHUP, 0) << "a hang-up is seen only when somebody had opened it";
}

TEST_F(extcap_fifo, is_opened_even_for_a_mistake) {
    const outcome got = run(plugin({"--capture", "--extcap-interface", "other", "--fifo", fifo.name()}));
    EXPECT_EQ(got.status, 2);
    EXPECT_EQ(got.errors,
              "ifwatch-extcap: --extcap-interface takes the interface 'ifwatch', not 'other' (--help tells more)\n");
    EXPECT_NE(wait_for(POLLIN) & POLLHUP, 0);
}

TEST_F(extcap_fifo, gets_whole_blocks_up_to_a_termination) {
    simulator router({LAN_CASE}, {"--fault", "silence=2", "--once"});
    process program(plugin(capture_arguments(router.port(), fifo.name())));
    const std::size_t enough = size_without_statistics();
    std::string got;
    while (got.size() < enough && read_part(got)) {
    }
    const outcome ended = program.terminate();
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.errors, "");
    while (read_part(got)) {
    }
    EXPECT_EQ(block_types(got), TWO_PACKETS);
    EXPECT_EQ(router.program().wait().status, 0) << "the session has ended";
}

TEST_F(extcap_fifo, stays_empty_when_terminated_before_the_router_answers) {
    std::promise<void> asked;
    const scripted_daemon daemon([&asked](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        asked.set_value();
        client.receive_all();
    });
    process program(plugin(capture_arguments(daemon.port(), fifo.name())));
    ASSERT_EQ(asked.get_future().wait_for(PATIENCE), std::future_status::ready);
    const outcome got = program.terminate();
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, "");
    std::string all;
    EXPECT_FALSE(read_part(all));
}

TEST_F(extcap_fifo, that_nobody_reads_does_not_hold_up_the_end) {
    const simulator router({LAN_CASE}, {"--loop", "0"});
    process program(plugin(capture_arguments(router.port(), fifo.name())));
    const int capacity = fcntl(fifo.fd(), F_GETPIPE_SZ);
    const auto until = std::chrono::steady_clock::now() + PATIENCE;
    int waiting = 0;
    while (ioctl(fifo.fd(), FIONREAD, &waiting) == 0 && waiting < capacity * 3 / 4) {
        ASSERT_LT(std::chrono::steady_clock::now(), until) << "the pipe is not filled";
        std::this_thread::sleep_for(1ms);
    }
    const outcome got = program.terminate();
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, "");
}

TEST_F(extcap_fifo, whose_reader_has_gone_ends_the_capture) {
    simulator router({LAN_CASE}, {"--loop", "0", "--once"});
    expect_end_without_reader(router);
    EXPECT_EQ(router.program().wait().status, 0) << "the session has ended";
}

TEST_F(extcap_fifo, whose_reader_has_gone_ends_the_capture_of_a_silent_line) {
    const simulator router({LAN_CASE}, {"--fault", "silence=0", "--once"});
    expect_end_without_reader(router);
}

}  // namespace
}  // namespace ifwatch::test
