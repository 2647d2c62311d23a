#pragma once

#include <functional>
#include <string>

#include "extcap/options.h"
#include "extcap/router.h"

namespace ifwatch::extcap {

/// Gets one line for a problem that the capture goes on with.
using problem_teller = std::function<void(const std::string& text)>;

/// Traces the chosen interfaces into the FIFO, each in a session of its own, until the router has ended all of them,
/// the reader of the FIFO goes or a signal comes. `mistake`, if there is one, is what was wrong with the options: the
/// FIFO is opened even then, since the analyser waits for that. True, or false with the reason, which is empty when
/// every interface has failed and was told.
bool capture(const plugin_options& options, const std::string& mistake, const problem_teller& tell, failure& why);

}  // namespace ifwatch::extcap
