#pragma once

#include "display/display_context.h"
#include "read/report/interface_report.h"

namespace ifwatch::reporting {

/// Takes the frame of a record apart, layer by layer as the decoders do, and hands each layer to the tracker of its
/// protocol. False for a frame that no decoder knows. Nothing is printed.
bool take_layers(interface_report& to, const frame& what, const record_header& header);

}  // namespace ifwatch::reporting
