#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>

#include "link/link.h"

// Feeds a capture through a link's receive path, chunk by chunk, as a receiver would have sent it.
// It connects nothing; an unfinished last line (no LF) is dropped, as when a link closes.
inline constexpr std::size_t replay_default_chunk = 2047;  // bytes, one TCP receive call at most

// Reads the stream to its end in chunks of chunk_size bytes; false when reading failed.
bool replay_stream(std::FILE* stream, std::size_t chunk_size, link_events_t& link);

// The whole capture in chunks of chunk_size bytes, the last one shorter.
void replay_chunks(std::span<const std::uint8_t> capture, std::size_t chunk_size, link_events_t& link);
