// The real Qt Bluetooth central, driven by the hub, against a mock BlueZ on a private D-Bus daemon
// that stands in for the system bus.
//
// Qt connects to the system bus once per process and keeps that connection, so the daemon and
// the mock live for the whole suite; each test connects the hub and disconnects it again.

#include "mock_bluez.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTest>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "link/ble.h"
#include "link/connection.h"
#include "platform/qt_ble_central.h"
#include "platform/qt_main_queue.h"
#include "support/fake_links.h"
#include "support/recording_console.h"
#include "support/sentences.h"

namespace {

using bytes_t = std::vector<std::uint8_t>;

constexpr int wait_ms = mock_bluez_t::wait_ms;
const std::string nus_name = "korvid-test-nus";

bytes_t bytes_of(const std::string& s) {
  return bytes_t(s.begin(), s.end());
}

// The distinct values a published text took while it was watched, in order. A notice comes before
// each assignment, so a notice notes the text being replaced; seen() notes the current one.
struct text_history_t {
  text_history_t(observable_t& owner, const published_t<std::string>& text)
      : text(text), subscription(owner.subscribe([this] { note(); })) {}
  void note() {
    if (list.empty() || list.back() != text.get()) list.push_back(text.get());
  }
  std::vector<std::string> seen() {
    note();
    return list;
  }
  const published_t<std::string>& text;
  std::vector<std::string> list;
  subscription_t subscription;
};

// The program's transports, except that TCP is a double: it records what the bridge sends it,
// which also tells the test when a notification has been handled.
struct mock_links_t final : link_factory_t {
  mock_links_t(console_t& console, main_queue_t& queue) : console(console), queue(queue) {}
  std::unique_ptr<tcp_link_t> make_tcp(link_events_t&) override {
    auto link = std::make_unique<fake_tcp_t>();
    tcp = link.get();
    return link;
  }
  std::unique_ptr<ble_link_t> make_ble(link_events_t& events) override {
    auto link = std::make_unique<BLE>(events, std::make_unique<qt_ble_central_t>(), console, queue, retry_delay_s);
    ble = link.get();
    ble_status.emplace(*ble, ble->status);
    return link;
  }
  static constexpr double retry_delay_s = 0.2;  // short, for the tests of refused connects
  console_t& console;
  main_queue_t& queue;
  fake_tcp_t* tcp = nullptr;
  BLE* ble = nullptr;
  std::optional<text_history_t> ble_status;
};

class mock_bluez_test : public ::testing::Test {
protected:
  static void SetUpTestSuite() {
    skip_reason = mock_bluez_t::missing_tools();
    if (!skip_reason.empty()) return;
    static int argc = 1;
    static char name[] = "bluetooth_tests";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance()) app = new QCoreApplication(argc, argv);
    bluez = std::make_unique<mock_bluez_t>();
    setup_error = bluez->start(nus_name);
  }

  static void TearDownTestSuite() {
    bluez.reset();
    delete app;
    app = nullptr;
  }

  void SetUp() override {
    if (!skip_reason.empty()) GTEST_SKIP() << skip_reason;
    ASSERT_EQ(setup_error, "");
    ASSERT_FALSE(bluez->connected(mock_bluez_t::device_path)) << "a test before left the peripheral connected";
    hub = std::make_unique<connection_t>(queue, console, links);
    hub->tcp_client();
    links.tcp->is_valid = true;  // the bridge forwards every notification to it
  }

  void TearDown() override {
    if (!hub) return;
    hub->disconnect();
    EXPECT_TRUE(QTest::qWaitFor([] { return !bluez->connected(mock_bluez_t::device_path); }, wait_ms))
        << "the user's disconnect";
    QTest::qWait(50);  // lets Qt see the disconnection before its controller goes
    hub.reset();
    QTest::qWait(10);  // and delete what it was asked to delete later
    if (HasFailure()) std::cout << "mock log:\n" << bluez->log() << "\n";
  }

  // True once the link is up and notifications are enabled; connect_and_wait connects by name first.
  bool up() {
    return QTest::qWaitFor([this] { return hub->status_ble.get() == nus_name && bluez->notifying(); }, wait_ms);
  }
  bool connect_and_wait() {
    hub->connect_ble(nus_name);
    return up();
  }
  bool central_shows(const std::string& status) {
    return QTest::qWaitFor([&] { return links.ble->status.get() == status; }, wait_ms);
  }

  // Waits until the bridge has passed on one more notification than `before`.
  bool handled_since(std::size_t before) {
    return QTest::qWaitFor([&] { return links.tcp->sent.size() > before; }, wait_ms);
  }

