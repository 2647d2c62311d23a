#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
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

/// Resident memory in KiB, page by page and not as the system estimates it; 0 where it cannot be told.
long resident_memory(pid_t child) {
    std::ifstream file("/proc/" + std::to_string(child) + "/smaps_rollup");
    for (std::string line; std::getline(file, line);) {
        long kibibytes = 0;
        if (std::sscanf(line.c_str(), "Rss: %ld", &kibibytes) == 1) {  // NOLINT(*-err34-c): a number of the system
            return kibibytes;
        }
    }
    return 0;
}

bool sleeps(pid_t child) {
    std::ifstream file("/proc/" + std::to_string(child) + "/stat");
    std::string words;
    std::getline(file, words);
    return words.find(") S ") != std::string::npos;
}

/// The memory of the tracer once it waits for more: its system has all records, and it sleeps in no other place.
long memory_when_idle(pid_t child, const server& feeder) {
    static_cast<void>(feeder.line());
    while (!sleeps(child)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const long kibibytes = resident_memory(child);
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
