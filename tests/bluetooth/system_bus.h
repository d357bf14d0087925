#pragma once

// Qt opens the system bus once per process, on first use, and keeps that connection. Tests that
// use Qt Bluetooth note here which bus that is: the mock BlueZ suite needs it to be its private
// bus and skips when the machine's bus came first (ctest runs every test in a process of its own).
enum class qt_system_bus_t { unopened, machine, mock };

inline qt_system_bus_t& qt_system_bus() {
  static qt_system_bus_t bus = qt_system_bus_t::unopened;
  return bus;
}
