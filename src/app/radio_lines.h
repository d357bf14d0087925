#pragma once

#include <memory>
#include <string>

#include "core/console.h"
#include "core/main_queue.h"
#include "core/observable.h"
#include "link/connection.h"

// A dated console line for each change of the Bluetooth radio's state while the BLE link is in
// use ("2026-11-23 05:04:20 +0000  BLE 2 unsupported"), so that a log of korvid-cli tells when an
// adapter went away, was switched off or came back. The hub's notice comes before the change it
// announces, so the state is read a turn later; changes within one turn give one line.
class radio_lines_t {
public:
  radio_lines_t(connection_t& hub, main_queue_t& queue, console_t& console);

private:
  void check();

  connection_t& hub_;
  main_queue_t& queue_;
  console_t& console_;
  std::string said_;  // the state of the last line
  bool pending_ = false;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  // guards the posted check
  subscription_t subscription_;
};
