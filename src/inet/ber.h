#pragma once

#include <span>

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

/// Prints BER-encoded ASN.1 (ITU-T X.690) as a tree: for each element its name and content length, then its value, or,
/// for a SEQUENCE and a constructed context-specific or private element, its contents in braces, four columns deeper.
/// `prefix` follows every line end. `context_names` names the context-specific elements by their tag; without it they
/// show the tag itself.
///
/// Elements are walked until their sizes reach the declared length of `data`; at least one is printed when anything is
/// held. Lengths are not checked against the data: what is not held is not shown. 32 levels below the outermost are
/// opened; deeper elements are printed as primitive ones.
void dump_ber(const char* prefix, octets data, std::span<const table_text> context_names = {});

}  // namespace ifwatch
