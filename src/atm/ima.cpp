#include "atm/ima.h"

#include "base/names.h"
#include "base/print.h"

namespace ifwatch {

namespace {

constexpr int LINKS = 32;
constexpr int FIRST_LINK_STATUS = 12;  // one octet for each link
constexpr int LINK_ID = 0x1F;
constexpr int ON_LINK = 0x20;  // the clock or test pattern is that of one link

constexpr named_value VERSIONS[] = {{1, "1.0"}, {3, "1.1"}};

constexpr table_text STUFF_INDICATIONS[] = {
    "second stuff notification", "stuff at next ICP cell", "stuff at 2 ICP cells", "stuff at 3 ICP cells",
    "stuff at 4 ICP cells",      "undefined event 5",      "undefined event 6",    "no imminent event",
};

constexpr table_text SYMMETRY_MODES[] = {
    "symmetrical configuration and operation",
    "symmetrical configuration and asymmetrical operation",
    "asymmetrical configuration and asymmetrical operation",
    "reserved",
};

// Two texts run together at state 3, so that every later state is named one place early. What is printed stays so.
constexpr table_text GROUP_STATES[] = {
    "Start-up",
    "Start-up-Ack",
    "Config-Aborted - Unsupported M",
    "Config-Aborted - Incompatible Group SymmetryConfig-Aborted - Unsupported IMA Version",
    "Reserved 5",
    "Reserved 6",
    "Config-Aborted - Other Reasons",
    "Insufficient Links",
    "Blocked",
    "Operational",
    "Reserved",
    "Reserved",
    "Reserved",
    "Reserved",
    "Reserved",
    "No Defect",
};

constexpr table_text LINK_DEFECTS[] = {"No Defect", "Physical Defect", "LIF", "LODS"};

constexpr table_text LINK_STATES[] = {
    "Not In Group",         "Unusable",          "Unusable - Fault", "Unusable - Mis-connected",
    "Unusable - Inhibited", "Unusable - Failed", "Usable",           "Active",
};

void dump_cell(octets payload) {
    print<"\tIMA Version:\t  %s\n">(value_name(VERSIONS, payload[0], "wrong"));
    print<"\tIMA Cell Type:\t  %s\n">((payload[1] & 0x80) != 0 ? "ICP" : "Filler");
    print<"\tLink Id:\t  %d\n">(payload[1] & 0x0F);
    print<"\tIMA Frame Number: %d\n">(payload[2]);
    print<"\tICP Cell Offset:  %d\n">(payload[3]);
    print<"\tLink Stuff Ind:\t  %s\n">(name_at(STUFF_INDICATIONS, payload[4] & 7));
    print<"\tStatus Changes:\t  %d\n">(payload[5]);
}

void dump_group(octets payload) {
    print<"\tIMA Id: \t  %d\n">(payload[6]);
    print<"\tIMA Frame Length: %d\n">(32 << (payload[7] & 3));
    print<"\tSymmetry Mode:\t  %s\n">(name_at(SYMMETRY_MODES, payload[7] >> 2 & 3));
    print<"\tGroup State:\t  %s\n">(name_at(GROUP_STATES, payload[7] >> 4));
    if ((payload[8] & ON_LINK) != 0) {
        print<"\tClock Mode:\t  Common Transmit Clock on Tx Link ID %d\n">(payload[8] & LINK_ID);
    } else {
        print<"\tClock Mode:\t  Independent Transmit Clock\n">();
    }
}

void dump_test_pattern(octets payload) {
    print<"\tRx Test Pattern:  %d\n">(payload[11]);
    if ((payload[9] & ON_LINK) != 0) {
        print<"\tTest Pattern Procedure active on Tx Link ID %d\n">(payload[9] & LINK_ID);
        print<"\tTx Test Pattern:\t%d\n">(payload[10]);
    } else {
        print<"\tTest Pattern Procedure inactive\n">();
    }
}

void dump_links(octets payload) {
    for (int link = 0; link < LINKS; ++link) {
        const int status = payload[FIRST_LINK_STATUS + link];
        if (status >> 2 == 0) {
            continue;
        }
        print<"\tLink %2d: %s, Rx State: %s, Tx State: %s\n">(link, name_at(LINK_DEFECTS, status & 3),
                                                              name_at(LINK_STATES, status >> 2 & 7),
                                                              name_at(LINK_STATES, status >> 5));
    }
}

}  // namespace

void dump_ima(octets payload, display_context& /*context*/) {
    dump_cell(payload);
    dump_group(payload);
    dump_test_pattern(payload);
    dump_links(payload);
}

}  // namespace ifwatch
