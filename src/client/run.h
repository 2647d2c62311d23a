#pragma once

namespace ifwatch {

/// One run of the program, from its command line to its exit status: 0 when a trace has ended; 1 for a usage error, the
/// help, the channel test, a session that could not be set up, a sink that could not be opened, and a failed output.
int run(int argc, char** argv);

}  // namespace ifwatch
