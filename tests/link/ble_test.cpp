#include "link/ble.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/fake_ble_central.h"
#include "support/recording_console.h"
#include "support/recording_link_events.h"
#include "support/test_queue.h"

namespace {

using bytes_t = std::vector<std::uint8_t>;
bytes_t b(std::string_view s) {
  return bytes_t(s.begin(), s.end());
}

const ble_peripheral_t thingy{7, "Thingy:91 UART", "<Thingy:91 UART 7>"};
const ble_peripheral_t other{8, "Thingy:91 UART 2", "<other 8>"};
const ble_characteristic_t recv_char{31, std::string(BLE::uuid_char_recv)};
const ble_characteristic_t send_char{32, std::string(BLE::uuid_char_send)};
const ble_characteristic_t battery{33, "00002A19-0000-1000-8000-00805F9B34FB"};

class ble_test : public ::testing::Test {
protected:
  // Radio on, enabled, the right peripheral found, connected, and both characteristics found.
  void bring_up() {
    central.set_radio(ble_manager_state_t::powered_on);
    ble.connect("Thingy:91 UART");
    central.events->peripheral_discovered(thingy);
    central.events->peripheral_connected(thingy);
    central.events->services_discovered(thingy, {1});
    central.events->characteristics_discovered(thingy, {battery, recv_char, send_char});
  }
  void notify(const bytes_t& value) { central.events->value_updated(thingy, recv_char, std::span(value)); }
  std::pair<std::string, colour_t> shown() const { return {ble.status.get(), ble.sta_fg.get()}; }

