#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

// A TCP server on 127.0.0.1 (or ::1) for tests: listens on a given or an ephemeral port, accepts
// one client at a time, sends what the test says. Every wait is bounded.
class loopback_server_t {
public:
  explicit loopback_server_t(std::uint16_t port = 0, int family = AF_INET) : family_(family) { listen_on(port); }
  ~loopback_server_t() {
    drop_client();
    stop_listening();
    if (filler_ != -1) ::close(filler_);
  }
  loopback_server_t(const loopback_server_t&) = delete;
  loopback_server_t& operator=(const loopback_server_t&) = delete;

  std::uint16_t port() const { return port_; }

  bool listen_on(std::uint16_t port, int backlog = 4) {
    listener_ = ::socket(family_, SOCK_STREAM, 0);
    int one = 1;
    ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    sockaddr_storage a{};
    socklen_t length = family_ == AF_INET6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
    if (family_ == AF_INET6) {
      reinterpret_cast<sockaddr_in6&>(a) = {AF_INET6, htons(port), 0, in6addr_loopback, 0};
    } else {
      reinterpret_cast<sockaddr_in&>(a) = {AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {}};
    }
    auto* address = reinterpret_cast<sockaddr*>(&a);
    if (::bind(listener_, address, length) != 0 || ::listen(listener_, backlog) != 0) return false;
    ::getsockname(listener_, address, &length);
    port_ = ntohs(reinterpret_cast<sockaddr_in&>(a).sin_port);
    return true;
  }
  // Listens again (IPv4) with its accept queue filled by a connection of its own: the kernel then
  // answers no further connect.
  void stop_answering() {
    stop_listening();
    listen_on(port_, 0);
    filler_ = ::socket(family_, SOCK_STREAM, 0);
    sockaddr_in a{AF_INET, htons(port_), {htonl(INADDR_LOOPBACK)}, {}};
    ::connect(filler_, reinterpret_cast<sockaddr*>(&a), sizeof a);
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
  int filler_ = -1;
  int family_ = AF_INET;
  std::uint16_t port_ = 0;
};
