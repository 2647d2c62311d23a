#pragma once

#include "base/octets.h"

namespace ifwatch {

struct display_context;

// Type keys of this system's own, beside the Ethernet types and LLC service access points. The first two are the
// protocol identifiers of bridged Ethernet in RFC 2684.
inline constexpr int KEY_NONE = 0;
inline constexpr int KEY_BRIDGED_FCS = 1;
inline constexpr int KEY_BRIDGED = 7;
inline constexpr int KEY_PPP = 0x20;

inline constexpr int ETHERTYPE_IP = 0x0800;
inline constexpr int ETHERTYPE_ARP = 0x0806;
inline constexpr int ETHERTYPE_RARP = 0x8035;
inline constexpr int ETHERTYPE_IPX = 0x8137;
inline constexpr int ETHERTYPE_SNMP = 0x814C;
inline constexpr int ETHERTYPE_PPPOE_DISCOVERY = 0x8863;
inline constexpr int ETHERTYPE_PPPOE_SESSION = 0x8864;

/// Hands the payload of a LAN frame to the decoder of its type, when the mode flags ask for that protocol. `type` is an
/// Ethernet type, an LLC service access point or one of the keys above; of any other type nothing is decoded, nor are
/// frames bridged more than MAX_NESTING deep.
void dump_ethertype(octets payload, display_context& context, int type);

}  // namespace ifwatch
