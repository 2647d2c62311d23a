#include "base/verbose.h"

namespace ifwatch {

int verbose_level = 0;

}  // namespace ifwatch
