#include "fax/ppr.h"

#include <cstdint>

#include "base/print.h"

namespace ifwatch {

namespace {

constexpr int LAST_FRAME = 255;
constexpr int NO_RUN = -1;

}  // namespace

void print_ppr_bitmap(octets bitmap) {
    const std::int64_t bits = std::int64_t{8} * bitmap.length;
    int first = NO_RUN;
    // The walk looks one bit past the bitmap: a clear bit there ends a run that reaches the bitmap's end.
    for (int i = 0; i <= LAST_FRAME && i <= bits; ++i) {
        const bool requested = (bitmap[i / 8] >> (i % 8) & 1) != 0;
        if (requested && first == NO_RUN) {
            print<" %d">(i);
            first = i;
        } else if (!requested && first != NO_RUN) {
            if (i - 1 > first) {
                print<"-%d">(i - 1);
            }
            first = NO_RUN;
        }
    }
    if (first != NO_RUN) {
        print<"-%d">(bits - 1);
    }
    print<"\n">();
}

}  // namespace ifwatch
