#include "x25/x25_facilities.h"

#include <span>

#include "base/names.h"
#include "base/print.h"
#include "x25/x25_fields.h"

namespace ifwatch {

namespace {

constexpr int MARKER = 0x0000;
constexpr int END_TO_END_TRANSIT_DELAY = 0x0FCA;

constexpr table_text THROUGHPUT_CLASSES[] = {
    "Reserved", "Reserved", "Reserved", "75",    "150",   "300",   "600",      "1200",
    "2400",     "4800",     "9600",     "19200", "48000", "64000", "Reserved", "Reserved",
};

/// One facility: `key` is the category marker in force and the code, `parameters` are declared with their own length.
struct facility {
    int key = 0;
    octets parameters;
    int size = 0;  // of code, length octet and parameters
};

void print_charging_and_fast_select(octets parameters) {
    if ((parameters[0] & 1) != 0) {
        print<"\t\t\t\tReverse Charging\n">();
    }
    const int fast_select = parameters[0] >> 6;
    if (fast_select >= 2) {
        print<"\t\t\t\tFast select with %s\n">(fast_select == 2 ? "no restr." : "restr.");
    }
}

void print_throughput(octets parameters) {
    print<"IN=%s OUT=%s\n">(name_at(THROUGHPUT_CLASSES, parameters[0] >> 4),
                            name_at(THROUGHPUT_CLASSES, parameters[0] & 0x0F));
}

void print_one_octet(octets parameters) { print<"%02x\n">(parameters[0]); }

void print_two_octets(octets parameters) { print<"%02x%02x\n">(parameters[0], parameters[1]); }

void print_octet_list(octets parameters) {
    for (const std::uint8_t octet : parameters.run(0, parameters.length)) {
        print<" %02x">(octet);
    }
    print<"\n">();
}

void print_pair_list(octets parameters) {
    for (; parameters.length >= 2 && parameters.held() > 0; parameters = parameters.skip(2)) {
        print<" %02x%02x">(parameters[0], parameters[1]);
    }
    print<"\n">();
}

void print_charging_request(octets parameters) {
    print<"%scharging information\n">((parameters[0] & 1) != 0 ? "" : "no ");
}

void print_cause(octets parameters) { print<"cause %08x:">(parameters[0]); }

void print_deflection(octets parameters) {
    print_cause(parameters);
    print_x25_digits(parameters.skip(2), 0, parameters[0] + 1);
    print<"\n">();
}

void print_packet_sizes(octets parameters) {
    if (parameters[0] != 0) {
        print<"IN=%d ">(1U << (parameters[0] & 31));
    }
    if (parameters[1] != 0) {
        print<"OUT=%d">(1U << (parameters[1] & 31));
    }
    print<"\n">();
}

void print_window_sizes(octets parameters) { print<"IN=%d OUT=%d\n">(parameters[0], parameters[1]); }

void print_transit_delay(octets parameters) { print<"%dms\n">(parameters.be16(0)); }

void print_expedited_data(octets parameters) { print<"%s\n">(parameters[0] != 0 ? "on" : "off"); }

void print_address_extension(octets parameters) {
    if ((parameters[0] & 0x80) != 0) {
        print<"non X.213 ">();
        parameters.set(0, parameters[0] & 0x7F);
    }
    print_x25_digits(parameters.skip(1), 0, parameters[0]);
    print<"\n">();
}

bool has_transit_delays(int length) { return length == 2 || length == 4 || length == 6; }

void print_transit_delays(octets parameters) {
    print<"\n">();
    if (!has_transit_delays(parameters.length)) {
        return;
    }
    print<"\t\t\t\t\tcumulative %d (ms)\n">(parameters.be16(0));
    if (parameters.length >= 4) {
        print<"\t\t\t\t\tdesired    %d (ms) \n">(parameters.be16(2));
    }
    if (parameters.length >= 6) {
        print<"\t\t\t\t\tmaximum    %d (ms) \n">(parameters.be16(4));
    }
}

struct facility_kind {
    int key = 0;
    table_text label;  // absent where the parameters decide about the line
    void (*print_parameters)(octets parameters) = nullptr;
};

constexpr facility_kind FACILITIES[] = {
    {0x0001, nullptr, print_charging_and_fast_select},
    {0x0002, "Throuput class neg. ", print_throughput},
    {0x0003, "Closed user group ", print_one_octet},
    {0x0004, "Requesting ", print_charging_request},
    {0x0008, "Called line address modified notification ", print_cause},
    {0x0009, "Closed user group outgoing ", print_octet_list},
    {0x0041, "Bilateral closed user group ", print_two_octets},
    {0x0042, "Packet size neg. ", print_packet_sizes},
    {0x0043, "Window size neg. ", print_window_sizes},
    {0x0044, "RPOA selection:", print_pair_list},
    {0x0047, "Closed user group ", print_two_octets},
    {0x0048, "Closed user group outgoing ", print_two_octets},
    {0x0049, "Transit delay: ", print_transit_delay},
    {0x00C1, "Charging info call duration:", print_octet_list},
    {0x00C2, "Charging info segment count:", print_octet_list},
    {0x00C3, "Call deflection notification ", print_deflection},
    {0x00C4, "RPOA selection:", print_pair_list},
    {0x00C5, "Charging info monetary unit:", print_octet_list},
    {0x00C6, "NUI selection:", print_octet_list},
    {0x00D1, "Call deflection selection ", print_deflection},
    {0x0F0A, "Min. throuput class neg. ", print_throughput},
    {0x0F0B, "Expedited data negotiation: ", print_expedited_data},
    {0x0FC9, "Called address extension: ", print_address_extension},
    {END_TO_END_TRANSIT_DELAY, "End-to-End transit delay negotiation", print_transit_delays},
    {0x0FCB, "Calling address extension: ", print_address_extension},
};

facility read_facility(octets field, int marker) {
    const int code = field[0];
    const bool counted = code >> 6 == 3;
    const int header = counted ? 2 : 1;
    const int length = counted ? field[1] : (code >> 6) + 1;
    return {marker * 256 + code, field.at(header, length), header + length};
}

void print_unknown_facility(const facility& one) {
    print<"\t\t\t\tFacility %04x (">(one.key);
    for (const std::uint8_t octet : one.parameters.run(0, one.parameters.length)) {
        print<"%02x ">(octet);
    }
    print<")\n">();
}

void print_facility(const facility& one) {
    for (const facility_kind& kind : FACILITIES) {
        if (kind.key == one.key) {
            if (kind.label) {
                print<"\t\t\t\t%s">(kind.label);
            }
            kind.print_parameters(one.parameters);
            return;
        }
    }
    print_unknown_facility(one);
}

/// Octets that the walk moves on. Transit delays count their parameters twice, which may pass over what follows them.
int step_over(const facility& one) {
    const bool twice = one.key == END_TO_END_TRANSIT_DELAY && has_transit_delays(one.parameters.length);
    return one.size + (twice ? one.parameters.length : 0);
}

}  // namespace

int dump_x25_facilities(octets field) {
    const int total = field[0];
    if (total == 0) {
        return 1;
    }
    print<"\t\t\tFacilities %d octetts\n">(total);
    int marker = 0;
    octets rest = field.at(1, total);
    while (rest.within() > 0) {
        const facility one = read_facility(rest, marker);
        if (one.size > rest.length) {
            print<"\t\t\t\tFacility ERROR\n">();
            return total;
        }
        if (one.key == MARKER) {
            marker = one.parameters[0];
            print<"\t\t\t\tMarker category %d\n">(marker);
        } else {
            print_facility(one);
        }
        rest = rest.skip(step_over(one));
    }
    return total + 1;
}

}  // namespace ifwatch
