#include "link/replay.h"

#include <algorithm>
#include <vector>

namespace {

// Bytes asked of the stream per read: many chunks at once, so a large capture costs few system
// calls. fread fills the whole request unless the stream ends or fails, so the chunks cut from it
// are exactly those that reading chunk_size bytes at a time would give.
constexpr std::size_t read_block = std::size_t{256} * 1024;

}  // namespace

bool replay_stream(std::FILE* stream, std::size_t chunk_size, link_events_t& link) {
  if (chunk_size == 0) return false;
  const std::size_t block = std::max<std::size_t>(1, read_block / chunk_size) * chunk_size;
  std::vector<std::uint8_t> buffer(block);
  for (;;) {
    const auto n = std::fread(buffer.data(), 1, block, stream);
    replay_chunks(std::span<const std::uint8_t>(buffer.data(), n), chunk_size, link);
    if (n < block) return std::ferror(stream) == 0;
  }
}

void replay_chunks(std::span<const std::uint8_t> capture, std::size_t chunk_size, link_events_t& link) {
  for (std::size_t at = 0; at < capture.size(); at += chunk_size)
    link.link_bytes(capture.subspan(at, std::min(chunk_size, capture.size() - at)));
}
