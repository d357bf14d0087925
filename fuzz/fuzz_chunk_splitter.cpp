// Arbitrary chunk sequences through the chunk splitter; each run is one chunk whose length is given
// by the byte before it. No line may hold a CR or LF, and a binary chunk gives no lines.
#include <cstddef>
#include <cstdint>
#include <string>

#include "link/chunk_splitter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  chunk_splitter_t splitter;
  std::size_t at = 0;
  while (at < size) {
    const std::size_t len = std::min<std::size_t>(data[at] + 1u, size - at - 1);
    ++at;
    if (len == 0) break;
    const auto cut = splitter.feed(std::span<const std::uint8_t>(data + at, len));
    if (cut.binary && !cut.lines.empty()) __builtin_trap();
    for (const auto& line : cut.lines)
      if (line.empty() || line.find_first_of("\r\n") != std::string::npos) __builtin_trap();
    at += len;
  }
  return 0;
}
