#include "isdn/network_facility.h"

#include "base/names.h"
#include "base/print.h"
#include "isdn/element_table.h"
#include "isdn/information_element.h"

namespace ifwatch {

namespace {

constexpr named_value NETWORK_TYPES[] = {
    {0, "user specified"},
    {2, "national network"},
    {3, "international network"},
};

constexpr named_value IDENTIFICATION_PLANS[] = {
    {0, "unknown"},
    {2, "Carrier identification code"},
    {3, "Data Network identification"},
};

void dump_network(octets element) {
    if (element[1] == 0) {
        print<"\n\t\t\t      Default Provider">();
        return;
    }
    print<"\n\t\t\t      Network type is ">();
    print_value(NETWORK_TYPES, element[3] & 7, "0x%x (reserved value)");
    print<"\n\t\t\t      Network ident. plan is ">();
    // Of the plan only bit 3 is looked up: either the first row or a reserved value.
    print_value(IDENTIFICATION_PLANS, element[3] & 8, "0x%x (reserved value)");
}

constexpr int CALL_RESTRICTION = 0x01;
constexpr int CALL_FORWARDING_1 = 0x02;
constexpr int CALL_FORWARDING_2 = 0x03;
constexpr int CLOSED_USER_GROUP = 0x15;

// The first row of a value holds.
constexpr named_value FACILITIES[] = {
    {CALL_RESTRICTION, "Barrier for "},
    {0x0E, "Conference"},
    {0x0F, "Call forwarding 2 "},
    {CALL_RESTRICTION, "Take over B-Channel"},
    {0x10, "Activation of standby connection"},
    {0x11, "Conference (3 parties)"},
    {0x12, "Change of service (1 Side)"},
    {0x13, "Change of service (2 Sides)"},
    {0x14, "Number identification"},
    {CLOSED_USER_GROUP, "Closed user group"},
    {0x17, "Display \"forwarded call\""},
    {0x1A, "Display \"forwarded call\""},
    {0x1B, "Suppress Calling Party Number"},
    {0x1D, "Activate usage of connection"},
    {0x1E, "Deactivate usage of connection"},
    {0x1F, "Semipermanent connection"},
    {0x23, "Undo change of service (2 Sides)"},
    {0x24, "Call forwarding to private Net"},
};

constexpr named_value BARRED_CALLS[] = {
    {2, "all calls"},
    {3, "long distance calls"},
    {4, "international calls"},
    {5, "intercontinental calls"},
};

void dump_closed_user_group(octets element) {
    int group = element.length > 6 ? element[6] : 0;
    if (element.length > 7) {
        group = group * 256 + element[7];
    }
    print<"Closed user group">();
    if (group != 0) {
        print<" %d">(group);
    }
}

}  // namespace

void dump_network_specific_facility(int variant, octets element) {
    if (variant == VARIANT_Q931) {
        dump_network(element);
    } else if (variant == VARIANT_1TR6) {
        print<"\n\t\t\t      ">();
        if (element[3] == CLOSED_USER_GROUP) {
            dump_closed_user_group(element);
        } else {
            dump_facility_select(element);
        }
    }
}

void dump_facility_select(octets element) {
    const int facility = element[3];
    if (facility == CALL_FORWARDING_1 || facility == CALL_FORWARDING_2) {
        print<"Call forwarding %d ">(facility - 1);
        print_characters(element, 7);
        return;
    }
    print_value(FACILITIES, facility, "Unknown facility 0x%x");
    if (facility == CALL_RESTRICTION) {
        print<"%s">(value_name(BARRED_CALLS, element[6], ""));
    }
}

}  // namespace ifwatch
