// Captures become cases and cases captures, as ifwatch-sim converts them: what ifwatch shows of an imported capture is
// what it shows of the case that the capture was made of, also when tcpdump has written the capture.

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "cases/case_text.h"
#include "support/pcap_octets.h"
#include "support/process.h"
#include "support/programs.h"
#include "support/simulator.h"
#include "support/temp_directory.h"

namespace ifwatch::test {
namespace {

using namespace std::chrono_literals;
using cases::trace_case;
using testing::HasSubstr;

// tcpdump takes its time to start on a busy machine.
constexpr auto PATIENCE = 60s;

constexpr const char* INTERFACE = "1000";

outcome run_sim(const std::vector<std::string>& arguments) { return run({IFWATCH_SIM_PROGRAM, arguments}); }

std::string text_of(const std::string& path) {
    std::string text;
    EXPECT_TRUE(read_file(path, text)) << path;
    return text;
}

/// The capture as tcpdump writes it anew.
std::string rewritten(const std::string& path) {
    const outcome got = run({.program = "tcpdump", .arguments = {"-r", path, "-w", "-"}, .timeout = PATIENCE});
    EXPECT_EQ(got.status, 0) << got.errors;
    return got.output;
}

/// What ifwatch shows of a case with these options.
std::string shown(const std::string& case_text, const std::vector<std::string>& options) {
    const simulator sim({case_text});
    const outcome got = sim.watch(options, {INTERFACE});
    EXPECT_EQ(got.status, 0) << got.errors;
    return got.output;
}

/// A sample and how its capture becomes the same case again.
struct sample {
    const char* name;
    std::vector<std::string> viewer_options;
    std::vector<std::string> export_options;
    std::vector<std::string> import_options;
    std::size_t left_out = 0;  // records that are no frames
};

void PrintTo(const sample& printed, std::ostream* out) { *out << printed.name; }

trace_case read_sample(const sample& wanted) {
    trace_case read;
    std::string error;
    EXPECT_TRUE(read_case_file(SAMPLES_DIRECTORY + std::string("/") + wanted.name + ".case", read, error)) << error;
    return read;
}

/// The sample without what a capture cannot carry: single cells, and the service access point of an old ATM
/// interface. What is left is numbered from 1.
std::string text_that_can_be_captured(const sample& wanted) {
    trace_case original = read_sample(wanted);
    const bool atm = original.channel_type == 2 || original.channel_type == 3;
    const std::size_t whole = original.records.size();
    if (atm) {
        std::erase_if(original.records, [](const cases::case_record& record) { return (record.flags & 0x80) != 0; });
    }
    EXPECT_EQ(whole - original.records.size(), wanted.left_out);
    std::uint32_t sequence = 0;
    for (cases::case_record& record : original.records) {
        record.sequence = ++sequence;
        record.info &= original.channel_type == 2 ? 0xFFFFFF00 : 0xFFFFFFFF;
    }
    original.interface_index = 1000;
    return case_text(original, wanted.name);
}

class samples : public testing::TestWithParam<sample> {
protected:
    temp_directory directory;
    std::string capture = directory.file("sample.pcap");

    void export_sample() {
        std::vector<std::string> arguments = {
            "export", SAMPLES_DIRECTORY + std::string("/") + GetParam().name + ".case", "-o", capture};
        arguments.insert(arguments.end(), GetParam().export_options.begin(), GetParam().export_options.end());
        const outcome exported = run_sim(arguments);
        ASSERT_EQ(exported.status, 0) << exported.errors;
        EXPECT_EQ(exported.output, "");
    }

