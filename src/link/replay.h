#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>

#include "link/chunk_splitter.h"
#include "link/tcp_link.h"

// Feeds a capture through the receive path of a connected TCP link, chunk by chunk, as a
// receiver would have sent it. It connects nothing; an unfinished last line (no LF) is dropped,
// as when a link closes.
inline constexpr std::size_t replay_default_chunk = 2047;  // bytes, one TCP receive call at most

class replay_t final : private chunk_sink_t {
public:
  explicit replay_t(tcp_client_delegate_t& delegate) : delegate_(delegate) {}

  void feed(std::span<const std::uint8_t> chunk) { splitter_.feed(chunk, *this); }
  // Reads the stream to its end in chunks of chunk_size bytes; false when reading failed.
  bool feed_stream(std::FILE* stream, std::size_t chunk_size);

private:
  void chunk_bridge(std::span<const std::uint8_t> bytes) override { delegate_.tcp_bridge(bytes); }
  void chunk_lines(std::span<const std::string> lines) override { delegate_.tcp_lines(lines); }
  void chunk_binary(std::span<const std::uint8_t> bytes) override { delegate_.tcp_binary(bytes); }

  tcp_client_delegate_t& delegate_;
  chunk_splitter_t splitter_{false, false};
};

// The whole capture in chunks of chunk_size bytes, the last one shorter.
void replay_chunks(std::span<const std::uint8_t> capture, std::size_t chunk_size, tcp_client_delegate_t& delegate);
