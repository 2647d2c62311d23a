#include "isdn/party_number.h"

#include "base/names.h"
#include "base/print.h"
#include "isdn/element_table.h"

namespace ifwatch {

namespace {

constexpr named_value NUMBER_TYPES[] = {
    {0, "(unknown)"},         {1, "international number"}, {2, "national number"}, {3, "network specific number"},
    {4, "subscriber number"}, {6, "abbreviated number"},
};

constexpr named_value NUMBERING_PLANS[] = {
    {0, "(unknown)"},    {1, "ISDN/telephony (E.164)"}, {3, "data (X.121)"},
    {4, "telex (F.69)"}, {8, "national standard plan"}, {9, "private plan"},
};

constexpr named_value PRESENTATIONS[] = {
    {0x00, "presentation allowed"},
    {0x20, "presentation restricted"},
    {0x40, "number not available due to interworking"},
};

constexpr table_text SCREENINGS[] = {
    "user-provided, not screened",
    "user-provided, verified and passed",
    "user-provided, verified and failed",
    "reserved value (0x03)",
};

constexpr named_value REDIRECTION_REASONS[] = {
    {0x01, "Call forwarding busy or called DTE busy"},
    {0x02, "Call forwarding no reply"},
    {0x09, "Called DTE out of order"},
    {0x0A, "Call forwarding by the called DTE"},
    {0x0F, "Call forwarding unconditional or systematic call redirection"},
};

constexpr bool is_last_of_group(int octet) { return (octet & 0x80) != 0; }

void dump_type_and_plan(int octet) {
    const int type = octet >> 4 & 7;
    const int plan = octet & 0x0F;
    print<"\n\t\t\t      Type of Number is 0x%x , %s">(type, value_name(NUMBER_TYPES, type, "(reserved value)"));
    print<"\n\t\t\t      Numbering plan is 0x%x , %s">(plan, value_name(NUMBERING_PLANS, plan, "(reserved value)"));
}

void dump_presentation_and_screening(int octet) {
    print<"\n\t\t\t      Presentation: %s">(value_name(PRESENTATIONS, octet & 0x60, "reserved value (0x60)"));
    print<"\n\t\t\t      Screening: %s">(name_at(SCREENINGS, octet & 3));
}

void dump_redirection_reason(int octet) {
    const int reason = octet & 0x0F;
    print<"\n\t\t\t      Reason for redirection is 0x%x , %s">(
        reason, value_name(REDIRECTION_REASONS, reason, "(reserved value)"));
}

/// The offset behind the first octet of the element's contents that ends a group.
int end_of_group(octets element) {
    int offset = 2;
    while (offset < element.length && !is_last_of_group(element[offset])) {
        ++offset;
    }
    return offset + 1;
}

}  // namespace

void dump_party_number(octets element) {
    const bool octet_3a_follows = !is_last_of_group(element[2]);
    print_characters(element, octet_3a_follows ? 4 : 3);
    dump_type_and_plan(element[2]);
    if (octet_3a_follows) {
        dump_presentation_and_screening(element[3]);
    }
}

void dump_called_party_number(octets element) {
    print_characters(element, 3);
    dump_type_and_plan(element[2]);
}

void dump_redirecting_number(octets element) {
    print_characters(element, end_of_group(element));
    dump_type_and_plan(element[2]);
    if (is_last_of_group(element[2])) {
        return;
    }
    dump_presentation_and_screening(element[3]);
    if (!is_last_of_group(element[3])) {
        dump_redirection_reason(element[4]);
    }
}

}  // namespace ifwatch
