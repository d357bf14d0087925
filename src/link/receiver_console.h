#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "command/answer_tracker.h"
#include "command/ubx_scanner.h"
#include "core/console.h"
#include "core/main_queue.h"
#include "core/observable.h"
#include "core/ring.h"
#include "link/connection.h"

// Talks to the receiver: sends what the user types, marks it as sent in the log and on the
// console, and reads the answers from the received stream (each command waits up to 2 s for
// ACK-ACK, ACK-NAK or the polled message). Once a link is up it polls MON-VER for the receiver's
// identity, as soon as the receiver speaks UBX or the user sends a first command. A read-only link is sent nothing at
// all, for a receiver shared with others. Commands typed before the first link is up wait for it and go in order. Runs
// on the main thread.
class receiver_console_t final : public observable_t, public receive_tap_t {
public:
  static constexpr std::size_t answer_limit = 50;  // answers kept for the screens

  receiver_console_t(connection_t& hub, main_queue_t& queue, console_t& console);
  ~receiver_console_t() override;

  // Sends the typed command (or keeps it until a link is up). The reason when it is not sent.
  std::string send(std::string_view typed);
  void set_read_only(bool read_only) { read_only_ = read_only; }
  bool read_only() const { return read_only_; }
  // Whether a link that is up is asked for MON-VER (on unless turned off).
  void set_poll_identity(bool poll) { poll_identity_ = poll; }

  void received(std::span<const std::uint8_t> bytes) override;
  void link_up() override;

  // The receiver's MON-VER in one line; empty until it answered.
  published_t<std::string> identity{*this, {}};
  // What was sent and what came back, newest last, each after its time of day:
  // "12:00:00  sent CFG-VALSET CFG-RATE-MEAS=200", "12:00:01  CFG-VALSET CFG-RATE-MEAS=200  accepted".
  published_t<string_ring_t> answers{*this, string_ring_t(answer_limit)};

private:
  void transmit(const typed_command_t& command);
  void report(const answer_t& answer);
  void note(const std::string& line);
  void poll_identity_when_due();

  connection_t& hub_;
  console_t& console_;
  answer_tracker_t tracker_;
  ubx_scanner_t scanner_;
  bool read_only_ = false;
  bool poll_identity_ = true;
  bool up_ = false;
  bool identity_due_ = false;  // the link that is up has not been asked for MON-VER yet
  std::vector<typed_command_t> waiting_for_link_;
};
