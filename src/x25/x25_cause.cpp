#include "x25/x25_cause.h"

#include "base/print.h"

namespace ifwatch {

namespace {

constexpr named_value CLEARING_CAUSES[] = {
    {0, "DTE originated"},
    {1, "Number busy"},
    {3, "Invalid facility request"},
    {5, "Network congestion"},
    {9, "Out of order"},
    {11, "Access barred"},
    {13, "Not obtainable"},
    {17, "Remote procedure error"},
    {19, "Local Procedure Error"},
    {21, "RPOA out of order"},
    {25, "Reverse charging acceptance not subscribed"},
    {33, "Incompatible destination"},
    {41, "Fast select acceptance not subscribed"},
    {57, "Ship absent"},
};

constexpr named_value RESETTING_CAUSES[] = {
    {0, "DTE originated"},         {1, "Out of order"},
    {3, "Remote procedure error"}, {5, "Local Procedure Error"},
    {7, "Network congestion"},     {9, "Remote DTE operational"},
    {15, "Network operational"},   {17, "Incompatible destination"},
    {29, "Network out of order"},
};

constexpr named_value RESTARTING_CAUSES[] = {
    {0, "DTE originated"},
    {1, "Local procedure error"},
    {3, "Network congestion"},
    {7, "Network operational"},
    {127, "Registration/Confirmation confirmed"},
};

constexpr named_value REGISTRATION_CAUSES[] = {
    {3, "Invalid facility request"},
    {5, "Network congestion"},
    {19, "Local procedure error"},
    {127, "Registration/Confirmation confirmed"},
};

constexpr named_value DIAGNOSTICS[] = {
    {1, "Invalid P(S)"},
    {2, "Invalid P(R)"},
    {17, "Invalid packet type for state r1"},
    {18, "Invalid packet type for state r2"},
    {19, "Invalid packet type for state r3"},
    {20, "Invalid packet type for state p1"},
    {21, "Invalid packet type for state p2"},
    {22, "Invalid packet type for state p3"},
    {23, "Invalid packet type for state p4"},
    {24, "Invalid packet type for state p5"},
    {25, "Invalid packet type for state p6"},
    {26, "Invalid packet type for state p7"},
    {27, "Invalid packet type for state d1"},
    {28, "Invalid packet type for state d2"},
    {29, "Invalid packet type for state d3"},
    {33, "Unidentifiable packet"},
    {34, "Call one way logical channel"},
    {35, "Invalid packet type on a PVC"},
    {36, "Packet on unassigned virtual channel"},
    {37, "Reject not subscribed to"},
    {38, "Packet too short"},
    {39, "Packet too long"},
    {40, "Invalid GFI"},
    {41, "Invalid restart or registration packet"},
    {42, "Packet type not compatible with facility"},
    {43, "Unauthorized interrupt confirmation"},
    {44, "Unauthorized interrupt"},
    {45, "Unauthorized reject"},
    {49, "Timer expired for incoming call"},
    {50, "Timer expired for clear indication"},
    {51, "Timer expired for reset indication"},
    {52, "Timer expired for restart indication"},
    {53, "Timer expired for call deflection"},
    {65, "Facility/registration code not allowed"},
    {66, "Facility parameter not allowed"},
    {67, "Invalid called DTE address"},
    {68, "Invalid calling DTE address"},
    {69, "Invalif facility/registration length"},
    {70, "Incoming call barred"},
    {71, "no logical channel available"},
    {72, "Call collision"},
    {73, "Duplicate facility requested"},
    {74, "Non zero address length"},
    {75, "Non zero facility length"},
    {76, "Facility not provided when expected"},
    {77, "Invalid CCITT specified DTE facility"},
    {78, "Max number of call deflections exceeded"},
    {81, "Invalid cause code from DTE"},
    {82, "Not aligned octett"},
    {83, "Inconsistent Q-bit setting"},
    {84, "NUI problem"},
    {113, "Remote network problem"},
    {114, "International protocol problem"},
    {115, "International link out of order"},
    {116, "International link busy"},
    {117, "Transit network facility problem"},
    {118, "Remote network facility problem"},
    {119, "International routing problem"},
    {120, "Temporary routing problem"},
    {121, "Unknown called DNIC"},
    {122, "Maintanance action"},
};

}  // namespace

constexpr std::span<const named_value> X25_CLEARING_CAUSES = CLEARING_CAUSES;
constexpr std::span<const named_value> X25_RESETTING_CAUSES = RESETTING_CAUSES;
constexpr std::span<const named_value> X25_RESTARTING_CAUSES = RESTARTING_CAUSES;
constexpr std::span<const named_value> X25_REGISTRATION_CAUSES = REGISTRATION_CAUSES;

table_text x25_cause_name(int cause, std::span<const named_value> causes) {
    const table_text otherwise = (cause & 0x80) != 0 ? table_text("DTE originated") : table_text("");
    return value_name(causes, cause, otherwise);
}

table_text x25_diagnostic_name(int code) { return value_name(DIAGNOSTICS, code, ""); }

int dump_x25_cause(octets field, std::span<const named_value> causes) {
    print<"\t\t\tCause = 0x%02x (%s)\n">(field[0], x25_cause_name(field[0], causes));
    return 1;
}

int dump_x25_diagnostic(octets field) {
    print<"\t\t\tDiagnostic Code = 0x%02x(%s)\n">(field[0], x25_diagnostic_name(field[0]));
    return 1;
}

}  // namespace ifwatch
