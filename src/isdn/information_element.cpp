#include "isdn/information_element.h"

#include "base/print.h"
#include "isdn/bearer_capability.h"
#include "isdn/cause.h"
#include "isdn/channel_identification.h"
#include "isdn/element_table.h"
#include "isdn/facility.h"
#include "isdn/high_layer.h"
#include "isdn/network_facility.h"
#include "isdn/party_number.h"
#include "isdn/subaddress.h"

namespace ifwatch {

namespace {

constexpr table_text UNKNOWN_ELEMENT = "Unknown IE-Element 0x%x in Codeset 0";

void dump_segmented_message(octets element) { print<"0x%x segments remaining">(element[2] & 0x7F); }

void dump_call_state(octets element) { print<"0x%x">(element[2] & 0x3F); }

constexpr named_value PROGRESS[] = {
    {1, "Call is not end-to-end ISDN"},       {2, "Destination address is non-ISDN"},
    {3, "Origination address is non-ISDN"},   {4, "Call has returned to the ISDN"},
    {8, "In-band information now available"},
};

void dump_progress(octets element) { print<"%s">(value_name(PROGRESS, element[3] & 0x1F, "")); }

constexpr named_value NOTIFICATIONS[] = {
    {0x80, " user suspended "},           {0x81, " user resumed "},
    {0x82, " bearer service change "},    {0xC2, " conference established "},
    {0xC3, " conference disconnected "},  {0xE9, " call transferred, alerting "},
    {0xEA, " call transferred, active "}, {0xF9, " remote hold "},
    {0xFA, " remote retrieval "},         {0xFB, " call is diverting "},
};

void dump_notification(octets element) { print<"%s">(value_name(NOTIFICATIONS, element[2], "")); }

void dump_date(int variant, octets element) {
    if (variant == VARIANT_1TR6) {
        print<"Date yy-mm-dd hh:mm:ss : %02d-%02d-%02d %02d:%02d:%02d ">(element[3], element[4], element[5], element[6],
                                                                         element[7], element[8]);
    } else {
        print<"Date yy-mm-dd hh:mm : %02d-%02d-%02d %02d:%02d ">(element[2], element[3], element[4], element[5],
                                                                 element[6]);
    }
}

constexpr named_value INFORMATION_TYPES[] = {
    {0, " undefined"},
    {1, " authorization code"},
    {2, " address digits"},
    {3, " terminal identification"},
};

void dump_information_request(octets element) {
    const bool prompt = (element[2] & 0x40) != 0;
    print<"\n\t\t\t      Info request ind : %s\n\t\t\t      Type of info     : ">(prompt ? "prompt for additional info"
                                                                                         : "info request complete");
    print_value(INFORMATION_TYPES, element[2] & 0x3F, "unknown value: %d");
}

constexpr named_value SIGNALS[] = {
    {0x00, "dial tone on"},
    {0x01, "ring back tone on"},
    {0x02, "intercept tone on"},
    {0x03, "network congestion tone on"},
    {0x04, "busy tone on"},
    {0x05, "confirm tone on"},
    {0x06, "answer tone on"},
    {0x07, "call waiting tone on"},
    {0x08, "off-hook warning tone on"},
    {0x3F, "tones off"},
    {0x40, "alerting on (pattern 0)"},
    {0x41, "alerting on (pattern 1)"},
    {0x42, "alerting on (pattern 2)"},
    {0x43, "alerting on (pattern 3)"},
    {0x44, "alerting on (pattern 4)"},
    {0x45, "alerting on (pattern 5)"},
    {0x46, "alerting on (pattern 6)"},
    {0x47, "alerting on (pattern 7)"},
    {0x4F, "alerting off "},
};

void dump_signal(octets element) { print_value(SIGNALS, element[2], "0x%x (reserved value)"); }

void dump_switch_hook(octets element) { print<"%s">((element[2] & 1) == 0 ? "On" : "Off"); }

void dump_endpoint_identifier(octets element) {
    print<"\n\t\t\t      User service identifier : %d">(element[2] & 0x7F);
    print<"\n\t\t\t      Interpreter             : %d">(element[3] >> 6 & 1);
    print<"\n\t\t\t      Terminal identifier     : %d">(element[3] & 0x3F);
}

// By offset in the element.
constexpr named_value RATE_OCTETS[] = {
    {2, "Incoming info. rate "},
    {3, "Outgoing info. rate "},
    {4, "Min. incoming info. rate "},
    {5, "Min. outgoing info. rate "},
};

constexpr named_value RATES[] = {
    {0x03, "75 bit/s"},   {0x04, "150 bit/s"},  {0x05, "300 bit/s"},  {0x06, "600 bit/s"},   {0x07, "1200 bit/s"},
    {0x08, "2400 bit/s"}, {0x09, "4800 bit/s"}, {0x0A, "9600 bit/s"}, {0x0B, "19200 bit/s"}, {0x0C, "48000 bit/s"},
};

void dump_information_rate(octets element) {
    int offset = 2;
    for (const std::uint8_t octet : element.run(offset, element.length - offset)) {
        print<"\n\t\t\t      %s">(value_name(RATE_OCTETS, offset, "Unknown Octet "));
        print_value(RATES, octet & 0x1F, "0x%x (reserved)");
        ++offset;
    }
}

constexpr named_value RESTART_CLASSES[] = {
    {0, "indicated Channels"},
    {6, "single Interface"},
    {7, "all Interfaces"},
};

void dump_restart_indicator(octets element) { print_value(RESTART_CLASSES, element[2] & 7, "0x%x (reserved)"); }

constexpr element_kind ELEMENTS[] = {
    {0x00, "Segmented message , ", dump_segmented_message},
    {0x04, "Bearer capability ", dump_bearer_capability},
    {0x08, "Cause is ", nullptr, dump_cause},
    {0x0C, "Connected Address      : ", characters_from<3>},
    {0x10, "Call Identity          : ", characters_from<2>},
    {0x14, "Call State             : ", dump_call_state},
    {0x18, "Channel Identification : ", dump_channel_identification},
    {0x1C, "Facility ", dump_facility},
    {0x1E, "Progress Indicator reports \n\t\t\t      ", dump_progress},
    {0x20, "Network specific facility ", nullptr, dump_network_specific_facility},
    {0x27, "Notification indicator reports\n\t\t\t      ", dump_notification},
    {0x28, "Display                : ", characters_from<2>},
    {0x29, "", nullptr, dump_date},
    {0x2C, "Keypad                 : ", characters_from<2>},
    {0x32, "Information request ", dump_information_request},
    {0x34, "Signal ", dump_signal},
    {0x36, "Switch-Hook ", dump_switch_hook},
    {0x38, "Feature activation "},
    {0x39, "Feature indication "},
    {0x3A, "Service profile id     : ", characters_from<2>},
    {0x3B, "Endpoint identifier ", dump_endpoint_identifier},
    {0x40, "Information Rate ", dump_information_rate},
    {0x42, "End-to-End transit delay "},
    {0x43, "Transit Delay indication "},
    {0x44, "Packet Layer binary parameters "},
    {0x45, "Packet Layer window size "},
    {0x46, "Packet size "},
    {0x4C, "Connected Party Number is ", dump_party_number},
    {0x6C, "Calling Party Number is ", dump_party_number},
    {0x6D, "Calling Party Subaddress is ", dump_subaddress},
    {0x70, "Called Party Number is ", dump_called_party_number},
    {0x71, "Called Party Subaddress is ", dump_subaddress},
    {0x74, "Redirecting Number is ", dump_redirecting_number},
    {0x76, "Redirection Number is ", dump_redirecting_number},
    {0x78, "Transit Network Selection is ", characters_from<3>},
    {0x79, "Restart indication for ", dump_restart_indicator},
    {0x7C, "Low Layer Compatibility ", dump_bearer_capability},
    {0x7D, "High Layer Compatibility ", dump_high_layer_compatibility},
    {0x7E, "User-User-Information "},
};

// By bits 6-4; the value of a shift (1) never comes here.
constexpr named_value SINGLE_OCTET_ELEMENTS[] = {
    {0, "Reserved 0x0"},
    {3, "Congestion level %1X "},
    {5, "Repeat indicator %1X "},
};

constexpr int MORE_DATA_OR_SENDING_COMPLETE = 2;

void dump_single_octet(int identifier) {
    const int type = identifier >> 4 & 7;
    const int value = identifier & 0x0F;
    if (type == MORE_DATA_OR_SENDING_COMPLETE) {
        print<"%s">(value == 0 ? "More data" : "Sending complete ");
    } else if (const table_text name = value_name(SINGLE_OCTET_ELEMENTS, type)) {
        print_named(name, static_cast<std::uint32_t>(value));
    } else {
        print_named(UNKNOWN_ELEMENT, static_cast<std::uint32_t>(identifier));
    }
}

}  // namespace

void dump_ie_codeset0(int variant, octets element) {
    print<"\t\tIE-Element  : ">();
    if ((element[0] & 0x80) != 0) {
        dump_single_octet(element[0]);
    } else {
        dump_by_table(ELEMENTS, UNKNOWN_ELEMENT, variant, element);
    }
    print<"\n">();
}

}  // namespace ifwatch
