#pragma once

#include <cstdint>
#include <vector>


// The text captures (or, without them, the project's sample stream) concatenated.
const std::vector<std::uint8_t>& text_stream();
// The number of lines starting with "$" in a stream.
std::uint64_t count_candidates(const std::vector<std::uint8_t>& stream);

// The UBX capture's binary part (from its first sync bytes on), repeated to about 1 MB; without
// the capture, empty.
const std::vector<std::uint8_t>& ubx_stream();
// The number of NAV-PVT frame starts (B5 62 01 07) in a stream.
std::uint64_t count_nav_pvt(const std::vector<std::uint8_t>& stream);
