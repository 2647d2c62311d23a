#pragma once

#include <cstdint>
#include <string>

#include "read/report/journal.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

// Commands of ETS 300 075.
inline constexpr int EFT_ASSOCIATE = 0x20;
inline constexpr int EFT_RELEASE = 0x21;
inline constexpr int EFT_END_ACCESS = 0x23;
inline constexpr int EFT_LIST = 0x24;
inline constexpr int EFT_LOAD = 0x25;
inline constexpr int EFT_SAVE = 0x26;
inline constexpr int EFT_RENAME = 0x27;
inline constexpr int EFT_DELETE = 0x28;
inline constexpr int EFT_TYPED_DATA = 0x29;
inline constexpr int EFT_EXCEPTION = 0x2E;
inline constexpr int EFT_RESPONSE_NEGATIVE = 0x33;
inline constexpr int EFT_TRANSFER_REJECT = 0x36;
inline constexpr int EFT_READ_RESTART = 0x37;
inline constexpr int EFT_ABORT = 0x38;

/// One request of a file transfer, and what became of it.
struct eft_request {
    enum class state : std::uint8_t { ASKED, GRANTED, DONE, REFUSED, REJECTED, BROKEN_OFF, ABORTED };

    place first;
    place last;
    std::uint64_t lost = 0;  // records that had been lost up to it
    int command = 0;
    bool sent = false;  // by the router
    short_text name;    // of the file, or of the application
    state now = state::ASKED;
    std::uint64_t blocks = 0;
    bool last_block = false;  // was seen, and waits for its confirmation
    std::string why;          // it was refused, in words; short
};

/// What the parameters of a data unit say, as far as the report asks for it.
struct eft_fields {
    short_text name;
    octets results;  // of length 0: none
    bool first_block = false;
    bool last_block = false;
    bool to_be_confirmed = false;
};

/// Reads the parameters in the contents of a data unit; damaged ones as far as they are held.
[[nodiscard]] eft_fields read_eft_fields(octets contents, bool is_write);

/// The reasons among result codes, in words.
[[nodiscard]] std::string eft_reason_text(octets results);

/// "T-LOAD of 'LETTER.TXT'".
void put_eft_request_name(text_sink& out, const eft_request& request);

/// A row's text of a request.
void put_eft_request(text_sink& out, const eft_request& request, const journal& about);

}  // namespace ifwatch::reporting
