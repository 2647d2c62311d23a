#pragma once

#include <string>
#include <vector>

#include "extcap/options.h"
#include "trace/connect.h"

namespace ifwatch {
struct display_context;
}

namespace ifwatch::extcap {

// Sessions with the router whose reports do not reach the error stream: there the analyser takes every word for an
// error.

/// Why something failed, for one line, and the exit status that goes with it.
struct failure {
    int status = 1;
    std::string text;
};

/// Opens a trace of the chosen interface, with the filter and the line that the options select. Returns the socket,
/// with the channel type in `context`, or -1.
int open_trace(const plugin_options& options, display_context& context, failure& why);

/// Asks the router for its interfaces.
bool list_interfaces(const plugin_options& options, std::vector<listed_interface>& listed, failure& why);

/// What was reported since the last call, as one line without what only tells progress.
std::string take_reports();

}  // namespace ifwatch::extcap
