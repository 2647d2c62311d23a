#pragma once

#include <string>

#include "extcap/options.h"
#include "extcap/router.h"

namespace ifwatch::extcap {

/// Traces the chosen interface into the FIFO until the router ends the trace, the reader of the FIFO goes or a signal
/// comes. `mistake`, if there is one, is what was wrong with the options: the FIFO is opened even then, since the
/// analyser waits for that. True, or false with the reason.
bool capture(const plugin_options& options, const std::string& mistake, failure& why);

}  // namespace ifwatch::extcap
