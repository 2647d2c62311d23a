// Processor time of whole runs over loopback: what is compared takes turns, and the median of the rounds counts.

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <string>
#include <vector>

#include "child.h"
#include "figures.h"
#include "runs.h"

namespace ifwatch::bench {

namespace {

constexpr unsigned RECORDS = 200000;
constexpr int ROUNDS = 31;
constexpr unsigned RECORDS_OF_OTHERS = 50000;
constexpr double GOAL_OF_TEXT = 1.0 / 6;
constexpr const char* MICROSECONDS = " us";
constexpr const char* NANOSECONDS = " ns";

command serve(const workplace& place, const std::string& source) {
    return {place.program("trace_feeder"), std::to_string(RECORDS), source};
}

command trace(const workplace& place, const server& feeder, const command& options) {
    return command{place.program("ifwatch"), "-V1", "-P" + feeder.port()} + options + command{"127.0.0.1", "1000"};
}

/// `sizes` is the name of the file that record_writes has left.
command floor_of(const workplace& place, const server& feeder, const char* sizes) {
    return {place.program("floor_reader"), feeder.port(), place.file(sizes)};
}

/// Runs the tracer with a standard output that keeps its writes apart, and leaves their sizes in the file `name`.
/// Returns how many octets they were.
std::size_t record_writes(const workplace& place, const command& what, const char* name) {
    std::array<int, 2> ends{};
    stop_unless(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) == 0, what);
    const pid_t child = start(what, {.output = ends[1]});
    close(ends[1]);
    std::vector<std::uint32_t> sizes;
    std::vector<char> buffer(1 << 17);
    for (ssize_t count = 0; (count = read(ends[0], buffer.data(), buffer.size())) > 0;) {
        sizes.push_back(static_cast<std::uint32_t>(count));
    }
    close(ends[0]);
    stop_unless(wait_for(child).status == 0 && sizes.size() == RECORDS, what);
    std::FILE* const file = std::fopen(place.file(name).c_str(), "we");
    stop_unless(file != nullptr && std::fwrite(sizes.data(), sizeof sizes[0], sizes.size(), file) == sizes.size() &&
                    std::fclose(file) == 0,
                what);
    return std::accumulate(sizes.begin(), sizes.end(), std::size_t{0});
}

struct pair_of_times {
    double program;
    double floor;
    double ratio;  // the middle one of those of the rounds: what comes and goes on the machine meets both of a round
};

/// Medians of both in microseconds a record.
template <class Run>
pair_of_times take_turns(const command& program, const command& floor, Run run_one) {
    std::vector<double> times;
    std::vector<double> floors;
    std::vector<double> ratios;
    for (int round = 0; round < ROUNDS; ++round) {
        floors.push_back(run_one(floor) * 1e6 / RECORDS);
        times.push_back(run_one(program) * 1e6 / RECORDS);
        ratios.push_back(times.back() / floors.back());
    }
    return {median(times), median(floors), median(ratios)};
}

void measure_sinks(const workplace& place, const server& feeder, figures& rows) {
    const command program = trace(place, feeder, {"-h", "-i"});
    const command floor = floor_of(place, feeder, "sizes.lan");
    const std::size_t text = record_writes(place, program, "sizes.lan");
    const auto null = take_turns(program, floor, [](const command& what) { return run(what); });
    rows.push_back(row_against("LAN frame into /dev/null", MICROSECONDS, null.program, null.floor, 1.5, null.ratio));
    const auto pipe = take_turns(program, floor, [](const command& what) { return run_into_pipe(what); });
    rows.push_back(row_against("LAN frame into a pipe", MICROSECONDS, pipe.program, pipe.floor, 1.3, pipe.ratio));
    rows.push_back({.name = "octets of text a LAN frame", .value = std::to_string(text / RECORDS)});
    const auto file =
        take_turns(trace(place, feeder, {"--pcap-file", "--ofile=" + place.file("frames.pcap")}),
                   floor + command{place.file("floor.pcap")}, [](const command& what) { return run(what); });
    rows.push_back(row_against("LAN frame into a PCAP file", MICROSECONDS, file.program, file.floor, 1.2, file.ratio));
}

struct other_tracer {
    const char* name;
    int rounds;
    double goal;
    bool text_has_goal;
    command options;
};

/// Against a program that reads the PCAP file which measure_sinks has left. Its start, taken from an empty file, does
/// not count.
void measure_other(const workplace& place, const server& feeder, const other_tracer& other, figures& rows) {
    const command program = trace(place, feeder, {"-h", "-i"});
    const command all = command{other.name, "-c", std::to_string(RECORDS_OF_OTHERS)} + other.options +
                        command{"-r", place.file("frames.pcap")};
    const command none = command{other.name} + other.options + command{"-r", place.file("empty.pcap")};
    std::size_t text = 0;
    std::size_t other_text = 0;
    run_into_pipe(program, text);
    run_into_pipe(all, other_text);
    std::vector<double> times;
    std::vector<double> other_times;
    std::vector<double> ratios;
    for (int round = 0; round < other.rounds; ++round) {
        times.push_back(run(program));
        other_times.push_back(run(all) - run(none));
        ratios.push_back(times.back() / other_times.back());
    }
    const std::string name = other.name;
    const double frame = median(times) * 1e6 / RECORDS;
    const double other_frame = median(other_times) * 1e6 / RECORDS_OF_OTHERS;
    rows.push_back(row_against(("LAN frame against " + name).c_str(), MICROSECONDS, frame, other_frame, other.goal,
                               median(ratios) * RECORDS_OF_OTHERS / RECORDS));
    const double octet = median(times) * 1e9 / static_cast<double>(text);
    const double other_octet = median(other_times) * 1e9 / static_cast<double>(other_text);
    figure of_text =
        row_against(("octet of text against " + name).c_str(), NANOSECONDS, octet, other_octet, GOAL_OF_TEXT,
                    median(ratios) * static_cast<double>(other_text) / static_cast<double>(text));
    if (!other.text_has_goal) {
        of_text.goal = of_text.met = "";
    }
    rows.push_back(of_text);
}

/// A PCAP file of the same kind without a frame.
bool write_empty_pcap(const workplace& place) {
    std::array<char, 24> header{};
    std::FILE* const from = std::fopen(place.file("frames.pcap").c_str(), "re");
    std::FILE* const to = std::fopen(place.file("empty.pcap").c_str(), "we");
    return from != nullptr && to != nullptr && std::fread(header.data(), header.size(), 1, from) == 1 &&
           std::fwrite(header.data(), header.size(), 1, to) == 1 && std::fclose(from) == 0 && std::fclose(to) == 0;
}

struct call_trace {
    std::string name;
    const char* source;
    const char* sizes;
    bool has_goal;
};

/// The whole program for each octet of text it prints, and how much of that is more than the floor.
void measure_calls(const workplace& place, const call_trace& calls, figures& rows) {
    const server feeder(serve(place, calls.source));
    const command program = trace(place, feeder, {"-2", "-3", "-h"});
    const auto text = static_cast<double>(record_writes(place, program, calls.sizes)) / RECORDS;
    const auto times =
        take_turns(program, floor_of(place, feeder, calls.sizes), [](const command& what) { return run(what); });
    figure whole = row_below((calls.name + ", an octet of text").c_str(), NANOSECONDS, times.program * 1e3 / text, 3);
    whole.floor = decimal(times.floor * 1e3 / text, 2) + NANOSECONDS;
    whole.ratio = decimal(times.ratio, 2);
    if (!calls.has_goal) {
        whole.goal = whole.met = "";
    }
    rows.push_back(whole);
    rows.push_back({.name = calls.name + ", above the floor",
                    .value = decimal((times.program - times.floor) * 1e3 / text, 2) + NANOSECONDS});
    rows.push_back({.name = calls.name + ", text of a record", .value = decimal(text, 0) + " octets"});
}

}  // namespace

void measure_streams(const workplace& place, figures& rows) {
    const server feeder(serve(place, "mixed"));
    measure_sinks(place, feeder, rows);
    if (!write_empty_pcap(place)) {
        std::perror("measure: empty.pcap");
        return;
    }
    measure_other(place, feeder, {"tcpdump", ROUNDS, 1.0 / 12, true, {"-nn", "-v", "-x"}}, rows);
    measure_other(place, feeder, {"tshark", 3, 1.0 / 25, false, {"-n", "-V", "-x"}}, rows);
}

void measure_dchannel(const workplace& place, figures& rows) {
    measure_calls(place, {"D-channel, all elements", "tests/golden/isdn/elements.case", "sizes.elements", true}, rows);
    measure_calls(place, {"D-channel, a call", "samples/isdn-call.case", "sizes.call", false}, rows);
}

}  // namespace ifwatch::bench
