#pragma once

#include <QApplication>
#include <QFont>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "link/connection.h"
#include "support/fake_links.h"
#include "support/link_feed.h"
#include "support/recording_console.h"
#include "support/sentences.h"
#include "support/test_queue.h"
#include "ui/font_size.h"
#include "ui/link_meter.h"

// A hub for the screens' tests, fed with real sentences through its receive path.
struct view_hub_t {
  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  connection_t hub{queue, console, links};
  link_meter_t meter{hub};

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

// A font's size in the screens' layout units (ui/font_size.h), against the platform's font.
inline int layout_size(const QFont& font) {
  return static_cast<int>(std::lround(font.pointSizeF() / QApplication::font().pointSizeF() * layout_body_size));
}

// Runs the redraws that the notices scheduled.
inline void settle() {
  QCoreApplication::processEvents();
}
