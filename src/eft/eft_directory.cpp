#include "eft/eft_directory.h"

#include "base/print.h"

namespace ifwatch {

int dump_eft_directory(octets listing) {
    const int count = listing.within();
    print<"\n\t\tDIRECTORY:">();
    bool line_starts = true;
    for (int i = 0; i < count; ++i) {
        if (line_starts) {
            print<"\n\t\t\t">();
        }
        line_starts = i + 1 < count && listing[i] == '\r' && listing[i + 1] == '\n';
        if (line_starts) {
            ++i;
        } else {
            print<"%c">(listing[i]);
        }
    }
    return count;
}

}  // namespace ifwatch
