#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

// A TCP server on 127.0.0.1 for tests: listens on a given or an ephemeral port, accepts one
// client at a time, sends what the test says. Every wait is bounded.
class loopback_server_t {
public:
  explicit loopback_server_t(std::uint16_t port = 0) { listen_on(port); }
  ~loopback_server_t() {
    drop_client();
    stop_listening();
  }
  loopback_server_t(const loopback_server_t&) = delete;
  loopback_server_t& operator=(const loopback_server_t&) = delete;

  std::uint16_t port() const { return port_; }

  bool listen_on(std::uint16_t port) {
    listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
    int one = 1;
    ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_port = htons(port);
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(listener_, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0 || ::listen(listener_, 4) != 0) return false;
    socklen_t length = sizeof a;
    ::getsockname(listener_, reinterpret_cast<sockaddr*>(&a), &length);
    port_ = ntohs(a.sin_port);
    return true;
  }
  void stop_listening() {
    if (listener_ != -1) ::close(listener_);
    listener_ = -1;
  }
  // Waits up to timeout_ms for a client.
  bool accept_client(int timeout_ms = 5000) {
    pollfd p{listener_, POLLIN, 0};
    if (::poll(&p, 1, timeout_ms) != 1) return false;
    client_ = ::accept(listener_, nullptr, nullptr);
    return client_ != -1;
  }
  bool send(const std::string& text) { return send(std::vector<std::uint8_t>(text.begin(), text.end())); }
  bool send(const std::vector<std::uint8_t>& bytes) {
    return ::send(client_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
  }
  // Reads what the client sent, waiting up to timeout_ms for the first byte.
  std::string receive(int timeout_ms = 5000) {
    pollfd p{client_, POLLIN, 0};
    if (::poll(&p, 1, timeout_ms) != 1) return {};
    char buffer[4096];
    const auto n = ::recv(client_, buffer, sizeof buffer, 0);
    return n > 0 ? std::string(buffer, static_cast<std::size_t>(n)) : std::string();
  }
  void drop_client() {
    if (client_ != -1) ::close(client_);
    client_ = -1;
  }

private:
  int listener_ = -1;
  int client_ = -1;
  std::uint16_t port_ = 0;
};
