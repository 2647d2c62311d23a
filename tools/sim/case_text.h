#pragma once

#include <string>
#include <string_view>

#include "sim/case_file.h"

namespace ifwatch::sim {

/// The text of a case file that is read as this case again; `title` becomes its first line, a comment.
[[nodiscard]] std::string case_text(const trace_case& written, std::string_view title);

}  // namespace ifwatch::sim
