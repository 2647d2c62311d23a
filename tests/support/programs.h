#pragma once

namespace ifwatch::test {

// Where the programs under test were built.
extern const char* const IFWATCH_PROGRAM;
extern const char* const IFWATCH_SIM_PROGRAM;
extern const char* const GOLDEN_RUNNER_PROGRAM;

// The cases that the demo serves.
extern const char* const SAMPLES_DIRECTORY;

}  // namespace ifwatch::test
