#include "ipx/address.h"

#include "base/print.h"

namespace ifwatch {

void print_ipx_network(octets network) { print<"%x:%x:%x:%x">(network[0], network[1], network[2], network[3]); }

void print_ipx_node(octets node) { print<"%x:%x:%x:%x:%x:%x">(node[0], node[1], node[2], node[3], node[4], node[5]); }

}  // namespace ifwatch
