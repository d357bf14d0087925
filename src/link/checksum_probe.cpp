#include "link/checksum_probe.h"

#include <algorithm>
#include <string_view>

#include "nmea/sentence.h"
#include "ubx/records.h"

namespace {

constexpr std::size_t ubx_header = 6;  // sync bytes, class, id, two length bytes

}  // namespace

bool checksum_probe_t::feed(std::span<const std::uint8_t> chunk) {
  if (seen_) {
    bytes_.insert(bytes_.end(), chunk.begin(), chunk.end());
    return true;
  }
  // Bytes already found to begin nothing are dropped before the new ones are kept.
  bytes_.erase(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(scanned_));
  scanned_ = 0;
  bytes_.insert(bytes_.end(), chunk.begin(), chunk.end());

  std::size_t first_pending = bytes_.size();
  for (std::size_t at = 0; at < bytes_.size(); ++at) {
    auto verdict = verdict_t::invalid;
    if (bytes_[at] == '$') verdict = check_sentence(at);
    if (bytes_[at] == ubx_sync[0]) verdict = check_frame(at);
    if (verdict == verdict_t::valid) {
      found_ = at;
      seen_ = true;
      return true;
    }
    if (verdict == verdict_t::pending) first_pending = std::min(first_pending, at);
  }
  scanned_ = first_pending;
  return false;
}

std::span<const std::uint8_t> checksum_probe_t::from_first() const {
  if (!seen_) return {};
  return std::span(bytes_).subspan(found_);
}

void checksum_probe_t::reset() {
  bytes_.clear();
  scanned_ = 0;
  found_ = 0;
  seen_ = false;
}

// A sentence is printable ASCII from "$" to its LF (a CR before it is allowed), with its checksum.
checksum_probe_t::verdict_t checksum_probe_t::check_sentence(std::size_t at) const {
  const auto end = std::min(bytes_.size(), at + max_sentence + 1);
  const auto lf = std::find(bytes_.begin() + static_cast<std::ptrdiff_t>(at),
                            bytes_.begin() + static_cast<std::ptrdiff_t>(end), '\n');
  if (lf == bytes_.begin() + static_cast<std::ptrdiff_t>(end)) {
    return end - at <= max_sentence ? verdict_t::pending : verdict_t::invalid;
  }
  std::string_view line(reinterpret_cast<const char*>(bytes_.data()) + at,
                        static_cast<std::size_t>(lf - bytes_.begin()) - at);
  if (line.ends_with('\r')) line.remove_suffix(1);
  const bool printable = std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; });
  if (!printable || line.size() < sentence_min_length) return verdict_t::invalid;
  return scan_sentence(line, {}).checksum_ok ? verdict_t::valid : verdict_t::invalid;
}

// A frame is the sync bytes, class, id, a little-endian payload length, the payload and the
// Fletcher checksum of everything from the class byte to the payload's end.
checksum_probe_t::verdict_t checksum_probe_t::check_frame(std::size_t at) const {
  const std::size_t have = bytes_.size() - at;
  if (have >= 2 && bytes_[at + 1] != ubx_sync[1]) return verdict_t::invalid;
  if (have < ubx_header) return verdict_t::pending;
  const std::size_t length = bytes_[at + 4] | (static_cast<std::size_t>(bytes_[at + 5]) << 8);
  if (length > max_ubx_payload) return verdict_t::invalid;
  if (have < ubx_header + length + 2) return verdict_t::pending;
  const auto image = std::span(bytes_).subspan(at + 2, length + 4);
  const auto sum = ubx_checksum(image);
  const std::size_t ck = at + ubx_header + length;
  return sum[0] == bytes_[ck] && sum[1] == bytes_[ck + 1] ? verdict_t::valid : verdict_t::invalid;
}
