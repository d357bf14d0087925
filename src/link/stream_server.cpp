#include "link/stream_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace {

constexpr int handoff_buffer = 4 * 1024 * 1024;  // bytes the hand-off holds while the thread is busy

void set_nonblocking(int fd) {
  ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
}

std::string peer_name(const sockaddr_in& address) {
  char host[INET_ADDRSTRLEN] = {};
  ::inet_ntop(AF_INET, &address.sin_addr, host, sizeof host);
  return std::string(host) + ":" + std::to_string(ntohs(address.sin_port));
}

}  // namespace

// One client of the serving thread: its socket, its name for the console and what it has not
// taken yet (from `sent` on).
struct stream_server_t::client_t {
  int fd;
  std::string name;
  std::vector<std::uint8_t> queue;
  std::size_t sent = 0;

  std::size_t queued() const { return queue.size() - sent; }
  // Sends what the socket takes now; false when the client is gone.
  bool flush() {
    while (queued() > 0) {
      const auto n = ::send(fd, queue.data() + sent, queued(), MSG_NOSIGNAL | MSG_DONTWAIT);
      if (n < 0) return errno == EAGAIN || errno == EWOULDBLOCK;
      sent += static_cast<std::size_t>(n);
    }
    queue.clear();
    sent = 0;
    return true;
  }
};

stream_server_t::stream_server_t(main_queue_t& queue, console_t& console, write_t to_receiver)
    : queue_(queue), console_(console), to_receiver_(std::move(to_receiver)) {}

stream_server_t::~stream_server_t() {
  // Closing the hand-off ends the serving thread, which closes every socket it holds.
  if (feed_ != -1) ::close(feed_);
  threads_.join_all();
}

bool stream_server_t::listen(std::uint16_t port, bool loopback_only) {
  const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (listener < 0) return false;
  int one = 1;
  ::setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(loopback_only ? INADDR_LOOPBACK : INADDR_ANY);
  int pair[2];
  if (::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 || ::listen(listener, 16) != 0 ||
      ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) != 0) {
    const int error = errno;
    ::close(listener);
    errno = error;
    return false;
  }
  socklen_t length = sizeof address;
  ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
  port_ = ntohs(address.sin_port);
  ::setsockopt(pair[0], SOL_SOCKET, SO_SNDBUF, &handoff_buffer, sizeof handoff_buffer);
  set_nonblocking(pair[0]);
  set_nonblocking(listener);
  feed_ = pair[0];
  threads_.start("share", [this, listener, feed = pair[1]] { serve(listener, feed); });
  return true;
}

// The hand-off never blocks: what it cannot take now is lost to the clients, and said.
void stream_server_t::received(std::span<const std::uint8_t> bytes) {
  if (feed_ == -1) return;
  const auto n = ::send(feed_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  const auto taken = n < 0 ? 0 : static_cast<std::size_t>(n);
  if (taken < bytes.size()) {
    lost_ += bytes.size() - taken;
  } else if (lost_ > 0) {
    console_.print(console_.date() + "  share: " + std::to_string(lost_) +
                   " bytes not shared, the clients fell behind");
    lost_ = 0;
  }
}

// Console lines are printed on the main thread.
void stream_server_t::say(std::string text) {
  queue_.post([this, text = std::move(text), alive = std::weak_ptr<bool>(alive_)] {
    if (alive.lock()) console_.print(console_.date() + "  share: " + text);
  });
}

void stream_server_t::serve(int listener, int feed) {
  std::vector<client_t> clients;
  std::vector<pollfd> polled;
  std::vector<std::uint8_t> buffer(read_size);
  const auto drop = [&](client_t& c, const std::string& why) {
    say(c.name + " " + why);
    ::close(c.fd);
    c.fd = -1;
  };
  bool serving = true;
  while (serving) {
    polled.assign({pollfd{feed, POLLIN, 0}, pollfd{listener, POLLIN, 0}});
    for (const auto& c : clients)
      polled.push_back(pollfd{c.fd, static_cast<short>(POLLIN | (c.queued() > 0 ? POLLOUT : 0)), 0});
    if (::poll(polled.data(), polled.size(), -1) < 0 && errno != EINTR) break;

    if ((polled[0].revents & (POLLIN | POLLHUP | POLLERR)) != 0) {
      const auto n = ::read(feed, buffer.data(), buffer.size());
      serving = n > 0;
      for (auto& c : clients) {
        if (n <= 0 || c.fd == -1) continue;
        const auto size = static_cast<std::size_t>(n);
        if (c.queued() + size > client_queue_limit) {
          drop(c, "dropped: " + std::to_string(c.queued() + size) + " bytes behind");
          ++drops_;
          continue;
        }
        c.queue.insert(c.queue.end(), buffer.begin(), buffer.begin() + n);
        peak_queued_ = std::max(peak_queued_.load(), c.queued());
        if (!c.flush()) drop(c, "left");
      }
    }
    for (std::size_t i = 0; i < clients.size(); ++i) {
      auto& c = clients[i];
      const auto events = polled[i + 2].revents;
      if (c.fd == -1 || events == 0) continue;
      if ((events & POLLOUT) != 0 && !c.flush()) {
        drop(c, "left");
        continue;
      }
      if ((events & (POLLIN | POLLHUP | POLLERR)) == 0) continue;
      const auto n = ::recv(c.fd, buffer.data(), buffer.size(), MSG_DONTWAIT);
      if (n == 0 || (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK)) {
        drop(c, "left");
      } else if (n > 0 && allow_writes_) {
        queue_.post([this, bytes = std::vector<std::uint8_t>(buffer.begin(), buffer.begin() + n),
                     alive = std::weak_ptr<bool>(alive_)] {
          if (alive.lock()) to_receiver_(bytes);
        });
      }
    }
    std::erase_if(clients, [](const client_t& c) { return c.fd == -1; });

    if ((polled[1].revents & POLLIN) != 0) {
      sockaddr_in address{};
      socklen_t length = sizeof address;
      const int fd = ::accept4(listener, reinterpret_cast<sockaddr*>(&address), &length, SOCK_NONBLOCK | SOCK_CLOEXEC);
      if (fd >= 0) {
        ::setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &client_send_buffer, sizeof client_send_buffer);
        clients.push_back({fd, peer_name(address), {}, 0});
        say(clients.back().name + " connected");
      }
    }
    clients_ = clients.size();
  }
  for (const auto& c : clients) ::close(c.fd);
  ::close(listener);
  ::close(feed);
}