  static inline std::string skip_reason;
  static inline std::string setup_error;
  static inline QCoreApplication* app = nullptr;
  static inline std::unique_ptr<mock_bluez_t> bluez;

  QObject context;
  qt_main_queue_t queue{&context};
  recording_console_t console;
  mock_links_t links{console, queue};
  std::unique_ptr<connection_t> hub;
};

TEST_F(mock_bluez_test, the_scan_connects_only_the_exact_name_and_enables_notifications) {
  text_history_t hub_status(*hub, hub->status_ble);
  const auto connects_before = bluez->connects();
  ASSERT_TRUE(connect_and_wait()) << ::testing::PrintToString(links.ble_status->seen());
  // Every step once: no second scan while connecting, no second connection attempt, no loss.
  EXPECT_EQ(links.ble_status->seen(),
            (std::vector<std::string>{"offline", "BLE 5 powered on", "BLE scanning...",
                                      "BLE found a " + nus_name + " device", "BLE connected: " + nus_name, nus_name}));
  EXPECT_EQ(hub_status.seen(), (std::vector<std::string>{"offline", "BLE scanning...", nus_name}));
  EXPECT_EQ(bluez->connects() - connects_before, 1u);
  EXPECT_EQ(hub->sta_fg_ble.get(), colour_t::secondary);
  EXPECT_TRUE(links.ble->ready());
  EXPECT_FALSE(bluez->connected(mock_bluez_t::other_path)) << "a name that merely starts with the wanted one";
  EXPECT_FALSE(bluez->discovering()) << "the scan stops once the peripheral is found";
  EXPECT_TRUE(links.tcp->sent.empty()) << "the TX value read at connection is no data";
}

// Qt reports a refused connect by an error alone: it is shown as a loss, and the rescan connects.
TEST_F(mock_bluez_test, a_refused_connect_is_shown_and_retried) {
  bluez->fail_next("connect", 1);
  const auto connects_before = bluez->connects();
  ASSERT_TRUE(connect_and_wait()) << "central: " << links.ble->status.get();
  EXPECT_EQ(bluez->connects() - connects_before, 2u);
  EXPECT_THAT(console.lines, ::testing::Contains("2026-01-01 12:00:00 +0000  disconnected from " + nus_name));
}

// Adapters come and go while the program runs: each change shows as the radio's state, and the
// peripheral is connected again whenever a powered adapter is there.
TEST_F(mock_bluez_test, an_adapter_plugged_in_switched_or_pulled_out_later_is_followed) {
  const auto connects_before = bluez->connects();
  bluez->set_adapter(false);
  hub->connect_ble(nus_name);
  ASSERT_TRUE(central_shows("BLE 2 unsupported"));
  bluez->set_adapter(true);
  ASSERT_TRUE(up()) << "plugged in after start";
  bluez->set_powered(false);
  ASSERT_TRUE(central_shows("BLE 4 powered OFF"));
  bluez->set_powered(true);
  ASSERT_TRUE(up()) << "switched on again";
  bluez->set_adapter(false);
  ASSERT_TRUE(central_shows("BLE 2 unsupported")) << "pulled out";
  bluez->set_adapter(true);
  ASSERT_TRUE(up());
  EXPECT_EQ(bluez->connects() - connects_before, 3u) << "one connect each time the radio is back";
}

