// Arbitrary chunk sequences through the whole receive path of both links: the bridge hand-off, the
// text/binary choice, line cutting and its bound, the hub's sentence checks and all six decoders,
// the UBX framer, and the return to text after binary noise. Each chunk follows one control byte:
// its low six bits give the length less one, bit 6 multiplies it by 64 (so a few chunks reach the
// noise limit and a line its bound), bit 7 sends it to the Bluetooth link instead of TCP. Each
// input is a new hub whose links have just come up, so a failing input replays alone.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "link/connection.h"
#include "link/offline_links.h"
#include "support/idle_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  idle_queue_t queue;
  silent_console_t console;
  offline_links_t links;
  connection_t hub(queue, console, links);
  hub.tcp_client();
  hub.ble();
  hub.tcp_events().link_up("fuzz");
  hub.ble_events().link_up("fuzz");
  std::size_t at = 0;
  while (at < size) {
    const std::uint8_t control = data[at++];
    std::size_t len = (control & 0x3Fu) + 1u;
    if ((control & 0x40u) != 0) len *= 64;
    len = std::min(len, size - at);
    auto& link = (control & 0x80u) != 0 ? hub.ble_events() : hub.tcp_events();
    link.link_bytes(std::span<const std::uint8_t>(data + at, len));
    if (hub.arr_rx->size() > connection_t::log_limit_shown) __builtin_trap();
    at += len;
    queue.now += 0.5;
  }
  return 0;
}
