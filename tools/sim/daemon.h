#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cases/case_file.h"
#include "sim/setup.h"

namespace ifwatch::sim {

/// Gives a case without an interface line the index 1000 when it is the only one, and sorts the cases by index. False
/// when an index is missing or given twice, with a one-line `error` that names file and line.
bool assign_interfaces(std::vector<cases::trace_case>& cases, std::string& error);

/// Opens the listening socket of the setup. Returns it and the port chosen; -1 with a one-line `error`.
int open_listener(const daemon_setup& setup, std::uint16_t& port, std::string& error);

/// Serves clients, each on a thread of its own, until `stop` becomes readable or the trace sessions of the setup have
/// been served; then ends the sessions that are left. Closes nothing that it was given.
void serve_clients(int listener, int stop, const daemon_setup& setup, const std::vector<cases::trace_case>& cases);

}  // namespace ifwatch::sim
