#pragma once

#include <cstdint>
#include <span>
#include <string>

// What the TCP client reports to its owner. Every call arrives on the main thread.
class tcp_client_delegate_t {
public:
  virtual ~tcp_client_delegate_t() = default;
  virtual void tcp_connected(const std::string& host, std::uint16_t port) = 0;
  // Socket creation or connect failed, or an established connection ended unasked.
  virtual void tcp_error(const std::string& host, std::uint16_t port, std::int32_t error_number) = 0;
  virtual void tcp_lines(std::span<const std::string> lines) = 0;
  virtual void tcp_binary(std::span<const std::uint8_t> bytes) = 0;
  // Every received chunk, before it is interpreted.
  virtual void tcp_bridge(std::span<const std::uint8_t> bytes) = 0;
};

// What the hub uses of the TCP client, on the main thread.
class tcp_link_t {
public:
  virtual ~tcp_link_t() = default;
  // 0 when an attempt was started, -1 when already connected. Never blocks.
  virtual std::int32_t connect(const std::string& host, std::uint16_t port) = 0;
  // The user wants this link (set by connect, cleared by stop).
  virtual bool enabled() const = 0;
  // A connection is established.
  virtual bool valid() const = 0;
  // The user's disconnect: clears enabled and valid, shuts the socket down and closes it; the
  // receive loop then ends without a report.
  virtual void stop() = 0;
  // Bridge bytes: one send on the socket while valid, result unchecked; dropped otherwise.
  virtual void send(std::span<const std::uint8_t> bytes) = 0;
};
