#pragma once

#include <string>
#include <vector>

#include "sim/setup.h"

namespace ifwatch::sim {

/// What the command line asks for.
struct sim_options {
    daemon_setup setup;
    std::vector<std::string> cases;  // paths of case files
    bool help = false;
};

/// Parses the command line. False with a one-line `error` when it cannot be followed.
bool parse_options(int argc, char** argv, sim_options& options, std::string& error);

/// The text of --help.
[[nodiscard]] const char* help_text();

}  // namespace ifwatch::sim
