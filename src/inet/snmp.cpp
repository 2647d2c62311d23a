#include "inet/snmp.h"

#include "inet/ber.h"

namespace ifwatch {

namespace {

// By the context-specific tag.
constexpr table_text PDU_NAMES[] = {"GetRequest", "GetNextRequest", "GetResponse", "SetRequest", "Trap"};

}  // namespace

void dump_snmp(const char* prefix, octets message) { dump_ber(prefix, message, PDU_NAMES); }

}  // namespace ifwatch
