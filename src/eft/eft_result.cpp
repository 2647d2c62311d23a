#include "eft/eft_result.h"

#include <algorithm>
#include <iterator>

#include "base/names.h"
#include "base/print.h"
#include "eft/eft_field.h"
#include "eft/eft_parameters.h"

namespace ifwatch {

namespace {

constexpr named_value RESULTS[] = {
    {0x20, "Response for T-ASSOCIATE"},
    {0x21, "Response for T-RELEASE"},
    {0x22, "Response for T-ACCESS"},
    {0x23, "Response for T-END-ACCESS"},
    {0x24, "Response for T-DIRECTORY"},
    {0x25, "Response for T-LOAD"},
    {0x26, "Response for T-SAVE"},
    {0x27, "Response for T-RENAME"},
    {0x28, "Response for T-DELETE"},
    {0x29, "Response for T-TYPED-DATA"},
    {0x2E, "Response for T-P-EXCEPTION"},
    {0x30, "Called address incorrect"},
    {0x31, "Calling address incorrect"},
    {0x32, "Role refused"},
    {0x35, "Service class refused"},
    {0x36, "Response for T-TRANSFER-REJECT"},
    {0x37, "Response for T-READ-RESTART"},
    {0x38, "Response for T-ABORT"},
    {0x40, "Called address incorrect"},
    {0x41, "Calling address incorrect"},
    {0x42, "Role refused"},
    {0x43, "Insufficient primitives handled"},
    {0x44, "Application name unknown"},
    {0x45, "Service class refused"},
    {0x46, "Erroneous recovery point"},
    {0x47, "Erroneous designation"},
    {0x48, "No answer to the request"},
    {0x49, "Unknown file"},
    {0x4A, "Already existing file"},
    {0x4B, "Erroneous file (T-Write last)"},
    {0x4C, "Erroneous new name"},
    {0x4D, "New name already in use"},
    {0x50, "Wrong identity/wrong identification"},
    {0x60, "Erroneous user data"},
    {0x61, "Erroneous user data, service unknown"},
    {0x62, "Erroneous user data, group forbidden"},
    {0x70, "Repeated negative acks/repeated errors"},
    {0x71, "Delay expired"},
    {0x72, "Unknown message"},
    {0x73, "Syntax error/missing parameter"},
    {0x74, "Unrecoverable lower layer error"},
    {0x75, "Protocol conflict"},
    {0x76, "Primitive not handled"},
};

// By the octet behind "other reason", from 0x21 on.
constexpr table_text REASONS[] = {
    "identifier rejected",
    "disk full",
    "file access impossible",
    "reserved",
    "user interrupt of communication",
    "user abort",
    "extended format not available",
    "log access impossible",
    "compression format not supported",
    "incorrect recovery FCS",
    "coding error in compressed data",
};
constexpr int FIRST_REASON = 0x21;

// The commands whose response tells how later parameters are to be read.
constexpr int REMEMBERED_COMMANDS[] = {0x20, EFT_ACCESS, EFT_DIRECTORY, 0x25, 0x26, 0x27, 0x28, 0x29};

void remember_command(int code, eft_tdu_state& state) {
    const bool remembered = std::ranges::find(REMEMBERED_COMMANDS, code) != std::end(REMEMBERED_COMMANDS);
    if (remembered && state.command == EFT_RESPONSE_POSITIVE) {
        state.response_command = static_cast<std::uint32_t>(code);
    }
}

/// Returns what stands behind the reason.
octets print_reason(octets rest) {
    const table_text name = eft_reason_name(rest[0]);
    const octets behind = rest.skip(1);
    if (name) {
        print<"%s">(name);
        return behind;
    }
    print<"other reason">();
    print_eft_characters(behind);
    return behind.skip(behind.length);
}

/// Prints one code; returns what stands behind it and the octets that explain it.
octets print_result(octets codes, eft_tdu_state& state) {
    const int code = codes[0];
    const octets rest = codes.skip(1);
    const octets none = rest.skip(rest.length);
    if (code == EFT_WRITE) {
        print<"Response for T-WRITE block 0x%04lx">(eft_number(rest));
        return none;
    }
    if (code == EFT_OTHER_REASON) {
        return print_reason(rest);
    }
    if (const table_text name = eft_result_name(code)) {
        print<"%s">(name);
        remember_command(code, state);
        return rest;
    }
    print<"Unknown result/reason: ">();
    print_eft_octets(rest);
    return none;
}

}  // namespace

table_text eft_result_name(int code) { return value_name(RESULTS, code); }

table_text eft_reason_name(int code) { return name_at(REASONS, code - FIRST_REASON); }

void print_eft_results(octets value, eft_tdu_state& state) {
    while (value.within() > 0) {
        print_eft_label("Result/Reason:");
        value = print_result(value, state);
    }
}

}  // namespace ifwatch
