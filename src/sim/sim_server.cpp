#include "sim/sim_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

double seconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

sim_server_t::~sim_server_t() {
  for (const auto& c : clients_) ::close(c.fd);
  if (listener_ != -1) ::close(listener_);
}

bool sim_server_t::listen() {
  listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
  if (listener_ < 0) return false;
  int one = 1;
  ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(config_.port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) return false;
  if (::listen(listener_, 8) != 0) return false;
  socklen_t length = sizeof address;
  ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
  port_ = ntohs(address.sin_port);
  return true;
}

// A client that fails a send is closed and forgotten.
void sim_server_t::send_all(std::string_view piece) {
  std::erase_if(clients_, [&](const client_t& c) {
    if (::send(c.fd, piece.data(), piece.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(piece.size())) return false;
    ::close(c.fd);
    return true;
  });
}

// polled holds the listener first, then the clients in the order of clients_ when poll was called.
void sim_server_t::read_clients(const std::vector<pollfd>& polled, const std::vector<sim_input_t*>& inputs) {
  std::string answer;
  std::vector<int> gone;
  char buffer[4096];
  for (std::size_t i = 1; i < polled.size(); ++i) {
    if ((polled[i].revents & (POLLIN | POLLHUP | POLLERR)) == 0) continue;
    const auto n = ::recv(polled[i].fd, buffer, sizeof buffer, MSG_DONTWAIT);
    if (n <= 0) {
      gone.push_back(polled[i].fd);
      continue;
    }
    for (auto* input : inputs) answer += input->received(std::string_view(buffer, static_cast<std::size_t>(n)));
  }
  std::erase_if(clients_, [&](const client_t& c) {
    if (std::find(gone.begin(), gone.end(), c.fd) == gone.end()) return false;
    ::close(c.fd);
    return true;
  });
  if (!answer.empty()) send_all(answer);
}

void sim_server_t::run(const std::function<std::string()>& next_piece, const std::atomic<bool>& stop,
                       const std::vector<sim_input_t*>& inputs) {
  std::vector<pollfd> polled;
  const auto start = std::chrono::steady_clock::now();
  double next_send = 0.0;
  while (!stop) {
    const double now = seconds_since(start);
    if (config_.duration_s > 0 && now >= config_.duration_s) break;

    if (config_.drop_after_s > 0) {
      std::erase_if(clients_, [&](const client_t& c) {
        if (now - c.since_s < config_.drop_after_s) return false;
        ::close(c.fd);
        ++drops_;
        return true;
      });
    }
    if (now >= next_send) {
      send_all(next_piece());
      next_send += config_.period_s;
    }

    polled.assign(1, pollfd{listener_, POLLIN, 0});
    for (const auto& c : clients_) polled.push_back(pollfd{c.fd, POLLIN, 0});
    const double wait_s = std::max(0.0, std::min(next_send - seconds_since(start), 0.05));
    // Rounded up: a wait cut to 0 ms would spin through the last fraction of a millisecond.
    if (::poll(polled.data(), polled.size(), static_cast<int>(std::ceil(wait_s * 1000))) <= 0) continue;
    read_clients(polled, inputs);
    if ((polled[0].revents & POLLIN) != 0) {
      const int fd = ::accept(listener_, nullptr, nullptr);
      if (fd >= 0) {
        clients_.push_back({fd, seconds_since(start)});
        ++connections_;
      }
    }
  }
}
