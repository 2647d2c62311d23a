#include "ppp/option_walk.h"

#include "base/print.h"

namespace ifwatch {

namespace {

constexpr int OPTION_HEADER_LENGTH = 2;

}  // namespace

option_printer find_option(std::span<const option_kind> kinds, int type, option_printer otherwise) {
    for (const option_kind& kind : kinds) {
        if (kind.type == type) {
            return kind.print;
        }
    }
    return otherwise;
}

void walk_options(octets options, option_printer print_option) {
    while (options.length > 0 && options.held() > 0) {
        const int length = options[1];
        if (length < OPTION_HEADER_LENGTH || length > options.length) {
            print<"\t\tinvalid length %d!\n">(length);
            return;
        }
        const int data_length = length - OPTION_HEADER_LENGTH;
        ppp_option option{options[0], length, options.at(OPTION_HEADER_LENGTH, data_length), data_length};
        print_option(option);
        // What is left counts down by the length whatever the printer passed over.
        options = options.at(OPTION_HEADER_LENGTH + option.passed, options.length - length);
    }
}

}  // namespace ifwatch
