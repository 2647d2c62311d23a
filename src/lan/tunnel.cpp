#include "lan/tunnel.h"

#include "lan/ethertype.h"

namespace ifwatch {

void dump_tunnel_ip(octets frame, display_context& context) { dump_ethertype(frame.skip(2), context, ETHERTYPE_IP); }

}  // namespace ifwatch
