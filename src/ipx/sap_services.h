#pragma once

#include "base/names.h"

namespace ifwatch {

/// The name of a SAP service type as published, or no name.
[[nodiscard]] table_text sap_service_name(int service_type);

}  // namespace ifwatch
