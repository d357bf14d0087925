#pragma once

#include <cstdint>
#include <string_view>

// What a new user's settings start with: the peripheral name that the UART firmware advertises,
// and the loopback address and port of a local serial-to-network bridge.
inline constexpr std::string_view default_ble_name = "Thingy:91 UART";
inline constexpr std::string_view default_host = "127.0.0.1";
inline constexpr std::uint16_t default_port = 81;
