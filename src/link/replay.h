#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "link/tcp_link.h"

// Feeds a capture through the receive path of a connected TCP link, cut into chunks of
// chunk_size bytes (the last one shorter), as a receiver would have sent it. It connects nothing;
// an unfinished last line (no LF) is dropped, as when a link closes.
inline constexpr std::size_t replay_default_chunk = 2047;  // bytes, one TCP receive call at most

void replay_chunks(std::span<const std::uint8_t> capture, std::size_t chunk_size, tcp_client_delegate_t& delegate);
