#pragma once

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
#include "link/udp_link.h"

// The UDP link: one dual-stack socket (IPv6 with IPv4-mapped addresses) bound to a local port, read
// by a thread named "task_rx" that hands each datagram to the main thread as one chunk and waits.
// A stop shuts the socket down, which wakes the blocked read; a generation keeps an old loop from
// reporting, and only the thread that opened the socket closes it. A listener has no peer of its
// own, so bridged bytes are dropped. The owner closes the main queue before destroying the link.
class udp_listener_t final : public udp_link_t {
public:
  static constexpr std::size_t datagram_size = 65536;  // bytes: the largest datagram, whole

  udp_listener_t(link_status_events_t& events, main_queue_t& queue, console_t& console);
  ~udp_listener_t() override;

  std::int32_t listen(std::uint16_t port) override;
  bool enabled() const override { return enabled_; }
  bool valid() const override { return attempt_.valid(); }
  void stop() override;
  void write(std::span<const std::uint8_t>) override {}

private:
  void receive_loop(std::uint16_t port, std::uint64_t generation);

  link_status_events_t& events_;
  main_queue_t& queue_;
  console_t& console_;
  std::atomic<bool> enabled_{false};
  link_attempt_t attempt_{queue_};
  link_threads_t threads_;
};
