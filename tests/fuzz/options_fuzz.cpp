// Any command line is either followed or refused. The input is the argument vector, its texts ended by zeros.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/verbose.h"
#include "client/options.h"

namespace {

using namespace ifwatch;

constexpr std::size_t ARGUMENTS_MAXIMUM = 64;

std::vector<std::string> split_arguments(std::string_view input) {
    std::vector<std::string> arguments{"ifwatch"};
    while (!input.empty() && arguments.size() < ARGUMENTS_MAXIMUM) {
        const std::size_t length = std::min(input.find('\0'), input.size());
        arguments.emplace_back(input.substr(0, length));
        input.remove_prefix(std::min(length + 1, input.size()));
    }
    return arguments;
}

}  // namespace

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    // Octets and characters are the same storage; the cast only changes how they are named.
    std::vector<std::string> arguments = split_arguments({reinterpret_cast<const char*>(data), size});
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    verbose_level = 0;
    options settings;
    const command asked = parse_options(static_cast<int>(arguments.size()), pointers.data(), settings);
    const bool connects = asked == command::TRACE || asked == command::CHANNEL_TEST;
    if (connects && (settings.host == nullptr || settings.addinfo.used > ADDINFO_LENGTH)) {
        std::abort();
    }
    return 0;
}
