#include "link/tcp_client.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>

#include "link/host_address.h"

namespace {

void set_int_option(int fd, int level, int option, int value) {
  ::setsockopt(fd, level, option, &value, sizeof value);
}

// Waits for a non-blocking connect to finish: its error (0 when connected), ETIMEDOUT once
// timeout_s has passed, or -1 as soon as `stay` no longer holds.
template <class F>
int finish_connect(int fd, int poll_ms, double timeout_s, F&& stay) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(timeout_s);
  for (;;) {
    pollfd p{fd, POLLOUT, 0};
    const int ready = ::poll(&p, 1, poll_ms);
    if (!stay()) return -1;
    if (ready < 0 && errno != EINTR) return errno;
    if (ready > 0) {
      int error = 0;
      socklen_t length = sizeof error;
      if (::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0) return errno;
      return error;
    }
    if (std::chrono::steady_clock::now() >= deadline) return ETIMEDOUT;
  }
}

}  // namespace

tcp_client_t::tcp_client_t(link_events_t& events, main_queue_t& queue, console_t& console, tcp_timing_t timing)
    : events_(events), queue_(queue), console_(console), timing_(timing) {}

tcp_client_t::~tcp_client_t() {
  stop();
  threads_.join_all();
}

std::int32_t tcp_client_t::connect(const std::string& host, std::uint16_t port) {
  if (valid()) return -1;
  enabled_ = true;
  const auto generation = attempt_.begin();
  threads_.join_finished();
  threads_.start("connect", [this, host, port, generation] { connect_task(host, port, generation); });
  return 0;
}

// The thread that opened the socket closes it; shutting it down here wakes a blocked receive or a
// pending connect.
void tcp_client_t::stop() {
  enabled_ = false;
  const int fd = attempt_.end();
  if (fd != -1) ::shutdown(fd, SHUT_RDWR);
}

void tcp_client_t::write(std::span<const std::uint8_t> bytes) {
  // MSG_NOSIGNAL: a peer that has gone away must not end the program with SIGPIPE.
  attempt_.with_descriptor(
      [&](int fd) { [[maybe_unused]] const auto sent = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL); });
}

// Looks the host up, then tries its addresses in turn until one connects; the last failure is
// reported. Nothing is reported once a disconnect or a newer connect has ended the attempt.
void tcp_client_t::connect_task(const std::string& host, std::uint16_t port, std::uint64_t generation) {
  const auto stay = [this, generation] { return attempt_.current(generation); };
  const auto found = look_up(lookup_name(host), port, connect_poll_ms, stay);
  if (!found) return;
  int error = found->error;
  for (const auto& address : found->addresses) {
    error = try_address(host, port, generation, address);
    if (error <= 0) return;
  }
  attempt_.report(generation, [this, host, port, error] { events_.link_down(host_port(host, port), error); });
}

// 0 when connected (the receive loop runs), -1 when the attempt was ended meanwhile, else the error.
int tcp_client_t::try_address(const std::string& host, std::uint16_t port, std::uint64_t generation,
                              const socket_address_t& address) {
  const int fd = ::socket(address.family, SOCK_STREAM, IPPROTO_TCP);
  if (fd < 0) return errno;
  // Lent while connecting, so a disconnect can shut the attempt down.
  attempt_.lend(generation, fd);
  set_int_option(fd, IPPROTO_TCP, TCP_NODELAY, 1);
  // A peer that vanished without a word (a receiver losing power) is found within about 25 s.
  set_int_option(fd, SOL_SOCKET, SO_KEEPALIVE, 1);
  set_int_option(fd, IPPROTO_TCP, TCP_KEEPIDLE, 10);
  set_int_option(fd, IPPROTO_TCP, TCP_KEEPINTVL, 5);
  set_int_option(fd, IPPROTO_TCP, TCP_KEEPCNT, 3);

  // Non-blocking while connecting, so that a disconnect is seen within connect_poll_ms.
  const int flags = ::fcntl(fd, F_GETFL, 0);
  ::fcntl(fd, F_SETFL, flags | O_NONBLOCK);
  int error = 0;
  if (::connect(fd, reinterpret_cast<const sockaddr*>(&address.storage), address.length) != 0) {
    error = errno == EINPROGRESS ? finish_connect(fd, connect_poll_ms, timing_.connect_timeout_s,
                                                  [&] { return attempt_.current(generation); })
                                 : errno;
  }
  ::fcntl(fd, F_SETFL, flags);

  if (error == 0 && attempt_.claim(generation, fd)) {
    // Reported before the receive loop starts, so the hub hears of the link before its first chunk.
    attempt_.report(generation, [this, host, port] { events_.link_up(host_port(host, port)); });
    threads_.start("task_rx", [this, host, port, generation, fd] { receive_loop(host, port, generation, fd); });
    return 0;
  }
  const bool wanted = attempt_.release(generation, fd);
  ::close(fd);
  return wanted && error > 0 ? error : -1;
}

void tcp_client_t::receive_loop(const std::string& host, std::uint16_t port, std::uint64_t generation, int fd) {
  std::array<std::uint8_t, recv_size> buffer{};
  bool closing = false;
  int error = 0;
  const int silence_ms = static_cast<int>(timing_.silence_limit_s * 1000);
  while (attempt_.valid() && attempt_.current(generation)) {
    // A peer that stays connected but sends nothing is as good as lost.
    pollfd p{fd, POLLIN, 0};
    const int ready = ::poll(&p, 1, silence_ms);
    if (ready == 0) {
      error = ENODATA;
      break;
    }
    if (ready < 0 && errno == EINTR) continue;
    const auto n = ::recv(fd, buffer.data(), buffer.size(), 0);
    if (n <= 0) {
      // An orderly close by the peer sets no error; it is reported as a reset connection.
      error = n == 0 ? ECONNRESET : errno;
      break;
    }
    const std::span<const std::uint8_t> chunk(buffer.data(), static_cast<std::size_t>(n));
    // Once the main queue is closing the hand-over gives up, and the loop ends.
    if (!queue_.post_and_wait([this, chunk, generation] {
          if (attempt_.current(generation)) events_.link_bytes(chunk);
        })) {
      closing = true;
      break;
    }
  }

  // A loss of the current connection is reported; a disconnect, or a program that is closing, is not.
  const bool lost = attempt_.release(generation, fd) && !closing;
  ::shutdown(fd, SHUT_RDWR);
  ::close(fd);
  if (!lost) {
    console_.print("tcp_client disconnected " + host_port(host, port) + "\n");
    return;
  }
  attempt_.report(generation, [this, host, port, error] { events_.link_down(host_port(host, port), error); });
}
