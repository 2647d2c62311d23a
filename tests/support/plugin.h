#pragma once

#include <string>
#include <vector>

#include "support/process.h"

namespace ifwatch::test {

/// The real ifwatch-extcap, called as by an analyser.
command plugin(std::vector<std::string> arguments, const std::string& password = "admin");

/// What it is called with for a capture of the router on this port of the loopback into `fifo`.
std::vector<std::string> capture_arguments(int port, const std::string& fifo, const std::vector<std::string>& more = {},
                                           const std::string& interfaces = "1000");

/// What it is called with for the router's list of interfaces.
command reload(int port);

/// A port of the loopback that nobody listens on.
int free_port();

}  // namespace ifwatch::test
