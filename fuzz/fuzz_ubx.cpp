// Arbitrary chunk sequences through a link's binary path: the UBX framer, the six decoders' record
// paths and the log texts. Each chunk's length is given by the byte before it. Each input starts as
// a new connection switched to binary by a lone non-UTF-8 byte, so every chunk goes to the framer.
#include <cstddef>
#include <cstdint>

#include "link/connection.h"
#include "link/offline_links.h"
#include "support/idle_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static idle_queue_t queue;
  static silent_console_t console;
  static offline_links_t links;
  static connection_t hub(queue, console, links);
  static constexpr std::uint8_t binary_switch[] = {0xFE};
  auto& link = hub.tcp_events();
  link.link_up("fuzz");
  link.link_bytes(binary_switch);
  std::size_t at = 0;
  while (at < size) {
    const std::size_t len = std::min<std::size_t>(data[at] + 1u, size - at - 1);
    ++at;
    if (len == 0) break;
    link.link_bytes(std::span<const std::uint8_t>(data + at, len));
    at += len;
    queue.now += 0.5;
  }
  return 0;
}
