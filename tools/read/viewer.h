#pragma once

#include <string>

#include "read/capture_report.h"
#include "read/open_captures.h"
#include "read/options.h"
#include "read/shown_counts.h"

namespace ifwatch::read {

/// Shows the records of a capture on the standard output, and tells on the error stream what date its first packet has
/// and what is wrong with it. `title` goes in front of the names of its interfaces, which are then shown even when
/// there is but one; usually it is empty. False where the capture is damaged, behind all that came before the damage,
/// and where the standard output has failed. With `report` the
/// records go there instead, and an interrupt ends the capture.
bool show_capture(const open_capture& file, const std::string& title, const read_options& options, shown_counts& counts,
                  capture_report* report = nullptr);

}  // namespace ifwatch::read
