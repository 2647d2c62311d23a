#pragma once

#include "base/octets.h"

namespace ifwatch {

// Number elements, ITU-T Q.931 clauses 4.5.8 and 4.5.10 and Q.952:
//
//     octet 2    extension, type of number (6-4), numbering plan (3-0)
//     octet 3    extension, presentation (6-5), screening (1-0)      when bit 7 of octet 2 is clear
//     octet 4    extension, reason for redirection (3-0)             redirecting numbers only, likewise
//     then       the digits

/// Prints a calling or connected party number: digits, type, plan and, when present, presentation and screening.
void dump_party_number(octets element);

/// Prints a called party number: digits, type and plan.
void dump_called_party_number(octets element);

/// Prints a redirecting or redirection number: as a party number, and the reason for redirection when present.
void dump_redirecting_number(octets element);

}  // namespace ifwatch
