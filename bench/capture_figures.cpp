// The analyser's plug-in at full speed, with one interface and with many: processor time of whole runs without what
// opening the sessions takes, and the memory that an interface adds.

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "child.h"
#include "figures.h"

namespace ifwatch::bench {

namespace {

constexpr unsigned RECORDS = 640000;  // of all interfaces together
constexpr unsigned INTERFACES = 64;
constexpr int ROUNDS = 15;
constexpr double GOAL_OF_MANY = 1.15;
constexpr double GOAL_OF_MEMORY = 64;

using command = std::vector<std::string>;

command serve(const workplace& place, unsigned interfaces, unsigned records) {
    return {place.program("trace_feeder"), "--clients", std::to_string(interfaces), std::to_string(records), "mixed"};
}

command capture(const workplace& place, const server& feeder, unsigned interfaces) {
    std::string indexes = "1000";
    for (unsigned i = 1; i < interfaces; ++i) {
        indexes.append(",").append(std::to_string(1000 + i));
    }
    return {place.program("ifwatch-extcap"),
            "--capture",
            "--extcap-interface",
            "ifwatch",
            "--fifo",
            "/dev/stdout",
            "--host",
            "127.0.0.1",
            "--port",
            feeder.port(),
            "--interface",
            indexes};
}

/// Reads what the child writes, as fast as it comes. Returns the most memory that it had, in KiB.
long drain_and_watch(int fd, pid_t child) {
    constexpr int OCCASIONALLY = 100;
    std::vector<char> buffer(1 << 17);
    long most = 0;
    for (int count = 0; read(fd, buffer.data(), buffer.size()) > 0; ++count) {
        most = count % OCCASIONALLY == 0 ? std::max(most, most_memory(child)) : most;
    }
    return most;
}

struct watched_run {
    double processor_seconds;
    long most_memory_kib;
};

watched_run run(const command& what) {
    pipe_pair output;
    const pid_t child = start(what, {.output = output.writing()});
    output.close_writing();
    const long memory = drain_and_watch(output.reading(), child);
    const ended_child ended = wait_for(child);
    if (child < 0 || ended.status != 0) {
        static_cast<void>(std::fprintf(stderr, "measure: %s failed\n", what[0].c_str()));
        std::exit(1);
    }
    return {.processor_seconds = ended.processor_seconds, .most_memory_kib = memory};
}

/// A feeder of all records and one of a record for each interface, which costs what opening the sessions does.
class captured {
public:
    captured(const workplace& place, unsigned interfaces)
        : all_(serve(place, interfaces, RECORDS / interfaces)),
          none_(serve(place, interfaces, 1)),
          whole_(capture(place, all_, interfaces)),
          opening_(capture(place, none_, interfaces)) {}

    /// Microseconds a record.
    double take_turn() {
        const watched_run ended = run(whole_);
        memory_.push_back(static_cast<double>(ended.most_memory_kib));
        times_.push_back((ended.processor_seconds - run(opening_).processor_seconds) * 1e6 / RECORDS);
        return times_.back();
    }
    [[nodiscard]] double time() const { return median(times_); }
    [[nodiscard]] double memory() const { return median(memory_); }

private:
    server all_;
    server none_;
    command whole_;
    command opening_;
    std::vector<double> times_;
    std::vector<double> memory_;
};

}  // namespace

void measure_captures(const workplace& place, figures& rows) {
    setenv("TRACE_PWD", "none", 1);  // for a feeder that asks for none
    captured one(place, 1);
    captured many(place, INTERFACES);
    std::vector<double> ratios;
    for (int round = 0; round < ROUNDS; ++round) {
        const double alone = one.take_turn();
        ratios.push_back(many.take_turn() / alone);
    }
    rows.push_back({.name = "record of one interface captured", .value = decimal(one.time(), 2) + " us"});
    rows.push_back(
        row_against("record of 64 interfaces captured", " us", many.time(), one.time(), GOAL_OF_MANY, median(ratios)));
    rows.push_back(row_below("memory for a further interface", " KiB",
                             (many.memory() - one.memory()) / (INTERFACES - 1), GOAL_OF_MEMORY));
}

}  // namespace ifwatch::bench
