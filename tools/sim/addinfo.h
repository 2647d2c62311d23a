#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/filter.h"

namespace ifwatch::sim {

/// What a client asks for behind its trace request.
struct client_wishes {
    std::vector<filter_entry> filters;
    std::optional<int> vci;
    std::optional<int> vpi;
    bool line_flag = false;
    bool list = false;   // the interface list
    bool start = false;  // trace data
};

/// Reads the add-info elements up to their end element. Returns what is wrong with them, or an empty text.
std::string read_addinfo(int socket, client_wishes& wishes);

}  // namespace ifwatch::sim