    /// Imports the capture, with the time stamps of the sample.
    std::string import_capture() {
        const trace_case original = read_sample(GetParam());
        std::uint32_t start = 0;
        for (const cases::case_record& record : original.records) {
            if ((record.flags & 0x80) == 0) {
                start = record.timestamp_ms;
                break;
            }
        }
        std::vector<std::string> arguments = {"import", capture, "--start", std::to_string(start), "-i", INTERFACE};
        arguments.insert(arguments.end(), GetParam().import_options.begin(), GetParam().import_options.end());
        const outcome imported = run_sim(arguments);
        EXPECT_EQ(imported.status, 0) << imported.errors;
        EXPECT_EQ(imported.errors, "");
        return imported.output;
    }
};

TEST_P(samples, come_back_from_a_capture_as_they_were) {
    ASSERT_NO_FATAL_FAILURE(export_sample());
    const std::string wanted = shown(text_that_can_be_captured(GetParam()), GetParam().viewer_options);
    EXPECT_THAT(wanted, HasSubstr("DATA["));
    EXPECT_EQ(shown(import_capture(), GetParam().viewer_options), wanted);
    write_file(capture, rewritten(capture));
    EXPECT_EQ(shown(import_capture(), GetParam().viewer_options), wanted) << "written by tcpdump";
}

/// The sample as ifwatch-extcap captures it: with its cells, access points and events of the line.
std::string whole_text(const sample& wanted, std::uint32_t& start) {
    trace_case original = read_sample(wanted);
    start = original.records.front().timestamp_ms;
    original.interface_index = 1000;
    return case_text(original, wanted.name);
}

TEST_P(samples, come_back_from_what_the_plugin_captured_with_all_that_they_had) {
    std::uint32_t start = 0;
    const std::string whole = whole_text(GetParam(), start);
    const std::string file = directory.write("capture.pcapng", "");
    const simulator router({whole});
    const outcome captured =
        run({.program = IFWATCH_EXTCAP_PROGRAM,
             .arguments = {"--capture", "--extcap-interface", "ifwatch", "--fifo", file, "--host", "127.0.0.1",
                           "--port", std::to_string(router.port()), "--interface", INTERFACE},
             .environment = {{"TRACE_PWD", "admin"}},
             .timeout = PATIENCE});
    ASSERT_EQ(captured.status, 0) << captured.errors;
    const outcome imported = run({.program = IFWATCH_SIM_PROGRAM,
                                  .arguments = {"import", "-", "--start", std::to_string(start), "-i", INTERFACE},
                                  .input = text_of(file)});
    EXPECT_EQ(imported.errors, "");
    EXPECT_TRUE(imported.output.starts_with("# standard input: link type ")) << imported.output.substr(0, 100);
    EXPECT_EQ(shown(imported.output, GetParam().viewer_options), shown(whole, GetParam().viewer_options));
}

const sample SAMPLES[] = {
    {"isdn-call", {"-2", "-3"}, {}, {}},
    {"ppp-dialin", {"-p", "-i"}, {}, {}},
    {"x25-session", {"-2", "-3", "-t"}, {}, {}},
    {"fax-g3", {"-F"}, {"-l", "204"}, {}},
    {"lan-session", {"-2", "-i"}, {}, {"-s", "02:00:01:01:02:03"}},
    {"token-ring", {"-2", "-i"}, {}, {"-s", "02:00:01:01:02:03"}},
    {"tunnel", {"-i"}, {}, {"--sent", "10.0.0.2"}},
    {"dsl-pppoe", {"-2", "-p", "-i"}, {}, {}, 3},
    {"atm-old", {"-2", "-i"}, {}, {"--channel", "2"}},
};

std::string name_of(const testing::TestParamInfo<sample>& info) {
    std::string name = info.param.name;
    std::ranges::replace(name, '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(import, samples, testing::ValuesIn(SAMPLES), name_of);

// 192.0.2.1 sends an echo request to 192.0.2.2.
constexpr const char* LAN_CASE =
    "channel 6\n"
    "record R 1000\n"
    "  02 00 00 00 00 02 02 00 00 00 00 01 08 00\n"
    "  45 00 00 1C 00 01 00 00 40 01 F6 DE C0 00 02 01 C0 00 02 02 08 00 F7 FD 00 02 00 00\n"
    "record R 61250\n"
    "  02 00 00 00 00 02 02 00 00 00 00 01 08 00\n"
    "  45 00 00 1C 00 01 00 00 40 01 F6 DE C0 00 02 01 C0 00 02 02 08 00 F7 FD 00 02 00 00\n";
constexpr const char* LAN_SHOWN =
    "000000.000 R DATA[0042]   \n"
    "\t     IP-Packet from 192.0.2.1 to 192.0.2.2  protocol ICMP \n"
    "\t     ICMP-Message , type echo request\n"
    "\n"
    "000060.250 R DATA[0042]   \n"
    "\t     IP-Packet from 192.0.2.1 to 192.0.2.2  protocol ICMP \n"
    "\t     ICMP-Message , type echo request\n"
    "\n";

TEST(import_capture, takes_what_the_pcap_sink_wrote) {
    const temp_directory directory;
    const std::string capture = directory.file("sink.pcap");
    const outcome traced = simulator({LAN_CASE}).watch({"--pcap-file", "--ofile=" + capture});
    ASSERT_EQ(traced.status, 0) << traced.errors;
    const outcome imported = run_sim({"import", capture});
    EXPECT_EQ(imported.errors, "");
    EXPECT_TRUE(
        imported.output.starts_with("# sink.pcap: link type 1 (Ethernet)\n"
                                    "channel 6\n"
                                    "options -2 -p -i -N\n"
                                    "record R 0\n"
                                    "  02 00 00 00 00 02 02 00 00 00 00 01 08 00 45 00\n"))
        << imported.output;
    EXPECT_EQ(shown(imported.output, {"-i"}), LAN_SHOWN);
}

/// It is written with link type 0, which says nothing of what is in it.
TEST(import_capture, a_d_channel_of_the_pcap_sink_has_to_be_named) {
    const temp_directory directory;
    const std::string capture = directory.file("sink.pcap");
    const std::string text = "channel 0\nrecord R 0\n  02 01 7F\n";
    ASSERT_EQ(simulator({text}).watch({"--pcap-file", "--ofile=" + capture}).status, 0);
    const outcome refused = run_sim({"import", capture});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.errors,
              "ifwatch-sim: " + capture + ": link type 0 fits no channel type; name one with --channel\n");
    const outcome imported = run_sim({"import", capture, "--channel", "0"});
    EXPECT_EQ(imported.errors, "");
    EXPECT_EQ(shown(imported.output, {"-2"}), shown(text, {"-2"}));
}

/// A datagram socket of the loopback that sends to itself.
class own_datagrams {
public:
    own_datagrams() : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address_;
        // The socket calls take every kind of address as a sockaddr.
        auto* const generic = reinterpret_cast<sockaddr*>(&address_);
        EXPECT_EQ(bind(socket_, generic, length), 0);
        EXPECT_EQ(getsockname(socket_, generic, &length), 0);
    }
    ~own_datagrams() { close(socket_); }
    own_datagrams(const own_datagrams&) = delete;
    own_datagrams& operator=(const own_datagrams&) = delete;
    own_datagrams(own_datagrams&&) = delete;
    own_datagrams& operator=(own_datagrams&&) = delete;

    [[nodiscard]] std::string port() const { return std::to_string(ntohs(address_.sin_port)); }

    [[nodiscard]] bool send(const std::string& text) const {
        const auto* const generic = reinterpret_cast<const sockaddr*>(&address_);
        return sendto(socket_, text.data(), text.size(), 0, generic, sizeof address_) ==
               static_cast<ssize_t>(text.size());
    }

private:
    int socket_;
    sockaddr_in address_{};
};

TEST(import_capture, takes_a_live_capture_of_tcpdump) {
    const own_datagrams datagrams;
    process tcpdump({.program = "tcpdump",
                     .arguments = {"-i", "lo", "-U", "--immediate-mode", "-c", "1", "-w", "-", "udp", "and", "dst",
                                   "port", datagrams.port()},
                     .timeout = PATIENCE});
    if (!tcpdump.wait_for_errors("listening on lo")) {
        GTEST_SKIP() << "tcpdump may not capture here: " << tcpdump.errors();
    }
    ASSERT_TRUE(datagrams.send("over the loopback"));
    const outcome captured = tcpdump.wait();
    ASSERT_EQ(captured.status, 0) << captured.errors;
    const temp_directory directory;
    const outcome imported = run_sim({"import", directory.write("live.pcap", captured.output), "--sent", "127.0.0.1"});
    ASSERT_EQ(imported.status, 0) << imported.errors;
    EXPECT_EQ(shown(imported.output, {"-i"}),
              "000000.000 X DATA[0059]   \n"
              "\t     IP-Packet from 127.0.0.1 to 127.0.0.1  protocol UDP \n"
              "\t     UDP-Message, sourceport " +
                  datagrams.port() + " destinationport " + datagrams.port() + "\n\n");
}

TEST(import_capture, an_output_file_appears_whole_or_not_at_all) {
    const temp_directory directory;
    const std::string capture = directory.write("good.pcap", pcap_octets().header(203).text());
    const std::string cut = directory.write("cut.pcap", pcap_octets().header(203).word(0).text());
    const std::string output = directory.write("out.case", "as it was");
    EXPECT_EQ(run_sim({"import", cut, "-o", output}).status, 2);
    EXPECT_EQ(text_of(output), "as it was");
    EXPECT_EQ(run_sim({"import", cut, "-o", directory.file("none.case")}).status, 2);
    EXPECT_FALSE(std::filesystem::exists(directory.file("none.case")));
    EXPECT_EQ(run_sim({"import", capture, "--output", output}).status, 0);
    EXPECT_EQ(text_of(output), "# good.pcap: link type 203 (LAPD)\nchannel 0\noptions -2 -3\n# 0 packets\n");
    std::size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(directory.path())) {
        ++files;
    }
    EXPECT_EQ(files, 3U) << "nothing unfinished is left behind";
}

TEST(import_capture, an_output_file_may_be_a_device_or_the_input) {
    const temp_directory directory;
    const std::string path = directory.write("good", pcap_octets().header(203).text());
    EXPECT_EQ(run_sim({"import", path, "-o", "/dev/null"}).status, 0);
    struct stat entry {};
    ASSERT_EQ(stat("/dev/null", &entry), 0);
    EXPECT_TRUE(S_ISCHR(entry.st_mode));
    EXPECT_EQ(run_sim({"import", path, "-o", path}).status, 0);
    EXPECT_EQ(text_of(path), "# good: link type 203 (LAPD)\nchannel 0\noptions -2 -3\n# 0 packets\n");
    EXPECT_EQ(run_sim({"import", path, "-o", "-"}).status, 2) << "it is a case now";
}

struct refused_line {
    std::vector<std::string> arguments;
    std::string error;
};

void expect_refusals(std::span<const refused_line> mistakes) {
    for (const auto& [arguments, error] : mistakes) {
        const outcome refused = run_sim(arguments);
        EXPECT_EQ(refused.status, 2) << error;
        EXPECT_EQ(refused.errors, "ifwatch-sim: " + error + "\n");
        EXPECT_EQ(refused.output, "");
    }
}

TEST(import_capture, names_mistakes_in_one_line) {
    const temp_directory directory;
    const std::string lan = directory.write("lan.pcap", pcap_octets().header(1).text());
    const std::string ng = directory.write("new.pcapng", pcap_octets().word(0x0A0D0D0A).text());
    const std::string cut = directory.write("cut.pcap", pcap_octets().header(1).word(0).text());
    const std::string bad = directory.write("bad.case", "channel 6\nrecord Q 1\n");
    const std::string strange = directory.file("a\nb");
    const std::string import_help = " (import --help tells more)";
    const refused_line mistakes[] = {
        {{"import"}, "import: no file given" + import_help},
        {{"import", lan, cut}, "import: one file at a time, not also '" + cut + "'" + import_help},
        {{"import", "--port", "7", lan}, "import: unknown option '--port'" + import_help},
        {{"import", "-xo", lan}, "import: unknown option '-xo'" + import_help},
        {{"import", lan, "-o"}, "import: --output: 1 required argument (a file name) is missing" + import_help},
        {{"import", lan, "--channel", "LAN"},
         "import: --channel takes the code of a channel type from -32768 to 65535, not 'LAN'" + import_help},
        {{"import", lan, "--interface", "-1"},
         "import: --interface takes an interface index from 0 to 2147483647, not '-1'" + import_help},
        {{"import", lan, "--options", "-2 # all"},
         "import: --options takes the options for the viewer, without #, not '-2 # all'" + import_help},
        {{"import", lan, "--sent", "router"},
         "import: --sent takes none, all, a MAC address or an IPv4 address, not 'router'" + import_help},
        {{"import", lan, "--start", "1s"},
         "import: --start takes a time stamp in ms from 0 to 4294967295, not '1s'" + import_help},
        {{"import", lan, "--sent", "1.1.1.1", "-c", "1"},
         lan + ": the address of --sent is not in the frames of channel type 1 (ISDN B-channel)"},
        {{"import", cut}, cut + ": packet 1 at offset 24: its header is cut off: 4 of 16 octets held"},
        {{"import", ng}, ng + ": block at offset 0: its header is cut off: 4 of 8 octets held"},
        {{"import", bad}, bad + ": offset 0: this is no PCAP or pcapng file"},
        {{"import", directory.path()}, directory.path() + ": Is a directory"},
        {{"import", directory.file("none")}, directory.file("none") + ": No such file or directory"},
        {{"import", strange}, directory.path() + "/a\\nb: No such file or directory"},
        {{"import", lan, "-o", directory.file("no/file")}, directory.file("no/file") + ": No such file or directory"},
        {{"import", lan, "-o", "/dev/full"}, "/dev/full: No space left on device"},
    };
    expect_refusals(mistakes);
}

TEST(export_capture, names_mistakes_in_one_line) {
    const temp_directory directory;
    const std::string bad = directory.write("bad.case", "channel 6\nrecord Q 1\n");
    const std::string pabx = directory.write("pabx.case", "\nchannel -2\n");
    const std::string fax = directory.write("fax.case", "channel 1\noptions -F\noptions -p\n");
    const std::string export_help = " (export --help tells more)";
    const refused_line mistakes[] = {
        {{"export"}, "export: no file given" + export_help},
        {{"export", bad, "--sent", "all"}, "export: unknown option '--sent'" + export_help},
        {{"export", bad, "-l", "65536"},
         "export: --link-type takes a link type from 0 to 65535, not '65536'" + export_help},
        {{"export", bad}, bad + ":2: record takes R (received) or X (sent), not 'Q'"},
        {{"export", pabx}, pabx + ":2: no link type fits channel type -2 (PABX); name one with --link-type"},
        {{"export", fax},
         fax + ":1: no link type fits channel type 1 (ISDN B-channel) with these options; name one with --link-type"},
    };
    expect_refusals(mistakes);
}

TEST(import_capture, helps) {
    for (const std::string word : {"import", "export"}) {
        const outcome helped = run_sim({word, "--help"});
        EXPECT_EQ(helped.status, 0);
        EXPECT_EQ(helped.errors, "");
        EXPECT_TRUE(helped.output.starts_with("ifwatch-sim " + word + ": ")) << helped.output;
    }
}

/// The link type in the header of the capture that a case of this text is exported to.
int exported_link_type(const std::string& text) {
    const temp_directory directory;
    const outcome exported = run_sim({"export", directory.write("some.case", text)});
    EXPECT_EQ(exported.status, 0) << exported.errors;
    EXPECT_GE(exported.output.size(), 24U) << text;
    return exported.output.size() < 24 ? -1 : static_cast<unsigned char>(exported.output[20]);
}

TEST(export_capture, goes_by_the_first_options_of_a_b_channel) {
    EXPECT_EQ(exported_link_type("channel 1\n"), 204);
    EXPECT_EQ(exported_link_type("channel 1\noptions -2 -3 -p\n"), 204);
    EXPECT_EQ(exported_link_type("channel 1\noptions -hpi\n"), 204);
    EXPECT_EQ(exported_link_type("channel 1\noptions -D3\noptions -p\n"), 207);
    EXPECT_EQ(exported_link_type("channel 1\noptions -2 -f\n"), 207);
    EXPECT_EQ(exported_link_type("channel 1\noptions -f -c3 -Ip\n"), 107);
    EXPECT_EQ(exported_link_type("channel 23\noptions -h\n"), 204) << "no B-channel";
}

std::string capture_of_sample(const std::string& name) {
    const outcome exported = run_sim({"export", SAMPLES_DIRECTORY + std::string("/") + name + ".case"});
    EXPECT_EQ(exported.status, 0) << exported.errors;
    return exported.output;
}

/// tcpdump and tshark decode no LAPB; tcpdump tells the link type, by its number or by its name.
TEST(export_capture, another_analyser_knows_what_a_b_channel_carries) {
    const temp_directory directory;
    const std::string lapb = directory.write("x25.pcap", capture_of_sample("x25-session"));
    const outcome named = run({.program = "tcpdump", .arguments = {"-n", "-r", lapb}, .timeout = PATIENCE});
    EXPECT_THAT(named.errors, testing::AnyOf(HasSubstr("link-type 207,"), HasSubstr("link-type LAPB")));
    const std::string ppp = directory.write("ppp.pcap", capture_of_sample("ppp-dialin"));
    const outcome read = run({.program = "tshark",
                              .arguments = {"-n", "-r", ppp, "-T", "fields", "-e", "frame.protocols"},
                              .timeout = PATIENCE});
    EXPECT_EQ(read.status, 0) << read.errors;
    EXPECT_THAT(read.output, HasSubstr("ppp:mp:ip:tcp:http"));
}

TEST(export_capture, counts_what_is_no_frame) {
    const temp_directory directory;
    const std::string path =
        directory.write("dsl.case", "channel 3\nrecord R 0 flags=0x80\n  00*52\nrecord R 1 info=7\n");
    const outcome exported = run_sim({"export", path});
    EXPECT_EQ(exported.status, 0);
    EXPECT_EQ(exported.errors, "ifwatch-sim: " + path + ": 2 of 2 records left out, which are no frames\n");
    EXPECT_EQ(exported.output.size(), 24U);
}

}  // namespace
}  // namespace ifwatch::test
