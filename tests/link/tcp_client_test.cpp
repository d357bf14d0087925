#include "link/tcp_client.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "link/connection.h"
#include "link/offline_links.h"
#include "support/loopback_server.h"
#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

// Writes down every delegate call: "connected", "error N", "lines a|b", "binary n", "bridge n".
struct recording_delegate_t final : tcp_client_delegate_t {
  void tcp_connected(const std::string&, std::uint16_t) override { events.push_back("connected"); }
  void tcp_error(const std::string&, std::uint16_t, std::int32_t error) override {
    events.push_back("error " + std::to_string(error));
  }
  void tcp_lines(std::span<const std::string> lines) override {
    std::string e = "lines ";
    for (std::size_t i = 0; i < lines.size(); ++i) e += (i ? "|" : "") + lines[i];
    events.push_back(e);
  }
  void tcp_binary(std::span<const std::uint8_t> bytes) override {
    events.push_back("binary " + std::to_string(bytes.size()));
  }
  void tcp_bridge(std::span<const std::uint8_t> bytes) override { bridged += bytes.size(); }
  std::vector<std::string> events;
  std::size_t bridged = 0;
};

class tcp_client_test : public ::testing::Test {
protected:
  void TearDown() override {
    queue.close();
    client.reset();
  }
  bool wait_for_events(std::size_t n) {
    return queue.run_until([&] { return delegate.events.size() >= n; });
  }
  void connect_and_accept() {
    ASSERT_EQ(client->connect("127.0.0.1", server.port()), 0);
    ASSERT_TRUE(server.accept_client());
    ASSERT_TRUE(wait_for_events(1));
    ASSERT_EQ(delegate.events[0], "connected");
  }

  test_queue_t queue;
  recording_console_t console;
  recording_delegate_t delegate;
  loopback_server_t server;
  std::unique_ptr<tcp_client_t> client = std::make_unique<tcp_client_t>(delegate, queue, console, false, false);
};

TEST_F(tcp_client_test, a_sentence_split_across_two_sends_arrives_once_whole) {
  connect_and_accept();
  server.send("$GPGGA,12");
  ASSERT_TRUE(queue.run_until([&] { return delegate.bridged == 9; }));
  server.send("3519*00\r\n");
  ASSERT_TRUE(wait_for_events(2));
  EXPECT_EQ(delegate.events[1], "lines $GPGGA,123519*00");
  EXPECT_EQ(delegate.bridged, 18u) << "every chunk goes to the bridge first";
}

TEST_F(tcp_client_test, three_sentences_in_one_send_are_one_batch) {
  connect_and_accept();
  server.send("$A*00\r\n$B*00\r\n$C*00\r\n");
  ASSERT_TRUE(wait_for_events(2));
  EXPECT_EQ(delegate.events[1], "lines $A*00|$B*00|$C*00");
}

TEST_F(tcp_client_test, a_bare_cr_ends_the_line_and_the_next_lf_adds_nothing) {
  connect_and_accept();
  server.send("$A*00\r");
  ASSERT_TRUE(wait_for_events(2));
  server.send("\n$B*00\r\n");
  ASSERT_TRUE(wait_for_events(3));
  EXPECT_EQ(delegate.events, (std::vector<std::string>{"connected", "lines $A*00", "lines $B*00"}));
}

TEST_F(tcp_client_test, non_utf8_switches_to_binary_until_the_next_connect) {
  connect_and_accept();
  server.send(std::vector<std::uint8_t>{0xFF});
  ASSERT_TRUE(wait_for_events(2));
  EXPECT_FALSE(client->binary()) << "a lone 0xFF goes binary without switching";
  server.send(std::vector<std::uint8_t>{0xB5, 0x62, 0x01});
  ASSERT_TRUE(wait_for_events(3));
  EXPECT_TRUE(queue.run_until([&] { return client->binary(); }));
  server.send("$A*00\r\n");
  ASSERT_TRUE(wait_for_events(4));
  EXPECT_EQ(delegate.events, (std::vector<std::string>{"connected", "binary 1", "binary 3", "binary 7"}));

  client->stop();
  server.drop_client();
  ASSERT_TRUE(queue.run_until([&] { return !console.copy().empty(); }));
  ASSERT_EQ(client->connect("127.0.0.1", server.port()), 0);
  ASSERT_TRUE(server.accept_client());
  ASSERT_TRUE(wait_for_events(5));
  server.send("$A*00\r\n");
  ASSERT_TRUE(wait_for_events(6));
  EXPECT_EQ(delegate.events[5], "lines $A*00") << "a new connection starts as text";
}

TEST_F(tcp_client_test, connect_while_connected_returns_minus_one) {
  connect_and_accept();
  EXPECT_TRUE(client->valid());
  EXPECT_EQ(client->connect("127.0.0.1", server.port()), -1);
}

TEST_F(tcp_client_test, a_disconnect_during_a_blocked_receive_ends_the_loop_without_a_report) {
  connect_and_accept();
  client->stop();
  ASSERT_TRUE(queue.run_until([&] { return !console.copy().empty(); }));
  EXPECT_EQ(console.copy()[0], "tcp_client disconnected 127.0.0.1:" + std::to_string(server.port()) + "\n");
  EXPECT_EQ(client->so(), -1);
  queue.run_until([] { return false; }, 0.2);
  EXPECT_EQ(delegate.events, std::vector<std::string>{"connected"});
}

