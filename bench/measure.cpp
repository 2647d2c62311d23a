// Takes every figure that has a goal and prints one line for each, its columns divided by tabs: figure, value, goal,
// floor, ratio, met.
//
//     measure PROGRAMS SCRATCH [PART...]      the parts: streams, dchannel, start, memory, read, captures, growth
//
// PROGRAMS is the folder of ifwatch and of the programs it is measured with; in SCRATCH files are left, among them
// growth.tsv, the data of the picture. It runs from the root of the project, whose samples it serves.

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <span>
#include <string_view>

#include "figures.h"

namespace {

using namespace ifwatch::bench;

void measure_growth_in(const workplace& place, figures& rows) { measure_growth(place.file("growth.tsv"), rows); }

struct part {
    std::string_view name;
    void (*measure)(const workplace& place, figures& rows);
};
constexpr part PARTS[] = {
    {"streams", measure_streams},  {"dchannel", measure_dchannel}, {"start", measure_start},
    {"memory", measure_memory},    {"read", measure_read},         {"captures", measure_captures},
    {"growth", measure_growth_in},
};

void print(const figure& row) {
    static_cast<void>(std::printf("%s\t%s\t%s\t%s\t%s\t%s\n", row.name.c_str(), row.value.c_str(), row.goal.c_str(),
                                  row.floor.c_str(), row.ratio.c_str(), row.met.c_str()));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        static_cast<void>(std::fputs("usage: measure PROGRAMS SCRATCH [PART...]\n", stderr));
        return 2;
    }
    const workplace place{.programs = argv[1], .scratch = argv[2]};
    const auto asked = std::span(argv, static_cast<std::size_t>(argc)).subspan(3);
    static_cast<void>(std::puts("figure\tvalue\tgoal\tfloor\tratio\tmet"));
    for (const part& each : PARTS) {
        if (!asked.empty() && std::ranges::find(asked, each.name) == asked.end()) {
            continue;
        }
        static_cast<void>(std::fprintf(stderr, "measuring %s\n", each.name.data()));
        figures rows;
        each.measure(place, rows);
        std::ranges::for_each(rows, print);
        static_cast<void>(std::fflush(stdout));
    }
    return 0;
}
