#include "link/udp_listener.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string>

#include "sim/sim_engine.h"
#include "sim/sim_udp.h"
#include "support/recording_console.h"
#include "support/recording_status_events.h"
#include "support/test_queue.h"

namespace {

// A UDP port that is free now: bound to port 0 on every address, noted, and let go.
std::uint16_t free_udp_port() {
  const int fd = ::socket(AF_INET6, SOCK_DGRAM, 0);
  sockaddr_in6 a{};
  a.sin6_family = AF_INET6;
  socklen_t size = sizeof a;
  ::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a);
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &size);
  ::close(fd);
  return ntohs(a.sin6_port);
}

class udp_listener_test : public ::testing::Test {
protected:
  void TearDown() override {
    queue.close();
    listener.reset();
  }
  const std::vector<std::string>& events() const { return recorder.record.events; }

  test_queue_t queue;
  recording_console_t console;
  recording_status_events_t recorder;
  std::unique_ptr<udp_listener_t> listener = std::make_unique<udp_listener_t>(recorder, queue, console);
  std::uint16_t port = free_udp_port();
};

TEST_F(udp_listener_test, each_datagram_over_ipv4_and_ipv6_is_one_chunk_and_the_sender_is_named) {
  ASSERT_EQ(listener->listen(port), 0);
  ASSERT_TRUE(queue.run_until([&] { return listener->valid(); }));
  EXPECT_EQ(listener->listen(port), -1) << "listening already";
  sim_engine_t engine({});
  std::string sent;
  for (const char* host : {"127.0.0.1", "::1"}) {
    sim_udp_t sender;
    ASSERT_TRUE(sender.open(host, port));
    for (int i = 0; i < 3; ++i) {
      const auto epoch = engine.next_epoch();
      sender.send(epoch);
      sent += epoch;
      ASSERT_TRUE(queue.run_until([&] { return recorder.record.received == sent; }));
    }
  }
  EXPECT_EQ(recorder.record.chunks, 6u);
  ASSERT_EQ(events().size(), 3u);
  EXPECT_EQ(events()[0], "status listening on :" + std::to_string(port));
  EXPECT_EQ(events()[1].rfind("up 127.0.0.1:", 0), 0u) << events()[1];
  EXPECT_EQ(events()[2].rfind("status [::1]:", 0), 0u) << events()[2];
}

TEST_F(udp_listener_test, a_taken_port_is_reported_and_a_stopped_listener_frees_its_port) {
  ASSERT_EQ(listener->listen(port), 0);
  ASSERT_TRUE(queue.run_until([&] { return listener->valid(); }));
  recording_status_events_t second_events;
  udp_listener_t second(second_events, queue, console);
  second.listen(port);
  ASSERT_TRUE(queue.run_until([&] { return !second_events.record.events.empty(); }));
  EXPECT_EQ(second_events.record.events[0], "down :" + std::to_string(port) + " " + std::to_string(EADDRINUSE));
  EXPECT_TRUE(listener->enabled());
  listener->stop();
  EXPECT_FALSE(listener->enabled());
  ASSERT_TRUE(queue.run_until([&] { return !console.copy().empty(); }));
  EXPECT_EQ(console.copy()[0], "udp_listener closed :" + std::to_string(port) + "\n");
  second.listen(port);
  EXPECT_TRUE(queue.run_until([&] { return second.valid(); }));
  queue.close();
}

}  // namespace
