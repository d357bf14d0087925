#include "platform/qt_ble_central.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>

#include "link/ble.h"
#include "support/recording_console.h"
#include "support/recording_link_events.h"
#include "support/test_queue.h"
#include "system_bus.h"

namespace {

// The real Qt Bluetooth stack on a machine without an adapter (the build machines have none):
// the radio state arrives from the event loop, shows in red, and nothing scans.
TEST(qt_ble_central, without_an_adapter_reports_unsupported_and_never_scans) {
  int argc = 1;
  char name[] = "bluetooth_tests";
  char* argv[] = {name, nullptr};
  QCoreApplication app(argc, argv);
  if (qt_system_bus() == qt_system_bus_t::unopened) qt_system_bus() = qt_system_bus_t::machine;
  auto owned = std::make_unique<qt_ble_central_t>();
  qt_ble_central_t& stack = *owned;
  recording_console_t console;
  recording_link_events_t hub;
  test_queue_t queue;
  BLE central(hub, std::move(owned), console, queue);
  EXPECT_EQ(central.status.get(), "offline");
  EXPECT_EQ(stack.state(), ble_manager_state_t::unknown) << "until the first state has been reported";
  QElapsedTimer waited;
  waited.start();
  while (central.status.get() == "offline" && waited.elapsed() < 5000) QCoreApplication::processEvents();
  if (stack.state() == ble_manager_state_t::powered_on) GTEST_SKIP() << "this machine has a powered adapter";
  const auto expected = stack.state() == ble_manager_state_t::unsupported ? "BLE 2 unsupported" : "BLE 4 powered OFF";
  EXPECT_EQ(central.status.get(), expected);
  EXPECT_EQ(central.sta_fg.get(), colour_t::red);
  central.connect("Thingy:91 UART");
  QCoreApplication::processEvents();
  EXPECT_EQ(central.status.get(), expected) << "no scan without a powered radio";
  central.write(std::vector<std::uint8_t>{'x'});
  central.stop();
  EXPECT_TRUE(hub.events.empty());
  EXPECT_EQ(hub.chunks, 0u);
}

}  // namespace