// Each case: the notifications, in order, and the latitude the GGA decoder holds after each.
TEST_F(mock_bluez_test, notifications_reach_the_decoders_as_whole_lines) {
  ASSERT_TRUE(connect_and_wait());
  const auto gga = [](const std::string& lat) {
    return with_checksum("$GPGGA,123519," + lat + ",N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
  };
  const std::string one = gga("4807.038") + "\r\n";
  const std::string split = gga("4810.038") + "\r\n";
  const std::string two = gga("4812.038") + "\r\n" + gga("4813.038") + "\r\n";
  struct case_t {
    const char* what;
    std::vector<std::string> notifications;
    std::vector<double> lat_after;
  };
  const std::vector<case_t> cases = {
      {"one sentence in one notification", {one}, {48.1173}},
      {"one sentence over two notifications", {split.substr(0, 20), split.substr(20)}, {48.1173, 48.1673}},
      {"two sentences in one notification", {two}, {48.2173}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    for (std::size_t i = 0; i < c.notifications.size(); ++i) {
      const auto before = links.tcp->sent.size();
      ASSERT_TRUE(bluez->notify(bytes_of(c.notifications[i])));
      ASSERT_TRUE(handled_since(before));
      EXPECT_EQ(links.tcp->sent.back(), bytes_of(c.notifications[i])) << "the raw bytes, bridged";
      EXPECT_NEAR(hub->gga.lat.get(), c.lat_after[i], 1e-9) << "after notification " << i;
    }
  }
  EXPECT_EQ(hub->gga.sat_count_i, 8);
  EXPECT_TRUE(hub->msg_ack) << "valid sentences acknowledge the stream";
  EXPECT_EQ(hub->msg_good, 3u) << "four sentences: the first acknowledges, the others count";
}

// Bytes the bridge sends towards Bluetooth are written to the RX characteristic with response; a
// write longer than one attribute value goes in pieces, in order.
TEST_F(mock_bluez_test, writes_from_the_bridge_reach_the_rx_characteristic) {
  ASSERT_TRUE(connect_and_wait());
  const auto types_before = bluez->write_types().size();
  const auto bytes_before = bluez->written().size();
  struct case_t {
    const char* what;
    bytes_t bytes;
    int writes;
  };
  bytes_t long_write(qt_ble_central_t::max_attribute_value + 100);
  for (std::size_t i = 0; i < long_write.size(); ++i) long_write[i] = static_cast<std::uint8_t>('A' + i % 26);
  const std::vector<case_t> cases = {
      {"a short command", bytes_of("$PUBX,00*33\r\n"), 1},
      {"binary bytes", bytes_t{0xB5, 0x62, 0x06, 0x08, 0x00, 0x00, 0x0E, 0x30}, 1},
      {"longer than one attribute value", long_write, 2},
  };
  bytes_t expected;
  qsizetype expected_writes = types_before;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    hub->tcp_events().link_bytes(c.bytes);
    expected.insert(expected.end(), c.bytes.begin(), c.bytes.end());
    expected_writes += c.writes;
    ASSERT_TRUE(QTest::qWaitFor([&] { return bluez->write_types().size() >= expected_writes; }, wait_ms));
    const auto all = bluez->written();
    EXPECT_EQ(bytes_t(all.begin() + static_cast<std::ptrdiff_t>(bytes_before), all.end()), expected);
  }
  const auto types = bluez->write_types();
  EXPECT_EQ(types.size(), expected_writes);
  for (qsizetype i = types_before; i < types.size(); ++i) EXPECT_EQ(types[i], "request") << "write " << i;
}

// A write the peripheral refuses loses its bytes, so it is said and counted.
TEST_F(mock_bluez_test, a_refused_write_is_said_and_counted) {
  ASSERT_TRUE(connect_and_wait());
  bluez->fail_next("write", 1);
  hub->tcp_events().link_bytes(bytes_of("$PUBX,00*33\r\n"));
  ASSERT_TRUE(QTest::qWaitFor([this] { return links.ble->write_failures == 1; }, wait_ms));
  EXPECT_EQ(console.lines.back(), "BLE write: characteristic write failed");
}

// The peripheral goes away: the hub shows the loss, the central scans again by itself, finds the
// peripheral (now known to BlueZ, so reported as discovery starts) and data flows again.
TEST_F(mock_bluez_test, a_lost_peripheral_is_found_again_by_the_rescan) {
  ASSERT_TRUE(connect_and_wait());
  text_history_t hub_status(*hub, hub->status_ble);
  text_history_t ble_status(*links.ble, links.ble->status);
  const auto connects_before = bluez->connects();
  ASSERT_TRUE(bluez->drop());
  // The dropped peripheral's characteristics are gone, so "notifying" holds only once it is back.
  ASSERT_TRUE(up()) << ::testing::PrintToString(hub_status.seen());
  EXPECT_EQ(hub_status.seen(), (std::vector<std::string>{nus_name, "BLE scanning...", nus_name}));
  EXPECT_EQ(ble_status.seen(),
            (std::vector<std::string>{nus_name, "BLE scanning...", "BLE found a " + nus_name + " device",
                                      "BLE connected: " + nus_name, nus_name}));
  EXPECT_EQ(bluez->connects() - connects_before, 1u);
  EXPECT_FALSE(bluez->discovering()) << "the scan stops once the peripheral is found";
  const auto line = with_checksum("$GPGGA,123520,4807.038,S,01131.000,E,1,08,0.9,545.4,M,46.9,M,,") + "\r\n";
  const auto before = links.tcp->sent.size();
  ASSERT_TRUE(bluez->notify(bytes_of(line)));
  ASSERT_TRUE(handled_since(before));
  EXPECT_EQ(hub->gga.lat_dir, "S");
}

}  // namespace
