#include "lan/wlan_oid.h"

#include <algorithm>
#include <iterator>

#include "base/format.h"

namespace ifwatch {

namespace {

constexpr std::uint32_t SERVICE_SET_FIRST = 0x10000008;  // the one row that stands for the sets 0 to 256
constexpr std::uint32_t SERVICE_SET_LAST = 0x10000108;

constexpr char NEVER_SHOWN = '*';  // in front of a name
constexpr char HIDDEN = '#';

struct object_name {
    std::uint32_t identifier;
    const char* name;
};

constexpr object_name OBJECTS[] = {
    {0x00000000, "GEN_OID_MACADDRESS              "}, {0x00000001, "GEN_OID_LINKSTATE               "},
    {0x00000005, "GEN_OID_LEDCONFIG               "}, {0x00000006, "GEN_OID_MODE                    "},
    {0x00000007, "GEN_OID_COMPONENT_NR            "}, {0x00000008, "GEN_OID_VERSION                 "},
    {0x00000009, "GEN_OID_INTERFACE_ID            "}, {0x0000000A, "GEN_OID_COMPONENT_ID            "},
    {0x0000000B, "GEN_OID_HIBERNATE               "}, {0x0000000C, "GEN_OID_FAA                     "},
    {0x0000000D, "GEN_OID_COMMIT                  "}, {0x0000000E, "GEN_OID_OFFLOAD                 "},
    {0x0000000F, "GEN_OID_EFFECTIVETHROUGHPUT     "}, {0x0000000F, "GEN_OID_DIRECTLINKSTATE         "},
    {0x00000010, "GEN_OID_RESET                   "}, {0x00000011, "GEN_OID_INTRABSSRELAY           "},
    {0x00000012, "GEN_OID_DEBUG                   "}, {0x02000000, "GEN_OID_TUNNEL                  "},
    {0x10000000, "DOT11_OID_BSSTYPE               "}, {0x10000001, "DOT11_OID_BSSID                 "},
    {0x10000002, "DOT11_OID_SSID                  "}, {0x10000003, "DOT11_OID_STATE                 "},
    {0x10000004, "DOT11_OID_AID                   "}, {0x10000006, "DOT11_OID_SSIDOVERRIDE          "},
    {0x10000008, "DOT11_OID_SERVICESET0           "}, {0x11000001, "DOT11_OID_BEACONPERIOD          "},
    {0x11000002, "DOT11_OID_DTIMPERIOD            "}, {0x11000003, "DOT11_OID_ATIMWINDOW            "},
    {0x11000004, "DOT11_OID_LISTENINTERVAL        "}, {0x11000007, "DOT11_OID_SEQUENTIALBSS         "},
    {0x12000000, "DOT11_OID_AUTHENABLE            "}, {0x12000001, "DOT11_OID_PRIVACYINVOKED        "},
    {0x12000002, "DOT11_OID_EXUNENCRYPTED         "}, {0x12000003, "DOT11_OID_DEFKEYID              "},
    {0x12000004, "DOT11_OID_DEFKEY1               "}, {0x12000005, "DOT11_OID_DEFKEY2               "},
    {0x12000006, "DOT11_OID_DEFKEY3               "}, {0x12000007, "DOT11_OID_DEFKEY4               "},
    {0x12000008, "DOT11_OID_STAKEY                "}, {0x1200000A, "DOT11_OID_STASC                 "},
    {0x1200000B, "DOT11_OID_AUTHORDER             "}, {0x1200000D, "DOT11_OID_WPA                   "},
    {0x1200000E, "DOT11_OID_RSN                   "}, {0x1200000F, "DOT11_OID_SSMCKEY               "},
    {0x12000010, "DOT11_OID_SSMCSC                "}, {0x1A000000, "DOT11_OID_PRIVTXREJECTED        "},
    {0x1A000001, "DOT11_OID_PRIVRXPLAIN           "}, {0x1A000002, "DOT11_OID_PRIVRXFAILED          "},
    {0x1A000003, "DOT11_OID_PRIVRXNOKEY           "}, {0x13000000, "DOT11_OID_RTSTHRESH             "},
    {0x13000001, "DOT11_OID_FRAGTHRESH            "}, {0x13000002, "DOT11_OID_SHORTRETRIES          "},
    {0x13000003, "DOT11_OID_LONGRETRIES           "}, {0x13000004, "DOT11_OID_MAXTXLIFETIME         "},
    {0x13000005, "DOT11_OID_MAXRXLIFETIME         "}, {0x13000006, "DOT11_OID_AUTHRESPTIMEOUT       "},
    {0x13000007, "DOT11_OID_ASSOCRESPTIMEOUT      "}, {0x1D000000, "DOT11_OID_ALOFT_TABLE           "},
    {0x1D000001, "DOT11_OID_ALOFT_CTRL_TABLE      "}, {0x1D000002, "DOT11_OID_ALOFT_RETREAT         "},
    {0x1D000003, "DOT11_OID_ALOFT_PROGRESS        "}, {0x1D000004, "DOT11_OID_ALOFT_FIXEDRATE       "},
    {0x1D000005, "DOT11_OID_ALOFT_RSSIGRAPH       "}, {0x1D000006, "DOT11_OID_ALOFT_CONFIG          "},
    {0x1B000000, "DOT11_OID_VDCF0                 "}, {0x1B000001, "DOT11_OID_VDCF1                 "},
    {0x1B000002, "DOT11_OID_VDCF2                 "}, {0x1B000003, "DOT11_OID_VDCF3                 "},
    {0x1B000004, "DOT11_OID_VDCF4                 "}, {0x1B000005, "DOT11_OID_VDCF5                 "},
    {0x1B000006, "DOT11_OID_VDCF6                 "}, {0x1B000007, "DOT11_OID_VDCF7                 "},
    {0x1B000008, "DOT11_OID_MAXFRAMEBURST         "}, {0x1B000009, "DOT11_OID_TSPECSTART            "},
    {0x1B00000A, "DOT11_OID_TSPECSTOP             "}, {0x1B00000B, "DOT11_OID_ACKPOLICY             "},
    {0x14000000, "DOT11_OID_PSM                   "}, {0x14000001, "DOT11_OID_CAMTIMEOUT            "},
    {0x14000002, "DOT11_OID_RECEIVEDTIMS          "}, {0x14000003, "DOT11_OID_ROAMPREFERENCE        "},
    {0x14000004, "DOT11_OID_ROAMEXCLUDE           "}, {0x14000005, "DOT11_OID_ROAMEXCLUDEADD        "},
    {0x14000006, "DOT11_OID_ROAMEXCLUDEREMOVE     "}, {0x14000007, "DOT11_OID_SCANTHRESHOLD         "},
    {0x14000008, "DOT11_OID_ROAMPARAMETERS        "}, {0x14000009, "DOT11_OID_FGSCANPARAMETERS      "},
    {0x1400000A, "DOT11_OID_SCANDISABLE           "}, {0x15000001, "DOT11_OID_CLIENTS               "},
    {0x15000002, "DOT11_OID_CLIENTSASSOCIATED     "}, {0x15000003, "DOT11_OID_CLIENT1               "},
    {0x150007DB, "DOT11_OID_CLIENTFIND            "}, {0x150007DC, "DOT11_OID_WDSLINKADD            "},
    {0x150007DD, "DOT11_OID_WDSLINKREMOVE         "}, {0x150007DE, "DOT11_OID_EAPAUTHSTA            "},
    {0x150007DF, "DOT11_OID_EAPUNAUTHSTA          "}, {0x150007E0, "DOT11_OID_DOT1XENABLE           "},
    {0x150007E1, "DOT11_OID_MICFAILURE            "}, {0x150007E2, "#DOT11_OID_STASETSS             "},
    {0x150007E3, "#DOT11_OID_STASTATS             "}, {0x150007E4, "DOT11_OID_EAPAUTHSTAEX          "},
    {0x150007E5, "DOT11_OID_EAPUNAUTHSTAEX        "}, {0x16000000, "DOT11_OID_MPDUTXSUCCESSFUL      "},
    {0x16000001, "DOT11_OID_MPDUTXONERETRY        "}, {0x16000002, "DOT11_OID_MPDUTXMULTIPLERETRIES "},
    {0x16000003, "DOT11_OID_MPDUTXFAILED          "}, {0x16000004, "DOT11_OID_MPDURXSUCCESSFUL      "},
    {0x16000005, "DOT11_OID_MPDURXDUPS            "}, {0x16000006, "DOT11_OID_RTSSUCCESSFUL         "},
    {0x16000007, "DOT11_OID_RTSFAILED             "}, {0x16000008, "DOT11_OID_ACKFAILED             "},
    {0x16000009, "DOT11_OID_FRAMERECEIVES         "}, {0x1600000A, "DOT11_OID_FRAMEERRORS           "},
    {0x1600000B, "DOT11_OID_FRAMEABORTS           "}, {0x1600000C, "DOT11_OID_FRAMEABORTSPHY        "},
    {0x17000000, "DOT11_OID_SLOTTIME              "}, {0x17000001, "DOT11_OID_CWMIN                 "},
    {0x17000002, "DOT11_OID_CWMAX                 "}, {0x17000003, "DOT11_OID_ACKWINDOW             "},
    {0x17000004, "DOT11_OID_ANTENNARX             "}, {0x17000005, "DOT11_OID_ANTENNATX             "},
    {0x17000006, "DOT11_OID_ANTENNADIVERSITY      "}, {0x17000008, "DOT11_OID_EDTHRESHOLD           "},
    {0x17000009, "DOT11_OID_PREAMBLESETTINGS      "}, {0x1700000A, "DOT11_OID_RATES                 "},
    {0x1700000B, "DOT11_OID_CCAMODESUPPORTED      "}, {0x1700000C, "DOT11_OID_CCAMODE               "},
    {0x1700000F, "DOT11_OID_OUTPUTPOWER           "}, {0x17000010, "DOT11_OID_SUPPORTEDRATES        "},
    {0x17000011, "DOT11_OID_FREQUENCY             "}, {0x17000012, "DOT11_OID_SUPPORTEDFREQUENCIES  "},
    {0x17000013, "DOT11_OID_NOISEFLOOR            "}, {0x17000016, "DOT11_OID_NONERPPROTECTION      "},
    {0x17000017, "DOT11_OID_SLOTSETTINGS          "}, {0x17000018, "DOT11_OID_NONERPTIMEOUT         "},
    {0x17000019, "DOT11_OID_PROFILES              "}, {0x17000020, "DOT11_OID_EXTENDEDRATES         "},
    {0x17000021, "DOT11_OID_SUPPORTEDBANDS        "}, {0x17000022, "DOT11_OID_BANDINDEX             "},
    {0x17000023, "DOT11_OID_NONERPRTSTHRESHOLD    "}, {0x18000000, "DOT11_OID_DEAUTHENTICATE        "},
    {0x18000001, "DOT11_OID_AUTHENTICATE          "}, {0x18000002, "DOT11_OID_DISASSOCIATE          "},
    {0x18000003, "DOT11_OID_ASSOCIATE             "}, {0x18000004, "DOT11_OID_SCAN                  "},
    {0x1800000B, "DOT11_OID_REASSOCIATE           "}, {0x1800000D, "DOT11_OID_NULL                  "},
    {0x1800000E, "DOT11_OID_BEACONTX              "}, {0x1800000F, "*DOT11_OID_PROBERSP             "},
    {0x18000010, "DOT11_OID_PREAUTH               "}, {0x1E000000, "DOT11_OID_NONERPSTATUS          "},
    {0x19000000, "DOT11_OID_STATIMEOUT            "}, {0x19000001, "DOT11_OID_19000001              "},
    {0x19000002, "DOT11_OID_BSSTIMEOUT            "}, {0x19000003, "DOT11_OID_ATTACHMENT            "},
    {0x19000005, "DOT11_OID_MLMEPOLICIES          "}, {0x1C000000, "DOT11_OID_BSSS                  "},
    {0x1C000001, "DOT11_OID_BSS1                  "}, {0x1C000042, "DOT11_OID_BSSFIND               "},
    {0x1C000043, "DOT11_OID_BSSLIST               "}, {0x1C000044, "DOT11_OID_BSSITERATE            "},
    {0x1F000000, "DOT11_OID_BANDENABLE            "}, {0x1F000001, "DOT11_OID_COUNTRYLIST           "},
    {0x1F000002, "DOT11_OID_COUNTRY               "}, {0x1F000003, "DOT11_OID_CHANNELISSUE          "},
    {0x1F000004, "DOT11_OID_CONFORMANCEMODE       "}, {0x1F000005, "DOT11_OID_WWRMODE               "},
    {0x1F000006, "DOT11_OID_CHANNELMODE           "}, {0x1F000007, "DOT11_OID_CURRENTCOUNTRY        "},
    {0x1F000008, "DOT11_OID_NEXTFREQUENCY         "}, {0x1F000009, "DOT11_OID_MEASUREMENTTHRESHOLD  "},
    {0x80000005, "LMAC_OID_GPIOBANK               "}, {0x80000006, "LMAC_OID_GPIOWM                 "},
    {0x80000007, "LMAC_OID_GPIODATA               "}, {0x80000008, "LMAC_OID_GPIOSTATUS             "},
    {0x80000009, "LMAC_OID_GPIODDR                "}, {0x8000000B, "LMAC_OID_BBREGNR                "},
    {0x8000000C, "LMAC_OID_BBREGDATA              "}, {0x81000000, "LMAC_OID_NVID                   "},
    {0x81000001, "LMAC_OID_NVOFFSET               "}, {0x81000002, "LMAC_OID_NVSIZE                 "},
    {0x81000003, "LMAC_OID_NVDATA                 "},
};

const char* find_name(std::uint32_t identifier) {
    const auto* const row = std::ranges::find(OBJECTS, identifier, &object_name::identifier);
    return row != std::end(OBJECTS) ? row->name : nullptr;
}

}  // namespace

const char* wlan_oid_name(std::uint32_t identifier, bool show_hidden) {
    static text_buffer<32> formatted;
    formatted.used = 0;
    const bool service_set = identifier >= SERVICE_SET_FIRST && identifier <= SERVICE_SET_LAST;
    if (service_set) {
        print_to<"DOT11_OID_SERVICESET%03d">(formatted, identifier - SERVICE_SET_FIRST);
        identifier = SERVICE_SET_FIRST;
    }
    const char* name = find_name(identifier);
    if (name == nullptr) {
        print_to<"OID_UNKNOWN <0x%08x>">(formatted, identifier);
        return formatted.c_str();
    }
    if (*name == NEVER_SHOWN || (*name == HIDDEN && !show_hidden)) {
        return nullptr;
    }
    if (service_set) {
        return formatted.c_str();
    }
    return *name == HIDDEN ? name + 1 : name;
}

}  // namespace ifwatch
