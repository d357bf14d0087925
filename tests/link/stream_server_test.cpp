#include "link/stream_server.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

// A client of the share on 127.0.0.1; a small receive buffer makes a client that never reads
// fall behind soon.
int connect_client(std::uint16_t port, int receive_buffer = 0) {
  const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  if (receive_buffer > 0) ::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &receive_buffer, sizeof receive_buffer);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  EXPECT_EQ(::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  return fd;
}

struct share_fixture_t {
  test_queue_t queue;
  recording_console_t console;
  std::vector<std::uint8_t> to_receiver;
  stream_server_t server{queue, console, [this](std::span<const std::uint8_t> b) {
                           to_receiver.insert(to_receiver.end(), b.begin(), b.end());
                         }};
  share_fixture_t() { EXPECT_TRUE(server.listen(0, true)); }
};

// Reads what each client has now into its buffer.
void read_available(const std::vector<int>& fds, std::vector<std::vector<std::uint8_t>>& got) {
  std::vector<pollfd> polled;
  polled.reserve(fds.size());
  for (const int fd : fds) polled.push_back({fd, POLLIN, 0});
  if (::poll(polled.data(), polled.size(), 10) <= 0) return;
  std::uint8_t buffer[65536];
  for (std::size_t i = 0; i < fds.size(); ++i) {
    if ((polled[i].revents & POLLIN) == 0) continue;
    const auto n = ::recv(fds[i], buffer, sizeof buffer, MSG_DONTWAIT);
    if (n > 0) got[i].insert(got[i].end(), buffer, buffer + n);
  }
}

TEST(StreamServer, FiftyClientsGetEveryByteInOrderAndOneThatNeverReadsIsDropped) {
  share_fixture_t f;
  constexpr std::size_t readers = 49, chunk = 4096, total = std::size_t{1024} * 1024;
  std::vector<int> fds;
  for (std::size_t i = 0; i < readers; ++i) fds.push_back(connect_client(f.server.port()));
  const int stalled = connect_client(f.server.port(), 4096);
  ASSERT_TRUE(f.queue.run_until([&] { return f.server.clients() == readers + 1; }));

  std::vector<std::uint8_t> stream(total);
  for (std::size_t i = 0; i < total; ++i) stream[i] = static_cast<std::uint8_t>(i % 251);
  std::vector<std::vector<std::uint8_t>> got(readers);
  for (std::size_t at = 0; at < total; at += chunk) {
    f.server.received(std::span(stream).subspan(at, chunk));
    // Every reader takes each chunk before the next: only the stalled client falls behind.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (std::chrono::steady_clock::now() < deadline) {
      read_available(fds, got);
      if (std::all_of(got.begin(), got.end(), [&](const auto& g) { return g.size() == at + chunk; })) break;
    }
  }
  for (std::size_t i = 0; i < readers; ++i) EXPECT_TRUE(got[i] == stream) << "client " << i << " got " << got[i].size();
  EXPECT_EQ(f.server.drops(), 1u);
  EXPECT_EQ(f.server.clients(), readers);
  EXPECT_LE(f.server.peak_queued(), stream_server_t::client_queue_limit);
  f.queue.run_pending();
  const auto dropped = std::count_if(f.console.lines.begin(), f.console.lines.end(), [](const std::string& line) {
    return line.find("bytes behind") != std::string::npos;
  });
  EXPECT_EQ(dropped, 1);
  for (const int fd : fds) ::close(fd);
  ::close(stalled);
}

TEST(StreamServer, PassesClientBytesToTheReceiverOnlyWhenAllowed) {
  share_fixture_t f;
  for (const bool allowed : {false, true}) {
    f.server.set_allow_writes(allowed);
    const int fd = connect_client(f.server.port());
    ASSERT_TRUE(f.queue.run_until([&] { return f.server.clients() == 1; }));
    ASSERT_EQ(::send(fd, "$PUBX,00*33\r\n", 13, 0), 13);
    ::close(fd);
    // The serving thread reads the bytes before it sees the client leave.
    ASSERT_TRUE(f.queue.run_until([&] { return f.server.clients() == 0; }));
    f.queue.run_pending();
    EXPECT_EQ(std::string(f.to_receiver.begin(), f.to_receiver.end()), allowed ? "$PUBX,00*33\r\n" : "");
  }
}

}  // namespace
