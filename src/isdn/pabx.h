#pragma once

#include <cstdint>

#include "base/octets.h"

namespace ifwatch {

/// Prints the layer-3 message of one PABX record, which stands behind the six octets that the record's header line
/// shows. Nothing is printed when its protocol discriminator is not one of a call's messages, or when the
/// call-reference filter asks for another call (here the dummy call reference is call reference 0). The TEI filter and
/// the record flags mean nothing here.
void dump_pabx_message(octets payload, std::uint32_t mode_flags, std::int32_t tei_filter, std::int32_t cref_filter,
                       std::uint32_t record_flags);

}  // namespace ifwatch
