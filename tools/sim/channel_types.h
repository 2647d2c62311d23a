#pragma once

namespace ifwatch::sim {

// The channel types whose records the filters look into.
inline constexpr int CHANNEL_ATM_OLD = 2;
inline constexpr int CHANNEL_ATM = 3;
inline constexpr int CHANNEL_LAN = 6;
inline constexpr int CHANNEL_LAN_802_3 = 7;
inline constexpr int CHANNEL_TOKEN_RING = 9;
inline constexpr int CHANNEL_TUNNEL = 131;
inline constexpr int CHANNEL_BRIDGED_LAN = 135;

}  // namespace ifwatch::sim
