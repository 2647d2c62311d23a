#include "extcap/sentences.h"

#include <iterator>

#include "capture/link_types.h"
#include "extcap/bchannel_kinds.h"
#include "extcap/options.h"

namespace ifwatch::extcap {

namespace {

/// A field of the form; its number is its place in the table.
struct form_field {
    const char* call;
    const char* display;
    const char* type;
    const char* rest;  // further groups
};

constexpr form_field FIELDS[] = {
    {"--host", "Router", "string", "{required=true}{tooltip=Name or IPv4 address of the router}"},
    {"--port", "TCP port", "integer", "{range=1,65535}{default=7000}{tooltip=Port of the router's trace daemon}"},
    {"--interface", "Interface", "selector",
     "{reload=true}{placeholder=Ask the router}{tooltip=What the router lists: interfaces, lines, slots, all of it}"},
    {"--index", "or their indexes", "string",
     "{tooltip=1000 * slot + 100 * unit + channel, such as 2100; also 2100,2102, 2100-2130, line:2100, slot:2 and "
     "all}"},
    {"--bchannel", "B-channels carry", "selector",
     "{tooltip=The router does not tell what an ISDN B-channel is used for}"},
    {"--credentials", "Credentials file", "fileselect",
     "{mustexist=true}{tooltip=Lines of a router's name and its password. Without a file TRACE_PWD is the password}"},
    {"--capture-length", "Capture length", "integer",
     "{range=0,8192}{default=0}{tooltip=Octets captured of each frame. 0: whole frames}"},
    {"--vpi", "ATM VPI", "integer", "{range=0,255}{tooltip=Only this virtual path of an ATM line}"},
    {"--vci", "ATM VCI", "integer", "{range=0,65535}{tooltip=Only this virtual channel of an ATM line}"},
    {"--router-time", "Keep the router's time stamps", "boolflag",
     "{default=false}{tooltip=Milliseconds since the router started, instead of the time of day}"},
    {"--reconnect", "Try again when the router is gone", "boolflag",
     "{default=false}{tooltip=After 1, 2, 4 and up to 60 seconds, until the capture is stopped}"},
};
constexpr int INTERFACE_FIELD = 2;
constexpr int BCHANNEL_FIELD = 4;

struct link_type_name {
    capture::known_link_type type;
    const char* name;
    const char* title;
};

constexpr link_type_name LINK_TYPE_NAMES[] = {
    {capture::LINK_LAPD, "LAPD", "ISDN D-channels: LAPD"},
    {capture::LINK_EXPORTED_PDU, "WIRESHARK_UPPER_PDU",
     "LAPB, PABX messages, ATM cells: each frame names its protocol"},
    {capture::LINK_PPP, "PPP", "PPP"},
    {capture::LINK_FRAME_RELAY, "FRELAY", "Frame Relay"},
    {capture::LINK_CISCO_HDLC, "C_HDLC", "Cisco HDLC"},
    {capture::LINK_RAW_IP, "RAW", "Tunnels: IP"},
    {capture::LINK_ETHERNET, "EN10MB", "LANs: Ethernet"},
    {capture::LINK_TOKEN_RING, "IEEE802_5", "LANs: Token Ring"},
    {capture::LINK_SUNATM, "SUNATM", "ATM: AAL5 frames with their VPI and VCI"},
    {capture::LINK_USER0, "USER0", "Raw frames"},
};

std::string group(const char* key, const std::string& value) { return std::string("{") + key + "=" + value + "}"; }

std::string value_sentence(int field, const std::string& value, const std::string& title, bool is_default) {
    return "value " + group("arg", std::to_string(field)) + group("value", value) + group("display", title) +
           (is_default ? group("default", "true") : "") + "\n";
}

}  // namespace

std::string interface_sentences() {
    return std::string("extcap ") + group("version", EXTCAP_VERSION) + group("display", "ifwatch") + "\n" +
           "interface " + group("value", INTERFACE_ID) + group("display", INTERFACE_TITLE) + "\n";
}

std::string link_type_sentences() {
    std::string sentences;
    for (const link_type_name& known : LINK_TYPE_NAMES) {
        sentences += "dlt " + group("number", std::to_string(known.type)) + group("name", known.name) +
                     group("display", known.title) + "\n";
    }
    return sentences;
}

std::string option_sentences() {
    std::string sentences;
    for (std::size_t i = 0; i < std::size(FIELDS); ++i) {
        const form_field& field = FIELDS[i];
        sentences += "arg " + group("number", std::to_string(i)) + group("call", field.call) +
                     group("display", field.display) + group("type", field.type) + field.rest + "\n";
    }
    for (const bchannel_kind& kind : bchannel_kinds()) {
        sentences += value_sentence(BCHANNEL_FIELD, kind.word, kind.title, &kind == &bchannel_kinds().front());
    }
    return sentences;
}

std::string interface_value_sentences(std::span<const listed_interface> listed) {
    std::string sentences;
    for (const offered_choice& offered : offer_choices(listed)) {
        sentences += value_sentence(INTERFACE_FIELD, offered.value, offered.title, false);
    }
    return sentences;
}

}  // namespace ifwatch::extcap
