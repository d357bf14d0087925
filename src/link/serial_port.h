#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>

#include "core/console.h"
#include "core/main_queue.h"
#include "link/link_attempt.h"
#include "link/link_status.h"
#include "link/link_threads.h"
#include "link/serial_link.h"

// The serial link over a terminal device (termios; a USB adapter, a CDC-ACM receiver, a
// pseudo-terminal). Each attempt runs on one thread named "serial_rx": it opens the port, finds
// the baud rate when none is given, then hands every raw chunk to the main thread and waits, as
// the TCP client's receive loop does. Every report arrives on the main thread, and only while its
// attempt is the current one: a stop or a new open moves the generation on, and the old thread
// ends within poll_ms without a report. Attempts take the port one after another, so a quick
// reopen never finds the port locked by its own predecessor. The owner closes the main queue
// before destroying the link, so no thread waits for a main thread that has stopped serving.
class serial_port_t final : public serial_link_t {
public:
  // The order in which rates are tried: the common receiver defaults first.
  static constexpr std::array<std::uint32_t, 7> detect_rates{9600, 38400, 115200, 4800, 57600, 230400, 460800};
  static constexpr double detect_window_s = 1.5;  // s of listening at each rate
  static constexpr int poll_ms = 100;             // how often a waiting read checks for a stop
  static constexpr std::size_t read_size = 2047;  // bytes per read

  struct options_t {
    double detect_window_s = serial_port_t::detect_window_s;
    std::string lock_dir = "/var/lock";  // where UUCP lock files name a port's holder
  };

  serial_port_t(link_status_events_t& events, main_queue_t& queue, console_t& console, options_t options);
  serial_port_t(link_status_events_t& events, main_queue_t& queue, console_t& console)
      : serial_port_t(events, queue, console, options_t{}) {}
  ~serial_port_t() override;

  std::int32_t open(const std::string& path, std::uint32_t baud) override;
  bool enabled() const override { return enabled_; }
  bool valid() const override { return attempt_.valid(); }
  void stop() override;
  void write(std::span<const std::uint8_t> bytes) override;

private:
  void attempt(const std::string& path, std::uint32_t baud, std::uint64_t generation);
  std::uint32_t detect(int fd, std::uint64_t generation, std::vector<std::uint8_t>& first, int& error);
  void receive_loop(const std::string& path, std::uint64_t generation, int fd, std::vector<std::uint8_t> first);
  bool hand_over(std::uint64_t generation, std::span<const std::uint8_t> chunk);

  link_status_events_t& events_;
  main_queue_t& queue_;
  console_t& console_;
  options_t options_;
  std::atomic<bool> enabled_{false};
  std::mutex port_mutex_;  // held by the attempt that has the port open
  link_attempt_t attempt_{queue_};
  link_threads_t threads_;
};
