// Captures read back: processor time of whole runs of ifwatch-read, and its memory.

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "base/byte_order.h"
#include "base/print.h"
#include "child.h"
#include "display/display_context.h"
#include "display/mode_flags.h"
#include "display/record_display.h"
#include "figures.h"
#include "runs.h"
#include "trace/record_stream.h"
#include "traffic.h"

namespace ifwatch::bench {

namespace {

constexpr unsigned PACKETS = 200000;
constexpr unsigned PACKETS_OF_OTHERS = 50000;
constexpr int ROUNDS = 31;
constexpr int MEMORY_ROUNDS = 3;
constexpr int TURNS = 3;  // of all lengths: the machine is not as quick at one time as at another
constexpr unsigned long FEW_PACKETS = 10000;
constexpr unsigned long MANY_PACKETS = 10000000;
constexpr double KIBIBYTES_PER_MEGABYTE = 1e6 / 1024;
constexpr double FLAT = 1.1;  // times the least so far is no growth
constexpr std::uint32_t SHOWN = MODE_HEX | MODE_IP;
constexpr const char* MICROSECONDS = " us";

command show(const workplace& place, const std::string& file) {
    return {place.program("ifwatch-read"), "-h", "-i", file};
}

command feed(const workplace& place, unsigned long packets) {
    return {place.program("capture_feeder"), std::to_string(packets), "mixed"};
}

/// A capture of so many packets, left in a file.
void write_capture(const workplace& place, unsigned packets, const char* name) {
    const int file = open(place.file(name).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    static_cast<void>(run(feed(place, packets), file));
    close(file);
}

struct other_reader {
    const char* name;
    int rounds;
    double goal;
    command options;
};

/// The start of the other, taken from an empty capture, does not count; that of ifwatch-read does.
void measure_other(const workplace& place, const other_reader& other, figures& rows) {
    const command program = show(place, place.file("mixed.pcap"));
    const command all = command{other.name, "-c", std::to_string(PACKETS_OF_OTHERS)} + other.options +
                        command{"-r", place.file("mixed.pcap")};
    const command none = command{other.name} + other.options + command{"-r", place.file("none.pcap")};
    std::vector<double> times;
    std::vector<double> other_times;
    std::vector<double> ratios;
    for (int round = 0; round < other.rounds; ++round) {
        times.push_back(run(program) * 1e6 / PACKETS);
        other_times.push_back((run(all) - run(none)) * 1e6 / PACKETS_OF_OTHERS);
        ratios.push_back(times.back() / other_times.back());
    }
    rows.push_back(row_against((std::string("captured LAN frame against ") + other.name).c_str(), MICROSECONDS,
                               median(times), median(other_times), other.goal, median(ratios)));
}

long discard(const char* /*data*/, std::size_t length) { return static_cast<long>(length); }

double processor_seconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

/// Microseconds that each record of the block takes when it is shown where it lies.
double show_from_memory(traffic& block, display_context& context) {
    record_header header{.timestamp_ms = 1};
    context.header = &header;
    const double before = processor_seconds();
    for (unsigned i = 0; i < PACKETS; ++i) {
        const auto record = std::span(block.octets).subspan(block.starts[i % block.starts.size()]);
        const std::size_t length = load_be16(record.data()) - std::size_t{RECORD_HEADER_LENGTH};
        ++header.sequence;
        context.original_length = static_cast<std::uint32_t>(length);
        context.payload = octets_of(record.subspan(RECORD_HEADER_LENGTH, length));
        display_record(context);
    }
    flush_output();
    return (processor_seconds() - before) * 1e6 / PACKETS;
}

void measure_display(const workplace& place, figures& rows) {
    traffic block;
    std::string error;
    stop_unless(find_traffic("mixed", block, error), {"mixed"});
    const auto context = std::make_unique<display_context>();
    std::vector<double> times;
    std::vector<double> memory_times;
    std::vector<double> ratios;
    set_output_writer(discard);
    for (int round = 0; round < ROUNDS; ++round) {
        init_display_context(*context);
        context->channel_type = block.channel_type;
        context->mode_flags = SHOWN;
        memory_times.push_back(show_from_memory(block, *context));
        times.push_back(run(show(place, place.file("mixed.pcap"))) * 1e6 / PACKETS);
        ratios.push_back(times.back() / memory_times.back());
    }
    set_output_writer(nullptr);
    rows.push_back(row_against("captured LAN frame against one in memory", MICROSECONDS, median(times),
                               median(memory_times), 1.25, median(ratios)));
}

double octets_of_a_packet(const workplace& place) {
    struct stat file = {};
    stop_unless(stat(place.file("mixed.pcap").c_str(), &file) == 0, {"stat"});
    return static_cast<double>(file.st_size) / PACKETS;
}

/// From a megabyte to four gigabytes through the standard input; the start does not count.
void measure_lengths(const workplace& place, figures& rows) {
    // The quickest runs of each: what took longer was the work of others.
    struct length {
        unsigned long packets;
        int rounds_a_turn;
        double start = std::numeric_limits<double>::max();
        double whole = std::numeric_limits<double>::max();
    };
    const double octets = octets_of_a_packet(place);
    const auto packets_in = [octets](double size) { return static_cast<unsigned long>(size / octets); };
    length lengths[] = {{packets_in(1e6), 34}, {packets_in(3e7), 5}, {packets_in(1e9), 1}, {packets_in(4e9), 1}};
    for (int turn = 0; turn < TURNS; ++turn) {
        for (length& each : lengths) {
            for (int round = 0; round < each.rounds_a_turn; ++round) {
                each.start = std::min(each.start, run_behind(feed(place, 0), show(place, "-")));
                each.whole = std::min(each.whole, run_behind(feed(place, each.packets), show(place, "-")));
            }
        }
    }
    figure row{.name = "captured LAN frame, 1 MB, 30 MB, 1, 4 GB", .goal = "falling or flat", .met = "yes"};
    double least = std::numeric_limits<double>::max();
    for (const length& each : lengths) {
        const double time = (each.whole - each.start) * 1e6 / static_cast<double>(each.packets);
        row.met = time > least * FLAT ? "no" : row.met;
        least = std::min(least, time);
        row.value += (row.value.empty() ? "" : ", ") + decimal(time, 2);
    }
    row.value += MICROSECONDS;
    rows.push_back(row);
}

/// A feeder that halts, and ifwatch-read behind it.
class fed_reader {
public:
    explicit fed_reader(const workplace& place)
        : feeder_(start({place.program("capture_feeder"), "--pause", std::to_string(FEW_PACKETS),
                         std::to_string(MANY_PACKETS), "mixed"},
                        {.input = lines_.reading(), .output = octets_.writing(), .error = said_.writing()})),
          reader_(start(show(place, "-"), {.input = octets_.reading()})) {
        octets_.close_writing();
    }
    ~fed_reader() {
        octets_.close_reading();
        wait_for(feeder_);
        wait_for(reader_);
    }
    fed_reader(const fed_reader&) = delete;
    fed_reader& operator=(const fed_reader&) = delete;
    fed_reader(fed_reader&&) = delete;
    fed_reader& operator=(fed_reader&&) = delete;

    /// The memory once all that was written is read and shown; then more is written.
    [[nodiscard]] long memory_when_idle() const {
        static_cast<void>(read_line(said_.reading()));
        int waiting = 1;
        while (ioctl(octets_.reading(), FIONREAD, &waiting) == 0 && waiting != 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        const long kibibytes = memory_asleep(reader_);
        stop_unless(write(lines_.writing(), "\n", 1) == 1, {"capture_feeder"});
        return kibibytes;
    }

private:
    pipe_pair lines_;
    pipe_pair octets_;
    pipe_pair said_;
    pid_t feeder_;
    pid_t reader_;
};

/// Of several runs the one that differs least: how far a read fills the buffer is a matter of time, and its last page
/// may be touched late. What grows with the packets grows in every run.
void measure_reader_memory(const workplace& place, figures& rows) {
    long few = 0;
    long many = std::numeric_limits<long>::max();
    for (int round = 0; round < MEMORY_ROUNDS; ++round) {
        const fed_reader fed(place);
        const long first = fed.memory_when_idle();
        const long last = fed.memory_when_idle();
        if (std::labs(last - first) < std::labs(many - few)) {
            few = first;
            many = last;
        }
    }
    rows.push_back(row_below("memory after 10,000,000 captured frames", " MB",
                             static_cast<double>(many) / KIBIBYTES_PER_MEGABYTE, 6));
    rows.push_back({.name = "memory after 10,000 and 10,000,000",
                    .value = std::to_string(few) + ", " + std::to_string(many) + " KiB",
                    .goal = "equal",
                    .met = few == many ? "yes" : "no"});
}

}  // namespace

void measure_read(const workplace& place, figures& rows) {
    write_capture(place, PACKETS, "mixed.pcap");
    write_capture(place, 0, "none.pcap");
    measure_other(place, {"tcpdump", ROUNDS, 1.0 / 50, {"-nn", "-v", "-x"}}, rows);
    measure_other(place, {"tshark", 3, 1.0 / 100, {"-n", "-V", "-x"}}, rows);
    measure_display(place, rows);
    measure_lengths(place, rows);
    measure_reader_memory(place, rows);
}

}  // namespace ifwatch::bench
