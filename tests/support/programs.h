#pragma once

namespace ifwatch::test {

// Where the programs under test were built, and the samples are.
extern const char* const IFWATCH_PROGRAM;
extern const char* const IFWATCH_SIM_PROGRAM;
extern const char* const IFWATCH_EXTCAP_PROGRAM;
extern const char* const IFWATCH_READ_PROGRAM;
extern const char* const GOLDEN_RUNNER_PROGRAM;
extern const char* const SAMPLES_DIRECTORY;

// The cases that the demo serves.
extern const char* const SAMPLES_DIRECTORY;

}  // namespace ifwatch::test
