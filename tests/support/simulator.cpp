#include "support/simulator.h"

#include <stdexcept>

#include "support/programs.h"

namespace ifwatch::test {

namespace {

command sim_command(const temp_directory& directory, const std::vector<std::string>& cases,
                    std::vector<std::string> options) {
    options.insert(options.begin(), {"--port", "0"});
    for (std::size_t i = 0; i < cases.size(); ++i) {
        options.push_back(directory.write(std::to_string(i) + ".case", cases[i]));
    }
    return {IFWATCH_SIM_PROGRAM, options};
}

}  // namespace

simulator::simulator(const std::vector<std::string>& cases, std::vector<std::string> options)
    : process_(sim_command(directory_, cases, std::move(options))) {
    const std::string mark = "listening on 127.0.0.1:";
    if (!process_.wait_for_output("\n") || !process_.output().starts_with(mark)) {
        throw std::runtime_error("ifwatch-sim did not start: " + process_.errors());
    }
    port_ = std::stoi(process_.output().substr(mark.size()));
}

command simulator::watching(const std::vector<std::string>& options, const std::vector<std::string>& target) const {
    std::vector<std::string> arguments = {"--pwd=admin", "-P", std::to_string(port_)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.emplace_back("127.0.0.1");
    arguments.insert(arguments.end(), target.begin(), target.end());
    return {IFWATCH_PROGRAM, arguments};
}

outcome simulator::watch(const std::vector<std::string>& options, const std::vector<std::string>& target) const {
    return run(watching(options, target));
}

}  // namespace ifwatch::test
