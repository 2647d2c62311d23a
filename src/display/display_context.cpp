#include "display/display_context.h"

namespace ifwatch {

void init_display_context(display_context& context) { context = display_context{}; }

}  // namespace ifwatch
