#include "link/replay.h"

#include <algorithm>
#include <vector>

bool replay_t::feed_stream(std::FILE* stream, std::size_t chunk_size) {
  std::vector<std::uint8_t> buffer(chunk_size);
  for (;;) {
    const auto n = std::fread(buffer.data(), 1, chunk_size, stream);
    if (n > 0) feed(std::span<const std::uint8_t>(buffer.data(), n));
    if (n < chunk_size) return std::ferror(stream) == 0;
  }
}

void replay_chunks(std::span<const std::uint8_t> capture, std::size_t chunk_size, tcp_client_delegate_t& delegate) {
  replay_t replay(delegate);
  for (std::size_t at = 0; at < capture.size(); at += chunk_size)
    replay.feed(capture.subspan(at, std::min(chunk_size, capture.size() - at)));
}
