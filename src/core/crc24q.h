#pragma once

#include <cstdint>
#include <span>

// The 24-bit CRC that closes every RTCM 3 frame (polynomial 0x1864CFB, initial value 0, no final
// XOR), over the frame's header and payload.
std::uint32_t crc24q(std::span<const std::uint8_t> bytes);
