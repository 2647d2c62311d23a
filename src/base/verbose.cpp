#include "base/verbose.h"

namespace ifwatch {

int verbose_level = 0;  // NOLINT(*-avoid-non-const-global-variables): a run has one

}  // namespace ifwatch
