#include "read/report/lan_text.h"

#include <string>

#include "inet/icmp.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

using kind = lan_failure::kind;

constexpr int DESTINATION_UNREACHABLE = 3;

std::string host_text(std::uint32_t address) {
    text_buffer<16> text;
    print_to<"%u.%u.%u.%u">(text, address >> 24, address >> 16 & 0xFF, address >> 8 & 0xFF, address & 0xFF);
    return std::string(text.text());
}

/// "4 times in 7.0 s", "once".
std::string times_text(const lan_failure& failure) {
    if (failure.times == 1) {
        return "once";
    }
    text_buffer<64> text;
    print_to<"%lu times in %s">(text, failure.times, duration_text(elapsed(failure.first, failure.last)));
    return std::string(text.text());
}

void put_port(text_sink& out, const lan_failure& failure) {
    if (failure.port != 0) {
        print_to<", port %d">(out, failure.port);
    }
}

void put_icmp(text_sink& out, const lan_failure& failure) {
    const bool unreachable = failure.icmp_type == DESTINATION_UNREACHABLE;
    const table_text name = unreachable ? icmp_unreachable_name(failure.icmp_code) : icmp_type_name(failure.icmp_type);
    if (name) {
        std::string_view words = name.view();
        words.remove_suffix(words.ends_with(' ') ? 1 : 0);
        put(out, words);
    } else {
        print_to<"unreachable, code %d">(out, failure.icmp_code);
    }
    print_to<": %s to %s">(out, host_text(failure.from), host_text(failure.to));
    put_port(out, failure);
    print_to<", %s; %s says so (ICMP)">(out, times_text(failure), host_text(failure.told_by));
}

}  // namespace

void put_lan_failure(text_sink& out, const lan_failure& failure) {
    const std::string from = host_text(failure.from);
    const std::string to = host_text(failure.to);
    switch (failure.what) {
        case kind::NO_ARP_REPLY:
            print_to<"no reply to ARP: %s asks for %s, %s">(out, from, to, times_text(failure));
            break;
        case kind::NO_SYN_ANSWER:
            print_to<"no answer to SYN: %s to %s">(out, from, to);
            put_port(out, failure);
            print_to<", %s">(out, times_text(failure));
            break;
        case kind::TCP_REFUSED:
            print_to<"connection refused (RST): %s to %s">(out, from, to);
            put_port(out, failure);
            print_to<", %s">(out, times_text(failure));
            break;
        case kind::ICMP:
            put_icmp(out, failure);
            break;
    }
}

}  // namespace ifwatch::reporting
