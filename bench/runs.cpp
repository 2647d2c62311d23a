#include "runs.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

#include "child.h"

namespace ifwatch::bench {

command operator+(command first, const command& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

void stop_unless(bool done, const command& what) {
    if (!done) {
        static_cast<void>(std::fprintf(stderr, "measure: %s failed\n", what[0].c_str()));
        std::exit(1);
    }
}

double run(const command& what, int output) {
    const pid_t child = start(what, {.output = output});
    stop_unless(child > 0, what);
    const ended_child ended = wait_for(child);
    stop_unless(ended.status == 0, what);
    return ended.processor_seconds;
}

double run_into_pipe(const command& what, std::size_t& text) {
    pipe_pair output;
    std::thread reader([&] { text += drain(output.reading()); });
    const double time = run(what, output.writing());
    output.close_writing();
    reader.join();
    return time;
}

double run_into_pipe(const command& what) {
    std::size_t ignored = 0;
    return run_into_pipe(what, ignored);
}

double run_behind(const command& feeder, const command& what) {
    pipe_pair octets;
    const pid_t feeding = start(feeder, {.output = octets.writing()});
    const pid_t child = start(what, {.input = octets.reading()});
    octets.close_writing();
    octets.close_reading();
    stop_unless(feeding > 0, feeder);
    stop_unless(child > 0, what);
    const ended_child ended = wait_for(child);
    stop_unless(wait_for(feeding).status == 0, feeder);
    stop_unless(ended.status == 0, what);
    return ended.processor_seconds;
}

}  // namespace ifwatch::bench