TEST_F(tcp_client_test, an_orderly_close_by_the_peer_reports_a_reset_connection) {
  connect_and_accept();
  server.drop_client();
  ASSERT_TRUE(wait_for_events(2));
  EXPECT_EQ(delegate.events[1], "error " + std::to_string(ECONNRESET));
  EXPECT_FALSE(client->valid());
  EXPECT_TRUE(client->enabled()) << "the user still wants the link";
}

TEST_F(tcp_client_test, sending_to_a_peer_that_has_gone_does_not_kill_the_process) {
  connect_and_accept();
  server.drop_client();
  const std::vector<std::uint8_t> bytes(4096, 'x');
  for (int i = 0; i < 50 && client->valid(); ++i) client->send(bytes);
  ASSERT_TRUE(wait_for_events(2));
  SUCCEED();
}

TEST_F(tcp_client_test, a_quick_reconnect_keeps_the_new_connection) {
  connect_and_accept();
  for (int i = 0; i < 5; ++i) {
    client->stop();
    server.drop_client();
    ASSERT_EQ(client->connect("127.0.0.1", server.port()), 0);
    ASSERT_TRUE(server.accept_client());
    ASSERT_TRUE(queue.run_until([&] { return client->valid(); }));
  }
  server.send("$A*00\r\n");
  ASSERT_TRUE(queue.run_until([&] { return delegate.events.back() == "lines $A*00"; }));
  EXPECT_EQ(std::count(delegate.events.begin(), delegate.events.end(), "connected"), 6);
  for (const auto& e : delegate.events) EXPECT_EQ(e.rfind("error", 0), std::string::npos) << e;
}

TEST_F(tcp_client_test, a_disconnect_racing_the_connect_leaves_no_stale_connection) {
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(client->connect("127.0.0.1", server.port()), 0) << i;
    client->stop();
    while (server.accept_client(0)) server.drop_client();
  }
  queue.run_until([] { return false; }, 0.3);
  EXPECT_FALSE(client->valid());
  EXPECT_EQ(client->so(), -1);
  for (const auto& e : delegate.events) EXPECT_EQ(e.rfind("error", 0), std::string::npos) << e;
  ASSERT_EQ(client->connect("127.0.0.1", server.port()), 0);
  ASSERT_TRUE(server.accept_client());
  EXPECT_TRUE(queue.run_until([&] { return client->valid(); }));
}

// The hub with the real client: failures in red with the system's text, retried every 4 s.
class hub_over_tcp_test : public ::testing::Test {
protected:
  struct links_t final : link_factory_t {
    links_t(main_queue_t& q, console_t& c) : queue(q), console(c) {}
    std::unique_ptr<tcp_link_t> make_tcp(tcp_client_delegate_t& d) override {
      return std::make_unique<tcp_client_t>(d, queue, console, false, false);
    }
    std::unique_ptr<ble_link_t> make_ble(ble_delegate_t&) override { return std::make_unique<offline_ble_t>(); }
    main_queue_t& queue;
    console_t& console;
  };
  void TearDown() override {
    queue.close();
    hub.reset();
  }
  int attempts() const {
    const auto lines = console.copy();
    return static_cast<int>(std::count_if(
        lines.begin(), lines.end(), [](const std::string& l) { return l.find("  Connect ") != std::string::npos; }));
  }

  test_queue_t queue;
  recording_console_t console;
  links_t links{queue, console};
  std::unique_ptr<connection_t> hub = std::make_unique<connection_t>(queue, console, links);
};

TEST_F(hub_over_tcp_test, a_refused_connection_is_retried_every_4_s_until_disconnect) {
  std::uint16_t closed_port;
  {
    loopback_server_t gone;
    closed_port = gone.port();
  }
  hub->connect_tcp("127.0.0.1", closed_port);
  ASSERT_TRUE(queue.run_until([&] { return hub->sta_fg_tcp.get() == colour_t::red; }));
  EXPECT_EQ(hub->status_tcp.get(), std::strerror(ECONNREFUSED));
  for (int attempt = 2; attempt <= 4; ++attempt) {
    queue.advance(3.9);
    EXPECT_EQ(attempts(), attempt - 1);
    queue.advance(0.1);
    EXPECT_EQ(attempts(), attempt);
    ASSERT_TRUE(queue.run_until([&] { return hub->sta_fg_tcp.get() == colour_t::red; }));
  }
  hub->disconnect();
  queue.advance(20.0);
  EXPECT_EQ(attempts(), 4);
  EXPECT_EQ(hub->status_tcp.get(), "offline");
}

TEST_F(hub_over_tcp_test, a_server_that_stops_and_comes_back_is_reconnected) {
  auto server = std::make_unique<loopback_server_t>();
  const auto port = server->port();
  hub->connect_tcp("127.0.0.1", port);
  ASSERT_TRUE(server->accept_client());
  ASSERT_TRUE(queue.run_until([&] { return hub->status_tcp.get() == "127.0.0.1:" + std::to_string(port); }));
  server.reset();
  ASSERT_TRUE(queue.run_until([&] { return hub->sta_fg_tcp.get() == colour_t::red; }));
  EXPECT_EQ(hub->status_tcp.get(), "Connection reset by peer");
  queue.advance(4.0);
  ASSERT_TRUE(queue.run_until([&] { return hub->status_tcp.get() == std::strerror(ECONNREFUSED); }));
  server = std::make_unique<loopback_server_t>(port);
  queue.advance(4.0);
  ASSERT_TRUE(server->accept_client());
  ASSERT_TRUE(queue.run_until([&] { return hub->sta_fg_tcp.get() == colour_t::secondary; }));
  server->send("$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n");
  ASSERT_TRUE(queue.run_until([&] { return hub->gga.lat.get() != 0.0; }));
}

}  // namespace
