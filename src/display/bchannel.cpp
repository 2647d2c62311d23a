#include "display/bchannel.h"

#include <algorithm>

#include "base/print.h"
#include "display/async_hdlc.h"
#include "display/display_context.h"
#include "display/mode_flags.h"
#include "eft/eft_tdu.h"
#include "fax/fax_record.h"
#include "inet/ip.h"
#include "ipx/ipx.h"
#include "ppp/ppp.h"
#include "x25/lapb.h"
#include "x25/t70.h"

namespace ifwatch {

namespace {

constexpr int ASSUMED_LINK_HEADER = 2;  // address and control, where layer 2 is not decoded
constexpr int X25_TYPE = 2;             // offset of the packet type behind the link header
constexpr int HEADERS_BEHIND_IP = 28;   // octets of IP and UDP headers
constexpr int NO_IP_HEADER = 255;       // as a position, also when the octet is found there

constexpr bool asked(std::uint32_t mode, std::uint32_t what) { return (mode & what) != 0; }

bool carries_information(octets frame) { return (frame[1] & 1) == 0; }

bool dump_ppp_first(octets payload, std::uint32_t mode) {
    return asked(mode, MODE_PPP) && !asked(mode, MODE_LAYER3) && dump_ppp(payload) != 0;
}

int dump_link_header(octets payload, std::uint32_t mode, display_context& context) {
    return asked(mode, MODE_LAYER2) ? dump_lapb_frame(payload, context) : ASSUMED_LINK_HEADER;
}

int dump_network_header(octets packet, std::uint32_t mode) {
    return asked(mode, MODE_LAYER3) ? dump_t70_packet(packet) : 0;
}

/// Offers what stands behind both headers to PPP. The length still counts the network header.
bool dump_ppp_behind(octets frame, int headers, std::uint32_t mode) {
    return asked(mode, MODE_PPP) && asked(mode, MODE_LAYER3) && headers < frame.length &&
           dump_ppp(frame.at(headers, frame.length)) != 0;
}

/// The position of the first octet 0x45 (IP version 4, header of five words), link header included.
int find_ip_header(octets frame) {
    const auto searched = frame.run(0, frame.length - HEADERS_BEHIND_IP);
    const auto found = std::find(searched.begin(), searched.end(), std::uint8_t{0x45});
    return found == searched.end() ? NO_IP_HEADER : static_cast<int>(found - searched.begin());
}

void dump_user_text(octets frame, int headers) {
    if (carries_information(frame)) {
        dump_text(frame.at(headers, frame.length));
    } else {
        print<"\n">();
    }
}

void dump_user_ip(octets frame, std::uint32_t mode, display_context& context) {
    const int position = find_ip_header(frame);
    if (position == NO_IP_HEADER) {
        print<"\n">();
        return;
    }
    // A link header that was only assumed may have been IP already: its octets are given back.
    const int given_back = asked(mode, MODE_LAYER2) ? 0 : ASSUMED_LINK_HEADER;
    dump_ip(frame.at(position, frame.length - position + given_back), context);
}

void dump_user_eft(octets frame, int link_header, display_context& context) {
    const bool data_packet = (frame[link_header + X25_TYPE] & 1) == 0;
    if (data_packet) {
        dump_eft_tdu(frame.at(link_header + X25_TYPE + 1, frame.length), context);
    }
}

/// Offers the frame to every decoder of user data that is asked for. It starts at the link header; its length counts
/// only what is behind the headers.
void dump_user_data(octets frame, int link_header, int network_header, std::uint32_t mode, display_context& context) {
    if (asked(mode, MODE_TEXT)) {
        dump_user_text(frame, link_header + network_header);
    }
    if (asked(mode, MODE_IP)) {
        dump_user_ip(frame, mode, context);
    }
    if (asked(mode, MODE_IPX)) {
        dump_ipx(frame);
    }
    if (asked(mode, MODE_EFT)) {
        dump_user_eft(frame, link_header, context);
    }
}

/// Peels the link and network headers off and shows what is behind them. The frame keeps its start throughout; only
/// its length shrinks.
void dump_layers(octets frame, std::uint32_t mode, display_context& context) {
    if (dump_ppp_first(frame, mode)) {
        return;
    }
    const int link_header = dump_link_header(frame, mode, context);
    if (link_header >= frame.length) {
        return;
    }
    frame.length -= link_header;

    const int network_header = dump_network_header(frame.at(link_header, frame.length), mode);
    if (dump_ppp_behind(frame, link_header + network_header, mode)) {
        return;
    }
    if (network_header >= frame.length) {
        return;
    }
    frame.length -= network_header;

    dump_user_data(frame, link_header, network_header, mode, context);
}

/// A frame that was carried through X.75 is PPP, whatever layers the mode flags name.
void dump_x75_frame(octets frame, std::uint32_t /*record_flags*/, display_context& context) {
    dump_layers(frame, (context.mode_flags | MODE_PPP) & ~(MODE_LAYER2 | MODE_LAYER3), context);
}

/// Four octets that may stand between the X.75 header and the asynchronous stream.
bool has_stream_prefix(octets stream) {
    return stream[0] == 0x01 && (stream[1] & 0x7F) == 0 && stream[2] == 0x01 && stream[3] == 0x00;
}

/// Asynchronous PPP inside X.75: what an X.75 frame carries is a slice of the stream.
void dump_ppp_in_x75(octets frame, std::uint32_t record_flags, display_context& context) {
    constexpr int prefix_length = 4;
    const int link_header = dump_lapb_frame(frame, context);
    if (link_header >= frame.length) {
        return;
    }
    octets stream = frame.skip(link_header);
    if (has_stream_prefix(stream)) {
        if (stream.length <= prefix_length) {
            return;
        }
        stream = stream.skip(prefix_length);
    }
    dump_data_packet(stream, record_flags, context, dump_x75_frame);
}

void dump_payload(octets payload, std::uint32_t record_flags, display_context& context) {
    const std::uint32_t mode = context.mode_flags;
    if (asked(mode, MODE_FAX)) {
        dump_fax_record(payload, record_flags, context);
    }
    if (asked(mode, MODE_PPP_X75)) {
        dump_ppp_in_x75(payload, record_flags, context);
    } else {
        dump_layers(payload, mode, context);
    }
}

}  // namespace

void dump_bchannel(octets payload, std::uint32_t record_flags, display_context& context) {
    if (context.nesting >= MAX_NESTING) {
        return;
    }
    ++context.nesting;
    dump_payload(payload, record_flags, context);
    --context.nesting;
}

}  // namespace ifwatch
