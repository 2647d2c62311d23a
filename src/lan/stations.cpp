#include "lan/stations.h"

#include "base/print.h"

namespace ifwatch {

void print_stations(octets addresses) {
    const octets& a = addresses;
    print<"DST=%02x:%02x:%02x:%02x:%02x:%02x">(a[0], a[1], a[2], a[3], a[4], a[5]);
    print<" SRC=%02x:%02x:%02x:%02x:%02x:%02x">(a[6], a[7], a[8], a[9], a[10], a[11]);
}

}  // namespace ifwatch
