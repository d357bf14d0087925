#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "core/console.h"
#include "core/main_queue.h"
#include "link/link_threads.h"
#include "link/receive_tap.h"

// Shares the receiver's stream with other programs: every received byte goes, in order, to every
// TCP client of a listening socket. A thread named "share" serves the clients, each with its own
// queue; a client whose queue passes client_queue_limit is dropped with a dated console line, so
// a client that stops reading never holds up the receive path or the other clients. What the
// clients send goes to the receiver only while writes are allowed (off by default).
class stream_server_t final : public receive_tap_t {
public:
  static constexpr std::uint16_t default_port = 10110;                        // registered for NMEA 0183 over TCP
  static constexpr std::size_t client_queue_limit = std::size_t{256} * 1024;  // bytes waiting for one client
  static constexpr int client_send_buffer = 64 * 1024;                        // bytes the kernel holds per client
  static constexpr std::size_t read_size = std::size_t{16} * 1024;            // bytes per read

  using write_t = std::function<void(std::span<const std::uint8_t>)>;
  // to_receiver runs on the main thread with the bytes of a client, when writes are allowed.
  stream_server_t(main_queue_t& queue, console_t& console, write_t to_receiver);
  ~stream_server_t() override;
  stream_server_t(const stream_server_t&) = delete;
  stream_server_t& operator=(const stream_server_t&) = delete;

  // Listens on the port (0: a free one) of every interface, or of 127.0.0.1 alone, and starts
  // serving; false with errno set when the port cannot be had.
  bool listen(std::uint16_t port, bool loopback_only = false);
  std::uint16_t port() const { return port_; }
  void set_allow_writes(bool allow) { allow_writes_ = allow; }

  // Main thread: the bytes go to the serving thread, never waiting for it.
  void received(std::span<const std::uint8_t> bytes) override;

  std::size_t clients() const { return clients_; }
  std::uint64_t drops() const { return drops_; }
  // The longest queue any client has had, in bytes.
  std::size_t peak_queued() const { return peak_queued_; }

private:
  struct client_t;
  void serve(int listener, int feed);
  void say(std::string text);

  main_queue_t& queue_;
  console_t& console_;
  write_t to_receiver_;
  std::uint16_t port_ = 0;
  int feed_ = -1;  // the main thread's end of the hand-off to the serving thread
  std::atomic<bool> allow_writes_{false};
  std::atomic<std::size_t> clients_{0};
  std::atomic<std::uint64_t> drops_{0};
  std::atomic<std::size_t> peak_queued_{0};
  std::uint64_t lost_ = 0;                                      // bytes the hand-off could not take, not yet said
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  // guards tasks posted by the thread
  link_threads_t threads_;
};
