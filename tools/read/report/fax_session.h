#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "read/report/journal.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

// Facsimile control fields, ITU-T T.30 clause 5.3.6, without bit 0 where it only tells the station.
inline constexpr int T30_DIS = 0x80;
inline constexpr int T30_DTC = 0x81;
inline constexpr int T30_DCS = 0x82;
inline constexpr int T30_CFR = 0x84;
inline constexpr int T30_FTT = 0x44;
inline constexpr int T30_EOM = 0x8E;
inline constexpr int T30_MPS = 0x4E;
inline constexpr int T30_EOP = 0x2E;
inline constexpr int T30_PPS = 0xBE;
inline constexpr int T30_EOR = 0xCE;
inline constexpr int T30_MCF = 0x8C;
inline constexpr int T30_RTP = 0xCC;
inline constexpr int T30_RTN = 0x4C;
inline constexpr int T30_PIP = 0xAC;
inline constexpr int T30_PIN = 0x2C;
inline constexpr int T30_PPR = 0xBC;
inline constexpr int T30_ERR = 0x1C;
inline constexpr int T30_CTR = 0xC4;
inline constexpr int T30_DCN = 0xFA;
inline constexpr int T30_NOTHING = 0;

/// One fax call, as far as it was seen.
struct fax_session {
    enum class direction : std::uint8_t { UNKNOWN, SENT, RECEIVED };

    place first;
    place last;
    std::uint64_t lost = 0;  // records that had been lost up to its first one
    bool began_before = false;
    direction call = direction::UNKNOWN;
    direction pages_go = direction::UNKNOWN;
    short_text receiver;  // what the stations call themselves
    short_text sender;
    std::string_view first_rate;
    std::string_view last_rate;
    bool error_correction = false;

    std::uint64_t pages = 0;    // confirmed
    std::uint64_t refused = 0;  // RTN, PIN, ERR
    std::uint64_t retrains = 0;
    std::uint64_t failed_trainings = 0;  // FTT
    std::uint64_t parts = 0;             // PPR: asked for again
    std::uint64_t damaged = 0;           // frames

    int command = T30_NOTHING;       // the last one
    int post_message = T30_NOTHING;  // in PPS and EOR
    int tries = 0;
    bool command_sent = false;  // by the router
    place command_at;
    int answer = T30_NOTHING;  // to it
    bool in_page = false;      // page data behind the last answer
    bool complete = false;     // the last page was confirmed
    std::optional<place> over;
    bool hung_up = false;  // DCN
    bool hung_up_by_router = false;
};

/// A row's text of a session.
void put_fax_session(text_sink& out, const fax_session& session, const journal& about);

/// Says why a session that is over has failed, if it has.
void conclude_fax_session(const fax_session& session, const journal& about);

}  // namespace ifwatch::reporting
