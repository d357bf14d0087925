// Arbitrary lines through the hub's line path with all six decoders: length limits, checksum,
// field list, every decoder's reading. Each input is cut at LF; a line that fails the checksum
// gets a correct one appended half of the time, so that the decoders see the bytes too.
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

#include "link/connection.h"
#include "link/offline_links.h"
#include "support/idle_harness.h"
#include "support/sentences.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static idle_queue_t queue;
  static silent_console_t console;
  static offline_links_t links;
  static connection_t hub(queue, console, links);
  std::string line;
  for (std::size_t i = 0; i <= size; ++i) {
    if (i < size && data[i] != '\n') {
      line.push_back(static_cast<char>(data[i]));
      continue;
    }
    hub.receive_line(line);
    if (!line.empty() && line.find('*') == std::string::npos) hub.receive_line(with_checksum(line));
    line.clear();
    queue.now += 0.5;
  }
  if (size > 0 && data[0] == 'R') hub.reset();
  return 0;
}
