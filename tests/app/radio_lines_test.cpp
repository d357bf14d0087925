#include "app/radio_lines.h"

#include <gtest/gtest.h>

#include "support/fake_links.h"
#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

TEST(radio_lines, one_dated_line_for_each_new_radio_state_while_ble_is_in_use) {
  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  connection_t hub(queue, console, links);
  const radio_lines_t lines(hub, queue, console);
  hub.connect_ble("R");
  for (const char* state : {"BLE 2 unsupported", "BLE 5 powered on", "BLE 5 powered on"}) {
    links.ble->notify();
    links.ble->radio = state;
    queue.run_pending();
  }
  hub.disconnect();  // its notice, before the radio's change
  links.ble->radio = "BLE 4 powered OFF";
  queue.run_pending();
  EXPECT_EQ(console.lines, (std::vector<std::string>{"2026-01-01 12:00:00 +0000  BLE 2 unsupported",
                                                     "2026-01-01 12:00:00 +0000  BLE 5 powered on",
                                                     "2026-01-01 12:00:00 +0000  Disconnecting"}));
}

}  // namespace
