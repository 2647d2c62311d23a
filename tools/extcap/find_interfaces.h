#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "extcap/capture.h"
#include "extcap/options.h"
#include "extcap/router.h"

namespace ifwatch::extcap {

/// What ends a capture from outside.
struct capture_ends {
    int fifo = -1;     // an error on it: its reader has gone
    int stop_fd = -1;  // readable: it is to stop
};

/// Finds the indexes of the interfaces to trace, and tells which of the chosen ones there are not. The router is asked
/// for its list where that takes it, again and again with --reconnect. False when there are none, with the reason; that
/// is empty when the capture was ended from outside.
bool find_interfaces(const plugin_options& options, router_access& access, const capture_ends& ends,
                     const problem_teller& tell, std::vector<std::int32_t>& indexes, std::string& reason);

}  // namespace ifwatch::extcap
