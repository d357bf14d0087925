// Arbitrary bytes from a caster: the answer head, the chunked body and the RTCM 3 framer with its
// counts and station positions. The first byte sets the size of the pieces the rest is fed in,
// so frames and chunks are cut at every place.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ntrip/ntrip_http.h"
#include "ntrip/rtcm_stats.h"
#include "ntrip/source_table.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t piece = data[0] + 1u;
  const std::span<const std::uint8_t> input(data + 1, size - 1);
  const std::string_view text(reinterpret_cast<const char*>(input.data()), input.size());

  const auto answer = read_ntrip_answer(text, "MNT");
  parse_source_table(text);
  rtcm_stats_t stats;
  chunked_decoder_t chunks;
  std::vector<std::uint8_t> decoded;
  for (std::size_t at = 0; at < input.size(); at += piece) {
    const auto part = input.subspan(at, std::min(piece, input.size() - at));
    stats.feed(part, static_cast<double>(at));
    if (answer.chunked) {
      decoded.clear();
      chunks.feed(part, decoded);
      stats.feed(decoded, static_cast<double>(at));
    }
  }
  return 0;
}
