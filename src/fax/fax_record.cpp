#include "fax/fax_record.h"

#include <algorithm>
#include <iterator>

#include "base/names.h"
#include "base/print.h"
#include "display/display_context.h"
#include "display/mode_flags.h"
#include "fax/t30_frame.h"

namespace ifwatch {

namespace {

constexpr int MODE_OCTET_T30 = 0xA0;
constexpr int MODE_OCTET_ECM = 0x80;

constexpr named_value MODULATIONS[] = {
    {0, "V.29 (9600 bit/s)"},
    {1, "V.29 (7200 bit/s)"},
    {2, "V.29 (4800 bit/s)"},
    {4, "V.27ter (4800 bit/s)"},
    {5, "V.27ter (2400 bit/s)"},
    {6, "V.26bis (2400 bit/s)"},
    {7, "V.26bis (1200 bit/s)"},
    {8, "V.17 (7200 bit/s [long] )"},
    {9, "V.17 (7200 bit/s [short] )"},
    {10, "V.17 (9600 bit/s [long] )"},
    {11, "V.17 (9600 bit/s [short] )"},
    {12, "V.17 (12000 bit/s [long] )"},
    {13, "V.17 (12000 bit/s [short] )"},
    {14, "V.17 (14400 bit/s [long] )"},
    {15, "V.17 (14400 bit/s [short] )"},
};

/// Prints the mode that a mode octet selects; returns its framing.
std::uint32_t print_fax_mode(const char* direction_name, int mode_octet) {
    print<"\t%s mode is ">(direction_name);
    const std::uint32_t framing = fax_framing(mode_octet);
    if (framing == FAX_FRAMING_T30) {
        print<"T.30  (300 bit/s)\n">();
        return framing;
    }
    print<"%s">(value_name(MODULATIONS, mode_octet & 0x7F, "unknown"));
    print<"%s">(framing == FAX_FRAMING_ECM ? " ECM\n" : "\n");
    return framing;
}

/// Prints the address and control octets of an HDLC frame and the T.30 frame behind them.
void dump_hdlc_frame(octets record) {
    const int control = record[2];
    print<"A=%02x %s F=%d  ">(record[1], (control & 0xEF) == 0x03 ? "UI" : "??", control >> 4 & 1);
    dump_t30_frame(record.skip(3));
}

void dump_data(octets record, bool sent, display_context& context) {
    const std::uint32_t framing = sent ? context.fax_xmit_mode : context.fax_recv_mode;
    if (framing == FAX_FRAMING_PAGE) {
        print<"\tT.4   PIXEL DATA len=%d\n">(record.length - 1);
    } else if (framing == FAX_FRAMING_ECM) {
        print<"\tT.4   ">();
        dump_hdlc_frame(record);
    } else if (record.length <= 3) {
        print<"\tT.30 short message\n">();
    } else {
        print<"\tT.30  ">();
        dump_hdlc_frame(record);
    }
}

void change_sending_mode(octets record, display_context& context) {
    if (record.length >= 4) {
        print<"\t%s\n">(record[3] != 0 ? "TX" : "RX");
    }
    if (record.length > 2) {
        print_fax_mode("RECV", record[2]);
    }
    if (record.length > 1) {
        context.fax_xmit_mode = print_fax_mode("XMIT", record[1]);
    }
}

void change_mode(octets record, bool sent, display_context& context) {
    if (sent) {
        change_sending_mode(record, context);
    } else if (record.length < 2) {
        print<"\tT.30 CARRIER DETECTED\n">();
        context.fax_recv_mode = FAX_FRAMING_T30;
    } else {
        context.fax_recv_mode = print_fax_mode("RECV", record[1]);
    }
}

void dump_called_tone(octets /*record*/, bool /*sent*/, display_context& /*context*/) { print<"\tCED\n">(); }

void dump_calling_tone(octets /*record*/, bool sent, display_context& /*context*/) {
    if (sent) {
        print<"\tCNG\n">();
    } else {
        print<"\tCARRIER LOST\n">();
    }
}

void dump_stop(octets /*record*/, bool /*sent*/, display_context& /*context*/) { print<"\tSTOP TRANSMITTING\n">(); }

void dump_fcs_error(octets /*record*/, bool /*sent*/, display_context& /*context*/) { print<"\tFCS ERROR\n">(); }

void dump_at_text(octets record, bool /*sent*/, display_context& context) {
    if ((context.mode_flags & MODE_FAX_AT) == 0) {
        return;
    }
    const octets text = record.skip(1);
    print<"\t%*.*s\n">(text.within(), text.within(), text.text(0, text.within()));
}

struct fax_event {
    int type;
    void (*show)(octets record, bool sent, display_context& context);
};

constexpr fax_event EVENTS[] = {
    {FAX_EVENT_DATA, dump_data},
    {FAX_EVENT_MODE, change_mode},
    {FAX_EVENT_CED, dump_called_tone},
    {FAX_EVENT_CNG, dump_calling_tone},
    {5, dump_stop},
    {FAX_EVENT_FCS_ERROR, dump_fcs_error},
    {255, dump_at_text},
};

}  // namespace

std::uint32_t fax_framing(int mode_octet) {
    if (mode_octet == MODE_OCTET_T30) {
        return FAX_FRAMING_T30;
    }
    return (mode_octet & MODE_OCTET_ECM) != 0 ? FAX_FRAMING_ECM : FAX_FRAMING_PAGE;
}

void dump_fax_record(octets record, std::uint32_t direction, display_context& context) {
    const fax_event* const event = std::ranges::find(EVENTS, record[0], &fax_event::type);
    if (event != std::end(EVENTS)) {
        event->show(record, direction != 0, context);
    }
}

}  // namespace ifwatch
