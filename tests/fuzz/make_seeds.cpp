// Writes the golden cases and samples as inputs for record_fuzz: make_seeds DIRECTORY CASE...
// One seed for each options line of a case, in the form that record_fuzz reads.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "sim/case_file.h"
#include "support/case_options.h"
#include "trace/element.h"

namespace {

using namespace ifwatch;

void append(std::string& seed, std::uint32_t value, int octets) {
    for (int i = octets - 1; i >= 0; --i) {
        seed += static_cast<char>(value >> (8 * i));
    }
}

std::string seed_of(const sim::trace_case& trace, std::uint32_t mode_flags) {
    std::string seed;
    append(seed, swap32(mode_flags), 4);
    append(seed, static_cast<std::uint32_t>(trace.channel_type), 1);
    for (const sim::case_record& record : trace.records) {
        append(seed, record.flags, 1);
        append(seed, record.info, 1);
        append(seed, 0, 1);
        append(seed, static_cast<std::uint32_t>(record.data.size()), 2);
        seed.append(record.data.begin(), record.data.end());
    }
    return seed;
}

bool write_seeds(const std::filesystem::path& directory, const std::filesystem::path& path) {
    sim::trace_case trace;
    std::string error;
    if (!sim::read_case_file(path.string(), trace, error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return false;
    }
    const std::string name = path.parent_path().filename().string() + "-" + path.stem().string();
    for (std::size_t i = 0; i < trace.options.size(); ++i) {
        std::ofstream(directory / (name + "-" + std::to_string(i)), std::ios::binary)
            << seed_of(trace, test::mode_flags_of(trace.options[i]));
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    if (arguments.size() < 3) {
        std::fprintf(stderr, "usage: make_seeds DIRECTORY CASE...\n");
        return 2;
    }
    bool written = true;
    for (std::size_t i = 2; i < arguments.size(); ++i) {
        written = write_seeds(arguments[1], arguments[i]) && written;
    }
    return written ? 0 : 1;
}
