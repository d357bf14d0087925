#pragma once

#include <cstdint>
#include <vector>


// The text captures (or, without them, the project's sample stream) concatenated.
const std::vector<std::uint8_t>& text_stream();
// The number of lines starting with "$" in a stream.
std::uint64_t count_candidates(const std::vector<std::uint8_t>& stream);
