// Arbitrary chunk sequences through the chunk splitter. The first byte chooses the splitter's
// flags; each following run is one chunk whose length is given by the byte before it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "link/chunk_splitter.h"

namespace {

struct checking_sink_t final : chunk_sink_t {
  void chunk_bridge(std::span<const std::uint8_t> bytes) override { total += bytes.size(); }
  void chunk_lines(std::span<const std::string> lines) override {
    for (const auto& line : lines)
      for (const char c : line)
        if (c == '\n' || c == '\r') __builtin_trap();
  }
  void chunk_binary(std::span<const std::uint8_t> bytes) override { total += bytes.size(); }
  std::size_t total = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::uint8_t flags = data[0];
  chunk_splitter_t splitter((flags & 1) != 0, (flags & 2) != 0);
  splitter.set_empty_lines((flags & 4) != 0);
  checking_sink_t sink;
  std::size_t at = 1;
  while (at < size) {
    const std::size_t len = std::min<std::size_t>(data[at] + 1u, size - at - 1);
    ++at;
    if (len == 0) break;
    splitter.feed(std::span<const std::uint8_t>(data + at, len), sink);
    at += len;
  }
  return 0;
}
