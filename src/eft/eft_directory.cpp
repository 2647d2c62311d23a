#include "eft/eft_directory.h"

#include "base/print.h"

namespace ifwatch {

int dump_eft_directory(octets listing) {
    const int count = listing.within();
    print<"\n\t\tDIRECTORY:">();
    if (count > 0) {
        print<"\n\t\t\t">();
    }
    for (int i = 0; i < count; ++i) {
        const bool line_end = i + 1 < count && listing[i] == '\r' && listing[i + 1] == '\n';
        if (line_end) {
            print<"\n\t\t\t">();
            ++i;
        } else {
            print<"%c">(listing[i]);
        }
    }
    return count;
}

}  // namespace ifwatch
