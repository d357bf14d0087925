#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <thread>

#include "link/connection.h"
#include "link/offline_links.h"
#include "link/tcp_client.h"
#include "sim/sim_engine.h"
#include "support/loopback_server.h"
#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

struct tcp_links_t final : link_factory_t {
  tcp_links_t(main_queue_t& q, console_t& c) : queue(q), console(c) {}
  std::unique_ptr<tcp_link_t> make_tcp(tcp_client_delegate_t& d) override {
    return std::make_unique<tcp_client_t>(d, queue, console, false, false);
  }
  std::unique_ptr<ble_link_t> make_ble(ble_delegate_t&) override { return std::make_unique<offline_ble_t>(); }
  main_queue_t& queue;
  console_t& console;
};

// The simulator's stream with bad checksums and junk lines, over a real loopback connection into
// the hub: the counters and the bad-message text agree with what the simulator injected.
TEST(ill_formed_stream, counters_agree_with_what_the_simulator_injected) {
  test_queue_t queue;
  recording_console_t console;
  tcp_links_t links(queue, console);
  auto hub = std::make_unique<connection_t>(queue, console, links);
  loopback_server_t server;

  sim_config_t config;
  config.seed = 11;
  config.bad_checksum_rate = 0.05;
  config.garbage_rate = 0.1;
  sim_engine_t sim(config);

  hub->connect_tcp("127.0.0.1", server.port());
  ASSERT_TRUE(server.accept_client());
  ASSERT_TRUE(queue.run_until([&] { return hub->sta_fg_tcp.get() == colour_t::secondary; }));
  std::string stream;
  for (int epoch = 0; epoch < 600; ++epoch) stream += sim.next_epoch();
  // Sent from a thread of its own: the test's thread serves the client's hand-overs meanwhile.
  bool sent = false;
  std::thread sender([&] {
    sent = server.send(stream);
    server.drop_client();  // the peer closes: everything sent arrives first
  });
  const bool closed = queue.run_until([&] { return hub->sta_fg_tcp.get() == colour_t::red; }, 20.0);
  sender.join();
  ASSERT_TRUE(sent);
  ASSERT_TRUE(closed);

  const auto& injected = sim.counts();
  ASSERT_GT(injected.bad_checksums, 50u);
  ASSERT_GT(injected.garbage_lines, 100u);
  EXPECT_EQ(hub->msg_ack_count + hub->msg_count, injected.sentences) << "junk lines are no candidates";
  EXPECT_EQ(hub->msg_good + 1, injected.sentences - injected.bad_checksums) << "the first valid one acknowledges";
  const float p = static_cast<float>(hub->msg_count - hub->msg_good) * 100.0f / static_cast<float>(hub->msg_count);
  char expected[32];
  std::snprintf(expected, sizeof expected, "%.f%%  ", static_cast<double>(p));
  EXPECT_EQ(hub->crc_error_text(), expected);
  EXPECT_EQ(hub->crc_error_text(), "5%  ");
  queue.close();
  hub.reset();
}

}  // namespace
