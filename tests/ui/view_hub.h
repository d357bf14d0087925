#pragma once

#include <QCoreApplication>
#include <array>
#include <string>
#include <vector>

#include "link/connection.h"
#include "support/fake_links.h"
#include "support/link_feed.h"
#include "support/recording_console.h"
#include "support/sentences.h"
#include "support/test_queue.h"

// A hub for the screens' tests, fed with real sentences through its receive path.
struct view_hub_t {
  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  connection_t hub{queue, console, links};

  // Receives a sentence given without its checksum.
  void receive(const std::string& body) { feed_line(hub.tcp_events(), with_checksum(body)); }
};

// One satellite of a GSV sentence as the receiver writes it: PRN, elevation, azimuth, SNR.
using gsv_group_t = std::array<std::string, 4>;

// A one-sentence GSV group ending in a signal id, so that no value carries the checksum; the
// groups not given stay empty, which the decoder skips.
inline std::string gsv_body(unsigned in_view, std::vector<gsv_group_t> groups) {
  groups.resize(4);
  std::string body = "$GPGSV,1,1," + std::to_string(in_view);
  for (const auto& group : groups)
    for (const auto& value : group) body += "," + value;
  return body + ",1";
}

// Runs the redraws that the notices scheduled.
inline void settle() {
  QCoreApplication::processEvents();
}
