#include "command/ubx_scanner.h"

#include <algorithm>

#include "ubx/records.h"

namespace {

constexpr std::size_t header = 6;  // sync, class, id, length

}  // namespace

void ubx_scanner_t::feed(std::span<const std::uint8_t> bytes) {
  pending_.insert(pending_.end(), bytes.begin(), bytes.end());
  std::size_t at = 0;  // the first byte not yet ruled out as the start of a frame
  while (true) {
    const auto sync = std::search(pending_.begin() + static_cast<std::ptrdiff_t>(at), pending_.end(), ubx_sync.begin(),
                                  ubx_sync.end());
    at = static_cast<std::size_t>(sync - pending_.begin());
    // Keep a lone first sync byte at the end: the next chunk may carry its second.
    if (at == pending_.size() && !pending_.empty() && pending_.back() == ubx_sync[0]) --at;
    if (pending_.size() - at < header) break;
    const auto length = static_cast<std::size_t>(get_le(pending_, at + 4, 2));
    if (length > max_payload) {
      ++at;
      continue;
    }
    if (pending_.size() - at < length + ubx_frame_overhead) break;
    const std::span<const std::uint8_t> image(pending_.data() + at + 2, length + 4);
    const auto check = ubx_checksum(image);
    if (check[0] != pending_[at + 2 + image.size()] || check[1] != pending_[at + 3 + image.size()]) {
      ++at;
      continue;
    }
    frame_({image[0], image[1]}, image.subspan(4));
    at += length + ubx_frame_overhead;
  }
  pending_.erase(pending_.begin(), pending_.begin() + static_cast<std::ptrdiff_t>(at));
}
