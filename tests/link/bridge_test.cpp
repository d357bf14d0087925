#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "link/ble.h"
#include "link/connection.h"
#include "link/link_factory.h"
#include "link/tcp_client.h"
#include "support/fake_ble_central.h"
#include "support/loopback_server.h"
#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

using bytes_t = std::vector<std::uint8_t>;
bytes_t b(std::string_view s) {
  return bytes_t(s.begin(), s.end());
}

const ble_peripheral_t thingy{7, "Thingy:91 UART", "<Thingy:91 UART 7>"};
const ble_characteristic_t recv_char{31, std::string(BLE::uuid_char_recv)};
const ble_characteristic_t send_char{32, std::string(BLE::uuid_char_send)};

// The real TCP client on one side, the Bluetooth logic over a test stack on the other.
struct bridge_links_t final : link_factory_t {
  bridge_links_t(main_queue_t& queue, console_t& console) : queue(queue), console(console) {}
  std::unique_ptr<tcp_link_t> make_tcp(link_events_t& events) override {
    return std::make_unique<tcp_client_t>(events, queue, console);
  }
  std::unique_ptr<ble_link_t> make_ble(link_events_t& events) override {
    auto stack = std::make_unique<fake_ble_central_t>();
    central = stack.get();
    return std::make_unique<BLE>(events, std::move(stack), console);
  }
  main_queue_t& queue;
  console_t& console;
  fake_ble_central_t* central = nullptr;
};

// The hub as a relay: a peripheral's notifications go to a TCP peer byte for byte (and are
// decoded here as well), and what the peer sends is written to the peripheral.
TEST(bridge_test, carries_bytes_both_ways_between_a_peripheral_and_a_tcp_peer) {
  test_queue_t queue;
  recording_console_t console;
  bridge_links_t links(queue, console);
  loopback_server_t peer;
  connection_t hub(queue, console, links);

  hub.connect_ble(*thingy.name);
  auto& central = *links.central;
  central.set_radio(ble_manager_state_t::powered_on);
  central.events->peripheral_discovered(thingy);
  central.events->peripheral_connected(thingy);
  central.events->services_discovered(thingy, {1});
  central.events->characteristics_discovered(thingy, {recv_char, send_char});
  ASSERT_EQ(hub.status_ble.get(), *thingy.name);

  hub.connect_tcp("127.0.0.1", peer.port());
  ASSERT_TRUE(peer.accept_client());
  ASSERT_TRUE(queue.run_until([&] { return hub.tcp_client().valid(); }));

  // A sentence split over two notifications, then one of only CR LF.
  const std::vector<std::string> notifications = {"$GPGGA,123519,4807.038,N,01131.0",
                                                  "00,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n", "\r\n"};
  std::string expected;
  for (const auto& n : notifications) {
    const auto bytes = b(n);
    central.events->value_updated(thingy, recv_char, std::span(bytes));
    expected += n;
  }
  std::string received;
  for (int i = 0; i < 10 && received.size() < expected.size(); ++i) received += peer.receive();
  EXPECT_EQ(received, expected) << "byte for byte, as notified";
  EXPECT_EQ(hub.gga.lat.get(), 48.1173) << "and decoded locally";

  const std::string command = "$PUBX,40,GLL,0,0,0,0*5C\r\n";
  const std::size_t writes_before = central.writes.size();
  ASSERT_TRUE(peer.send(command));
  ASSERT_TRUE(queue.run_until([&] { return central.writes.size() > writes_before; }));
  std::string written;
  for (std::size_t i = writes_before; i < central.writes.size(); ++i) written += central.writes[i];
  EXPECT_EQ(written, command) << "the peer's bytes, written to the peripheral";

  hub.disconnect();
  queue.close();
}

}  // namespace
