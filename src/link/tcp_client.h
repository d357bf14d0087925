#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "core/console.h"
#include "core/main_queue.h"
#include "link/host_lookup.h"
#include "link/link.h"
#include "link/link_attempt.h"
#include "link/link_error.h"
#include "link/link_threads.h"

struct tcp_timing_t {
  double connect_timeout_s = 10.0;  // an address that does not answer is given up after this
  double silence_limit_s = tcp_silence_limit_s;
};

// The TCP link to a receiver, or a serial-to-network bridge in front of one, serving NMEA text
// and UBX binary on a plain port. Each connect attempt (the host's lookup, then its addresses in
// turn, each given up after a timeout) runs on a thread named "connect"; each
// connection's receive loop on a thread named "task_rx", which hands every raw chunk to the main
// thread and waits, so at most one chunk is in flight. Every report arrives on the main thread.
//
// Each attempt carries a generation number (link_attempt_t), and only the thread that opened a
// descriptor closes it: a disconnect shuts the socket down and moves the generation on, so an old
// receive loop can never read from, or close, a newer connection's descriptor, and no report of an
// attempt that a disconnect or a newer connect ended reaches the hub, however the threads raced.
// The owner closes the main queue before destroying the client, so no thread waits for a main
// thread that has stopped serving.
class tcp_client_t final : public tcp_link_t {
public:
  static constexpr std::size_t recv_size = 2047;  // bytes per receive call
  static constexpr int connect_poll_ms = 100;     // how often a pending connect checks for a disconnect

  tcp_client_t(link_events_t& events, main_queue_t& queue, console_t& console, tcp_timing_t timing = {});
  ~tcp_client_t() override;

  std::int32_t connect(const std::string& host, std::uint16_t port) override;
  bool enabled() const override { return enabled_; }
  bool valid() const override { return attempt_.valid(); }
  void stop() override;
  void write(std::span<const std::uint8_t> bytes) override;

  int so() const { return attempt_.descriptor(); }

private:
  void connect_task(const std::string& host, std::uint16_t port, std::uint64_t generation);
  int try_address(const std::string& host, std::uint16_t port, std::uint64_t generation,
                  const socket_address_t& address);
  void receive_loop(const std::string& host, std::uint16_t port, std::uint64_t generation, int fd);

  link_events_t& events_;
  main_queue_t& queue_;
  console_t& console_;
  const tcp_timing_t timing_;
  std::atomic<bool> enabled_{false};
  link_attempt_t attempt_{queue_};
  link_threads_t threads_;  // last: joined before the attempt record goes
};