  std::unique_ptr<fake_ble_central_t> stack = std::make_unique<fake_ble_central_t>();
  fake_ble_central_t& central = *stack;
  recording_console_t console;
  recording_link_events_t hub;
  test_queue_t queue;
  BLE ble{hub, std::move(stack), console, queue};
};

TEST_F(ble_test, only_the_exact_name_connects) {
  central.set_radio(ble_manager_state_t::powered_on);
  ble.connect("Thingy:91 UART");
  EXPECT_EQ(shown(), std::pair(std::string("BLE scanning..."), colour_t::blue));
  central.events->peripheral_discovered(other);
  central.events->peripheral_discovered({9, "thingy:91 uart", "<lower 9>"});
  central.events->peripheral_discovered({10, std::nullopt, "<nameless 10>"});
  EXPECT_EQ(central.calls, (std::vector<std::string>{"scan"}));
  central.events->peripheral_discovered(thingy);
  EXPECT_EQ(shown(), std::pair(std::string("BLE found a Thingy:91 UART device"), colour_t::green));
  EXPECT_EQ(central.calls.back(), "connect 7");
}

TEST_F(ble_test, becomes_ready_when_both_uart_characteristics_are_found) {
  bring_up();
  EXPECT_EQ(hub.events, std::vector<std::string>{"up Thingy:91 UART"});
  EXPECT_EQ(shown(), std::pair(std::string("Thingy:91 UART"), colour_t::secondary));
  EXPECT_TRUE(ble.ready());
  const std::vector<std::string> tail(central.calls.end() - 6, central.calls.end());
  EXPECT_EQ(tail, (std::vector<std::string>{"discover_characteristics 1", "read 33", "read 31", "notify 31 on",
                                            "read 32", "notify 32 on"}));
}

TEST_F(ble_test, tx_notifications_reach_the_hub_raw_and_each_asks_for_the_rssi) {
  bring_up();
  notify(b("$GPGGA,1"));
  notify(bytes_t{0xB5, 0x62});
  notify(bytes_t{});
  central.events->value_updated(thingy, recv_char, std::nullopt);
  const auto other = b("$GPTXT");
  for (const auto& c : {send_char, battery}) central.events->value_updated(thingy, c, std::span(other));
  EXPECT_EQ(hub.received, "$GPGGA,1\xB5\x62");
  EXPECT_EQ(hub.chunks, 2u) << "an empty value is no chunk";
  EXPECT_EQ(central.rssi_requests, 5) << "one RSSI request a notification, one at connection";
}

TEST_F(ble_test, radio_off_and_on_while_enabled_rescans_by_itself) {
  bring_up();
  central.set_radio(ble_manager_state_t::powered_off);
  EXPECT_EQ(shown(), std::pair(std::string("BLE 4 powered OFF"), colour_t::red));
  EXPECT_EQ(console.lines.back(), "ble_manager.state: 4 powered OFF");
  central.calls.clear();
  central.set_radio(ble_manager_state_t::powered_on);
  EXPECT_EQ(ble.status.get(), "BLE scanning...");
  EXPECT_EQ(central.calls, (std::vector<std::string>{"cancel 7", "scan"}));
  EXPECT_EQ(ble.name_peripheral_reconnect, "Thingy:91 UART");
}

// Each state shows its text, which is also the radio state the link reports; an unknown one changes
// neither.
TEST_F(ble_test, state_texts) {
  for (const char* status : {"BLE 0 unknown", "BLE 1 resetting", "BLE 2 unsupported", "BLE 3 unauthorized",
                             "BLE 4 powered OFF", "BLE 5 powered on"}) {
    central.set_radio(static_cast<ble_manager_state_t>(status[4] - '0'));
    EXPECT_EQ(std::pair(ble.status.get(), ble.radio_state()), std::pair(std::string(status), std::string(status)));
  }
  central.set_radio(static_cast<ble_manager_state_t>(9));
  EXPECT_EQ(console.lines.back(), "ble_manager.state: 9 default?");
  EXPECT_EQ(ble.radio_state(), "BLE 5 powered on");
}

TEST_F(ble_test, an_unexpected_loss_is_reported_and_rescanned_a_user_disconnect_is_not) {
  bring_up();
  central.events->rssi_read(thingy, -67);
  EXPECT_EQ(ble.rssi.text(), "-67");
  central.events->peripheral_disconnected(thingy, std::string("link lost"));
  EXPECT_EQ(hub.events.back(), "down Thingy:91 UART 0");
  EXPECT_EQ(ble.rssi.text(), "");
  EXPECT_EQ(central.calls.back(), "scan");
  const std::vector<std::string> said(console.lines.end() - 3, console.lines.end() - 1);
  EXPECT_EQ(said, (std::vector<std::string>{"disconnected: Thingy:91 UART -----------------", "link lost"}));

  central.events->peripheral_discovered(thingy);
  central.events->peripheral_connected(thingy);
  central.events->characteristics_discovered(thingy, {recv_char, send_char});
  hub.events.clear();
  ble.stop();
  central.events->peripheral_disconnected(thingy, std::nullopt);
  EXPECT_TRUE(hub.events.empty());
  EXPECT_EQ(central.calls.back(), "cancel 7");
}

TEST_F(ble_test, a_peripheral_ready_while_disabled_is_disconnected) {
  central.set_radio(ble_manager_state_t::powered_on);
  ble.connect("Thingy:91 UART");
  central.events->peripheral_discovered(thingy);
  central.events->peripheral_connected(thingy);
  ble.stop();
  central.events->characteristics_discovered(thingy, {recv_char, send_char});
  EXPECT_TRUE(hub.events.empty());
  EXPECT_FALSE(ble.ready());
}

TEST_F(ble_test, a_failed_connect_is_a_loss_and_a_stop_without_a_peripheral_cancels_nothing) {
  central.set_radio(ble_manager_state_t::powered_on);
  ble.connect("Thingy:91 UART");
  central.events->peripheral_discovered(thingy);
  central.events->connect_failed(thingy, "refused");
  EXPECT_EQ(hub.events, std::vector<std::string>{"down Thingy:91 UART 0"});
  EXPECT_NE(central.calls.back(), "scan") << "a peripheral that refuses at once is not asked again at once";
  queue.advance(BLE::retry_delay);
  EXPECT_EQ(shown(), std::pair(std::string("BLE scanning..."), colour_t::blue));
  EXPECT_EQ(central.calls.back(), "scan");
  central.events->connect_failed(thingy, "refused");
  ble.stop();
  ble.connect("Thingy:91 UART");
  central.calls.clear();
  queue.advance(BLE::retry_delay);
  EXPECT_TRUE(central.calls.empty()) << "the rescan of a request that the user ended";
  ble.stop();
  central.calls.clear();
  ble.stop();
  EXPECT_EQ(central.calls, std::vector<std::string>{"stop_scan"});
}

TEST_F(ble_test, writes_only_when_ready_and_in_pieces) {
  ble.write(b("dropped"));
  EXPECT_TRUE(central.writes.empty());
  bring_up();
  std::string long_text(1200, 'x');
  for (std::size_t i = 0; i < long_text.size(); ++i) long_text[i] = static_cast<char>('a' + i % 26);
  ble.write(b(long_text));
  ASSERT_EQ(central.writes.size(), 3u);
  EXPECT_EQ(central.writes[0].size(), 512u);
  EXPECT_EQ(central.writes[2].size(), 176u);
  EXPECT_EQ(central.writes[0] + central.writes[1] + central.writes[2], long_text);
}

}  // namespace
