#include "read/report/report_run.h"

#include <algorithm>
#include <string>

#include "base/print.h"
#include "display/channel_display.h"
#include "read/report/layers.h"
#include "read/report/page.h"
#include "read/report/remembered.h"
#include "read/report/seen.h"
#include "trace/ifc_types.h"

namespace ifwatch::reporting {

namespace {

constexpr int CHANNEL_DCHANNEL = 0;
constexpr int CHANNEL_OLD_ATM = 2;
constexpr int MOST_SECTIONS = 20;  // of one protocol

/// A protocol of the page: its heading, what of it is looked at, and its tracker.
struct protocol {
    const char* title;
    const char* looked_at;
    bool (*was_seen)(const interface_report& from);
    void (*print)(const interface_report& from);
    void (*finish)(interface_report& of);
};

constexpr protocol PROTOCOLS[] = {
    {"Line", "layer 1 and line errors", [](const auto& from) { return line_was_seen(from.line); },
     [](const auto& from) { print_line_section(from.line); }, [](auto& of) { finish_line(of.line, of.about); }},
    {"ATM circuits", "alarm and loopback cells", [](const auto& from) { return cells_were_seen(from.cells); },
     [](const auto& from) { print_cell_section(from.cells); }, [](auto& of) { finish_cells(of.cells, of.about); }},
    {"ISDN", "TEIs, data links and calls", [](const auto& from) { return isdn_was_seen(from.isdn); },
     [](const auto& from) { print_isdn_section(from.isdn, from.about); },
     [](auto& of) { finish_isdn(of.isdn, of.about); }},
    {"PPPoE", "PPPoE discovery", [](const auto& from) { return pppoe_was_seen(from.pppoe); },
     [](const auto& from) { print_pppoe_section(from.pppoe); }, [](auto& of) { finish_pppoe(of.pppoe, of.about); }},
    {"PPP", "PPP negotiation and logins", [](const auto& from) { return ppp_was_seen(from.ppp); },
     [](const auto& from) { print_ppp_section(from.ppp); }, [](auto& of) { finish_ppp(of.ppp, of.about); }},
    {"X.25", "LAPB links and X.25 calls", [](const auto& from) { return x25_was_seen(from.x25); },
     [](const auto& from) { print_x25_section(from.x25, from.about); }, [](auto& of) { finish_x25(of.x25, of.about); }},
    {"Fax", "fax sessions", [](const auto& from) { return fax_was_seen(from.fax); },
     [](const auto& from) { print_fax_section(from.fax, from.about); }, [](auto& of) { finish_fax(of.fax, of.about); }},
    {"File transfer", "file transfers", [](const auto& from) { return eft_was_seen(from.eft); },
     [](const auto& from) { print_eft_section(from.eft, from.about); }, [](auto& of) { finish_eft(of.eft, of.about); }},
    {"LAN", "ARP, TCP connections and ICMP refusals", [](const auto& from) { return lan_was_seen(from.lan); },
     [](const auto& from) { print_lan_section(from.lan); }, [](auto& of) { finish_lan(of.lan, of.about); }},
};

std::string label_of(std::string_view name, int channel_type) {
    if (name.empty()) {
        return ifc_type_entry(channel_type).name;
    }
    const bool is_number = name[0] >= '0' && name[0] <= '9';
    return (channel_type == CHANNEL_DCHANNEL && is_number ? "line " : "") + foreign_name(name);
}

/// The sections of one protocol, an interface each.
void print_protocol(const protocol& about, const std::deque<interface_report>& interfaces) {
    int sections = 0;
    int left_out = 0;
    for (const interface_report& from : interfaces) {
        if (!about.was_seen(from)) {
            continue;
        }
        if (sections == MOST_SECTIONS) {
            ++left_out;
            continue;
        }
        ++sections;
        print<"\n%s, %s\n">(about.title, from.about.label);
        about.print(from);
        flush_output();
    }
    if (left_out > 0) {
        print<"\n%s, %s more\n">(about.title, count_text(static_cast<std::uint64_t>(left_out), "interface"));
    }
}

}  // namespace

report_run::report_run(std::size_t most_of_each) {
    shared_.of_each = most_of_each;
    static_cast<void>(hash_factor());
}

std::size_t report_run::begin_interface(std::string_view name, int channel_type, std::uint32_t mode_flags,
                                        std::string_view router) {
    const std::string shown_name = foreign_name(name);
    const auto known = std::ranges::find_if(interfaces_, [&](const interface_report& one) {
        return !router.empty() && one.router == router && one.name == shown_name && one.channel_type == channel_type;
    });
    if (known != interfaces_.end()) {
        return static_cast<std::size_t>(known - interfaces_.begin());
    }
    if (interfaces_.size() == MOST_INTERFACES) {
        return MOST_INTERFACES;
    }
    interface_report& added = interfaces_.emplace_back();
    added.name = shown_name;
    added.router = router;
    added.channel_type = channel_type;
    added.mode_flags = mode_flags;
    added.about.troubles = &troubles_;
    added.about.shared = &shared_;
    added.about.label = label_of(name, channel_type);
    return interfaces_.size() - 1;
}

void report_run::take(std::size_t interface_number, const display_context& context) {
    if (interface_number >= interfaces_.size()) {
        ++more_records_;
        return;
    }
    interface_report& to = interfaces_[interface_number];
    const record_header& header = *context.header;
    const place at{header.timestamp_ms, header.sequence};
    count_record(to.seen, at);
    to.about.now = at;
    to.about.lost = to.seen.lost;
    const std::uint32_t event = header.channel_info & 0xFF;
    if (event != 0 && to.channel_type != CHANNEL_OLD_ATM) {
        const bool was_up = to.line.up;
        take_line_event(to.line, to.about, event, header.record_flags);
        if (was_up && !to.line.up) {
            take_line_loss(to.isdn.calls, to.about);
        }
        return;
    }
    const frame what{.at = at,
                     .sent = (header.record_flags & RECORD_SENT) != 0,
                     .whole = static_cast<std::uint32_t>(context.payload.length) >= context.original_length,
                     .data = context.payload};
    to.about.has_sent = to.about.has_sent || what.sent;
    take_line_data(to.line);
    const bool known = context.payload.length > 0 && take_layers(to, what, header);
    count_frame(to.seen, what.sent, context.original_length, known);
}

std::size_t report_run::most_remembered() const {
    std::size_t most = 0;
    for (const interface_report& of : interfaces_) {
        most = std::max({most, of.isdn.links.links.size(), of.isdn.calls.calls.size(), of.ppp.links.size(),
                         of.pppoe.searches.size(), of.x25.lapb.links.size(), of.x25.calls.size(),
                         of.x25.restarts.size(), of.fax.sessions.size(), of.eft.requests.size(), of.lan.arps.size(),
                         of.lan.connections.size(), of.lan.askers.size(), of.lan.failures.size()});
    }
    return most;
}

bool report_run::print_head() const {
    std::uint64_t records = more_records_;
    place first{UINT32_MAX, UINT32_MAX};
    place last;
    for (const interface_report& from : interfaces_) {
        records += from.seen.records;
        if (from.seen.records > 0) {
            first = std::min(first, from.seen.first);
            last = std::max(last, from.seen.last);
        }
    }
    if (records == 0) {
        ifwatch::print<"No record.\n">();
        return false;
    }
    ifwatch::print<"%s of %s, from %s to %s\n">(
        count_text(records, "record"), count_text(interfaces_.size(), "interface"), time_text(first), time_text(last));
    return true;
}

void report_run::print_trouble() const {
    ifwatch::print<"\nTrouble\n">();
    if (!troubles_.empty()) {
        troubles_.print_lines();
        return;
    }
    std::string looked_at;
    for (const protocol& about : PROTOCOLS) {
        if (std::ranges::any_of(interfaces_, about.was_seen)) {
            looked_at.append(looked_at.empty() ? "" : ", ").append(about.looked_at);
        }
    }
    looked_at = looked_at.empty() ? "nothing that this report knows" : looked_at;
    ifwatch::print<"  ">();
    print_broken("None. Looked at: " + looked_at + ".", 2, 6);
}

void report_run::print() {
    troubles_.begin_end();
    for (interface_report& of : interfaces_) {
        for (const protocol& about : PROTOCOLS) {
            about.finish(of);
        }
    }
    if (print_head()) {
        print_trouble();
        for (const protocol& about : PROTOCOLS) {
            print_protocol(about, interfaces_);
        }
        print_seen(interfaces_, more_records_);
    }
    flush_output();
}

}  // namespace ifwatch::reporting
