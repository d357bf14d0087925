// Arbitrary lines through a link's receive path with all six decoders: line cutting, length limits,
// checksum, field list, every decoder's reading. Each input is cut at LF and every line is one
// chunk; a line without a checksum is sent again with a correct one, so that the decoders see its
// bytes too. Each input starts as a new connection, so one non-UTF-8 line cannot end text
// decoding for the inputs that follow.
#include <cstddef>
#include <cstdint>
#include <string>

#include "link/connection.h"
#include "link/offline_links.h"
#include "support/idle_harness.h"
#include "support/link_feed.h"
#include "support/sentences.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static idle_queue_t queue;
  static silent_console_t console;
  static offline_links_t links;
  static connection_t hub(queue, console, links);
  auto& link = hub.tcp_events();
  link.link_up("fuzz");
  std::string line;
  for (std::size_t i = 0; i <= size; ++i) {
    if (i < size && data[i] != '\n') {
      line.push_back(static_cast<char>(data[i]));
      continue;
    }
    feed_line(link, line);
    if (!line.empty() && line.find('*') == std::string::npos) feed_line(link, with_checksum(line));
    line.clear();
    queue.now += 0.5;
  }
  if (size > 0 && data[0] == 'R') hub.reset();
  return 0;
}
