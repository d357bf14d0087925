// Arbitrary chunk sequences through the hub's binary path: the UBX framer, the six decoders'
// record paths and the log texts. Each chunk's length is given by the byte before it; chk_ignore
// is switched on by the first byte, so frames with any checksum reach the record checks too.
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

#include "link/connection.h"
#include "link/offline_links.h"
#include "support/idle_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static idle_queue_t queue;
  static silent_console_t console;
  static offline_links_t links;
  static connection_t hub(queue, console, links);
  if (size == 0) return 0;
  hub.gps_bin.chk_ignore = (data[0] & 1) != 0;
  std::size_t at = 1;
  while (at < size) {
    const std::size_t len = std::min<std::size_t>(data[at] + 1u, size - at - 1);
    ++at;
    if (len == 0) break;
    hub.receive_arr(std::span<const std::uint8_t>(data + at, len));
    at += len;
    queue.now += 0.5;
  }
  return 0;
}
