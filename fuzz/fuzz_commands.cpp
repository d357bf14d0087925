// What a user types and what a receiver answers: the input's first line as a typed command, the
// whole input as the receiver's chunks (each length given by the byte before it) read by the
// console's frame reader and answer tracker while commands wait, and as the payload of every
// answer the tracker decodes.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "command/config_keys.h"
#include "command/typed_command.h"
#include "link/connection.h"
#include "link/offline_links.h"
#include "link/receiver_console.h"
#include "support/idle_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static idle_queue_t queue;
  static silent_console_t console;
  static offline_links_t links;
  static connection_t hub(queue, console, links);
  static const bool connected = (hub.connect_tcp("127.0.0.1", 10110), true);
  (void)connected;

  const std::string_view text(reinterpret_cast<const char*>(data), size);
  (void)parse_typed_command(text.substr(0, text.find('\n')));
  const std::span<const std::uint8_t> bytes(data, size);
  (void)items_of(bytes);
  (void)keys_of(ubx_cfg_valget, bytes);
  (void)decode_mon_ver(bytes);

  receiver_console_t commands(hub, queue, console);
  for (const char* typed : {"get:CFG-RATE-MEAS", "set:CFG-RATE-MEAS=100", "ubx:01,07", "rate:200"})
    commands.send(typed);
  auto& link = hub.tcp_events();
  link.link_up("fuzz");
  std::size_t at = 0;
  while (at < size) {
    const std::size_t len = std::min<std::size_t>(data[at] + 1u, size - at - 1);
    ++at;
    if (len == 0) break;
    link.link_bytes(bytes.subspan(at, len));
    at += len;
  }
  return 0;
}
