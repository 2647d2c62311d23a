#pragma once

namespace ifwatch::capture {

// The channel types that are treated each in its own way.
inline constexpr int CHANNEL_PABX = -2;
inline constexpr int CHANNEL_D = 0;
inline constexpr int CHANNEL_B = 1;
inline constexpr int CHANNEL_ATM_OLD = 2;
inline constexpr int CHANNEL_ATM = 3;
inline constexpr int CHANNEL_WLAN = 4;
inline constexpr int CHANNEL_IP_OVER_X25 = 5;
inline constexpr int CHANNEL_LAN = 6;
inline constexpr int CHANNEL_LAN_802_3 = 7;
inline constexpr int CHANNEL_TOKEN_BUS = 8;
inline constexpr int CHANNEL_TOKEN_RING = 9;
inline constexpr int CHANNEL_LAPB = 16;
inline constexpr int CHANNEL_PPP = 23;
inline constexpr int CHANNEL_FRAME_RELAY = 32;
inline constexpr int CHANNEL_HDLC = 118;
inline constexpr int CHANNEL_TUNNEL = 131;
inline constexpr int CHANNEL_BRIDGED_LAN = 135;

}  // namespace ifwatch::capture
