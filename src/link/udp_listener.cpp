#include "link/udp_listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <vector>

namespace {

// A dual-stack socket bound to the port: the descriptor, or -1 with errno set.
int bind_dual_stack(std::uint16_t port) {
  const int fd = ::socket(AF_INET6, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return -1;
  int off = 0;
  ::setsockopt(fd, IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off);
  sockaddr_in6 address{};
  address.sin6_family = AF_INET6;
  address.sin6_addr = in6addr_any;
  address.sin6_port = htons(port);
  if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return fd;
  const int error = errno;
  ::close(fd);
  errno = error;
  return -1;
}

// "127.0.0.1:40001" for an IPv4 sender (also when it arrives IPv4-mapped), "[::1]:40001" else.
std::string sender_text(const sockaddr_in6& from) {
  std::array<char, INET6_ADDRSTRLEN> text{};
  const auto port = std::to_string(ntohs(from.sin6_port));
  if (IN6_IS_ADDR_V4MAPPED(&from.sin6_addr)) {
    ::inet_ntop(AF_INET, &from.sin6_addr.s6_addr[12], text.data(), text.size());
    return std::string(text.data()) + ":" + port;
  }
  ::inet_ntop(AF_INET6, &from.sin6_addr, text.data(), text.size());
  return "[" + std::string(text.data()) + "]:" + port;
}

}  // namespace

udp_listener_t::udp_listener_t(link_status_events_t& events, main_queue_t& queue, console_t& console)
    : events_(events), queue_(queue), console_(console) {}

udp_listener_t::~udp_listener_t() {
  stop();
  threads_.join_all();
}

std::int32_t udp_listener_t::listen(std::uint16_t port) {
  if (attempt_.valid()) return -1;
  enabled_ = true;
  const auto generation = attempt_.begin();
  threads_.join_finished();
  threads_.start("task_rx", [this, port, generation] { receive_loop(port, generation); });
  return 0;
}

void udp_listener_t::stop() {
  enabled_ = false;
  // Shutting the socket down wakes the blocked read; the loop's thread closes it.
  const int fd = attempt_.end();
  if (fd != -1) ::shutdown(fd, SHUT_RDWR);
}

void udp_listener_t::receive_loop(std::uint16_t port, std::uint64_t generation) {
  const auto name = udp_port_text(port);
  const int fd = bind_dual_stack(port);
  if (fd < 0 || !attempt_.claim(generation, fd)) {
    const int error = errno;
    if (fd >= 0) ::close(fd);
    if (fd < 0) attempt_.report(generation, [this, name, error] { events_.link_down(name, error); });
    return;
  }
  attempt_.report(generation, [this, name] { events_.link_status("listening on " + name); });

  std::vector<std::uint8_t> buffer(datagram_size);
  std::string last_sender;
  bool closing = false;
  int error = 0;
  while (!closing && attempt_.current(generation)) {
    sockaddr_in6 from{};
    socklen_t from_size = sizeof from;
    const auto n = ::recvfrom(fd, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr*>(&from), &from_size);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      error = errno;
      break;
    }
    // A shut-down socket reads 0 bytes from nobody; an empty datagram carries nothing.
    if (n == 0) continue;
    if (const auto sender = sender_text(from); sender != last_sender) {
      const bool first = last_sender.empty();
      attempt_.report(generation, [this, sender, first] {
        if (first) {
          events_.link_up(sender);
        } else {
          events_.link_status(sender);
        }
      });
      last_sender = sender;
    }
    const std::span<const std::uint8_t> chunk(buffer.data(), static_cast<std::size_t>(n));
    closing = !queue_.post_and_wait([this, generation, chunk] {
      if (attempt_.current(generation)) events_.link_bytes(chunk);
    });
  }
  const bool lost = attempt_.release(generation, fd) && !closing && error != 0;
  ::close(fd);
  if (!lost) {
    console_.print("udp_listener closed " + name + "\n");
    return;
  }
  attempt_.report(generation, [this, name, error] { events_.link_down(name, error); });
}
