#include "link/connect_action.h"

#include <gtest/gtest.h>

#include "link/config_connection.h"
#include "link/connection.h"
#include "link/memory_kv_store.h"
#include "support/fake_links.h"
#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

struct connect_test : ::testing::Test {
  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  memory_kv_store_t store;
  config_connection_t settings{store, console};
  connection_t hub{queue, console, links};
};

TEST_F(connect_test, connects_as_the_settings_say_and_disconnects_when_enabled) {
  const struct {
    bool bridge, ble;
    bool tcp_expected, ble_expected;
    const char* status;  // what a summary line shows of the links in use
  } cases[] = {{true, false, true, true, "Connect 10.0.0.7:10110  BLE scanning..."},
               {false, true, false, true, "BLE scanning..."},
               {false, false, true, false, "Connect 10.0.0.7:10110"}};
  for (const auto& c : cases) {
    settings.set_enable_bridge(c.bridge);
    settings.set_enable_ble(c.ble);
    settings.set_host_bind("10.0.0.7");
    settings.set_port_bind("10110");
    connect_or_disconnect(settings, hub);
    EXPECT_EQ(links.tcp->is_enabled, c.tcp_expected);
    EXPECT_EQ(links.ble->is_enabled, c.ble_expected);
    EXPECT_EQ(used_status(settings, hub), c.status);
    if (c.tcp_expected) {
      EXPECT_EQ(links.tcp->connects.back(), "10.0.0.7:10110");
      EXPECT_EQ(settings.history_host->front(), "10.0.0.7") << "connecting records the host";
      EXPECT_EQ(settings.history_port->front(), 10110);
    }
    if (c.ble_expected) {
      EXPECT_EQ(links.ble->name_connect, "Thingy:91 UART");
    }
    connect_or_disconnect(settings, hub);
    EXPECT_FALSE(links.tcp->is_enabled);
    EXPECT_FALSE(links.ble->is_enabled);
    EXPECT_EQ(hub.status_tcp.get(), "offline");
  }
}

}  // namespace
