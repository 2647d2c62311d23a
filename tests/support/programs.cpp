#include "support/programs.h"

namespace ifwatch::test {

const char* const IFWATCH_PROGRAM = PATH_OF_IFWATCH;
const char* const IFWATCH_SIM_PROGRAM = PATH_OF_IFWATCH_SIM;
const char* const IFWATCH_EXTCAP_PROGRAM = PATH_OF_IFWATCH_EXTCAP;
const char* const IFWATCH_READ_PROGRAM = PATH_OF_IFWATCH_READ;
const char* const GOLDEN_RUNNER_PROGRAM = PATH_OF_GOLDEN_RUNNER;
const char* const SAMPLES_DIRECTORY = PATH_OF_SAMPLES;

}  // namespace ifwatch::test
