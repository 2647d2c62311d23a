#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "child.h"
#include "figures.h"

namespace ifwatch::bench {

namespace {

constexpr int STARTS = 41;
constexpr unsigned long FEW_RECORDS = 1000;
constexpr unsigned long MANY_RECORDS = 10000000;
constexpr double KIBIBYTES_PER_MEGABYTE = 1e6 / 1024;

/// Milliseconds from the start of the tracer to the first octet of a record, a login in between.
double time_to_first_record(const workplace& place, const server& simulator) {
    pipe_pair output;
    const auto before = std::chrono::steady_clock::now();
    const pid_t child = start({place.program("ifwatch"), "--pwd=admin", "-P" + simulator.port(), "127.0.0.1", "1000"},
                              {.output = output.writing()});
    output.close_writing();
    char first = '\0';
    const bool came = read(output.reading(), &first, 1) == 1;
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - before;
    drain(output.reading());
    return wait_for(child).status == 0 && came ? taken.count() : 1e9;
}

/// The memory of the tracer once it waits for more: its system has all records, and it sleeps in no other place.
long memory_when_idle(pid_t child, const server& feeder) {
    static_cast<void>(feeder.line());
    const long kibibytes = memory_asleep(child);
    feeder.go_on();
    return kibibytes;
}

}  // namespace

void measure_start(const workplace& place, figures& rows) {
    const server simulator({place.program("ifwatch-sim"), "--port", "0", "samples/lan-session.case"});
    std::vector<double> times;
    times.reserve(STARTS);
    for (int i = 0; i < STARTS; ++i) {
        times.push_back(time_to_first_record(place, simulator));
    }
    rows.push_back(row_below("start to first record", " ms", median(times), 5));
    rows.push_back({.name = "the quickest start of " + std::to_string(STARTS),
                    .value = decimal(*std::ranges::min_element(times), 2) + " ms"});
}

void measure_memory(const workplace& place, figures& rows) {
    const server feeder(
        {place.program("trace_feeder"), "--pause", std::to_string(FEW_RECORDS), std::to_string(MANY_RECORDS), "mixed"});
    const pid_t child =
        start({place.program("ifwatch"), "-V1", "-P" + feeder.port(), "-h", "-i", "127.0.0.1", "1000"}, {});
    const long few = memory_when_idle(child, feeder);
    const long many = memory_when_idle(child, feeder);
    wait_for(child);
    rows.push_back(
        row_below("memory after 10,000,000 records", " MB", static_cast<double>(many) / KIBIBYTES_PER_MEGABYTE, 6));
    rows.push_back({.name = "memory after 1,000 and 10,000,000",
                    .value = std::to_string(few) + ", " + std::to_string(many) + " KiB",
                    .goal = "equal",
                    .met = few == many ? "yes" : "no"});
}

}  // namespace ifwatch::bench
