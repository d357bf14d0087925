#include "link/tcp_client.h"

#include <gtest/gtest.h>
#include <netdb.h>
#include <netinet/tcp.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "link/connection.h"
#include "support/loopback_server.h"
#include "support/recording_console.h"
#include "support/recording_link_events.h"
#include "support/tcp_links.h"
#include "support/test_queue.h"

namespace {

class tcp_client_test : public ::testing::Test {
protected:
  void TearDown() override {
    queue.close();
    client.reset();
  }
  std::string peer() const { return "127.0.0.1:" + std::to_string(server.port()); }
  bool wait_for_events(std::size_t n) {
    return queue.run_until([&] { return events.events.size() >= n; });
  }
  void connect_and_accept() {
    ASSERT_EQ(client->connect("127.0.0.1", server.port()), 0);
    ASSERT_TRUE(server.accept_client());
    ASSERT_TRUE(wait_for_events(1));
    ASSERT_EQ(events.events[0], "up " + peer());
  }
  bool no_errors() const {
    return std::none_of(events.events.begin(), events.events.end(),
                        [](const std::string& e) { return e.rfind("down", 0) == 0; });
  }

  test_queue_t queue;
  recording_console_t console;
  recording_link_events_t events;
  loopback_server_t server;
  std::unique_ptr<tcp_client_t> client = std::make_unique<tcp_client_t>(events, queue, console);
};

TEST_F(tcp_client_test, received_bytes_reach_the_main_thread_raw_and_in_order) {
  connect_and_accept();
  const std::vector<std::uint8_t> binary = {0xB5, 0x62, 0x00, '\r', '\n', 0xFF};
  server.send("$GPGGA,12");
  ASSERT_TRUE(queue.run_until([&] { return events.received.size() == 9; }));
  server.send(binary);
  ASSERT_TRUE(queue.run_until([&] { return events.received.size() == 15; }));
  EXPECT_EQ(events.received, "$GPGGA,12" + std::string(binary.begin(), binary.end()));
  EXPECT_EQ(client->connect("127.0.0.1", server.port()), -1) << "already connected";
  // Keepalive finds a peer that vanished: probes after 10 s idle, every 5 s, 3 of them.
  auto option = [&](int level, int name, int value = 0) {
    socklen_t length = sizeof value;
    ::getsockopt(client->so(), level, name, &value, &length);
    return value;
  };
  EXPECT_EQ(std::tuple(option(SOL_SOCKET, SO_KEEPALIVE), option(IPPROTO_TCP, TCP_KEEPIDLE),
                       option(IPPROTO_TCP, TCP_KEEPINTVL), option(IPPROTO_TCP, TCP_KEEPCNT)),
            std::tuple(1, 10, 5, 3));
}

TEST_F(tcp_client_test, a_disconnect_during_a_blocked_receive_ends_the_loop_without_a_report) {
  connect_and_accept();
  client->stop();
  ASSERT_TRUE(queue.run_until([&] { return !console.copy().empty(); }));
  EXPECT_EQ(console.copy()[0], "tcp_client disconnected " + peer() + "\n");
  EXPECT_EQ(std::pair(client->enabled(), client->so()), std::pair(false, -1));
  queue.run_until([] { return false; }, 0.2);
  EXPECT_EQ(events.events, std::vector<std::string>{"up " + peer()});
}

TEST_F(tcp_client_test, an_orderly_close_by_the_peer_reports_a_reset_connection) {
  connect_and_accept();
  server.drop_client();
  ASSERT_TRUE(wait_for_events(2));
  EXPECT_EQ(events.events[1], "down " + peer() + " " + std::to_string(ECONNRESET));
  EXPECT_FALSE(client->valid());
  EXPECT_TRUE(client->enabled()) << "the user still wants the link";
}

TEST_F(tcp_client_test, writes_reach_the_peer_and_a_peer_that_has_gone_does_not_kill_the_process) {
  client->write(std::vector<std::uint8_t>{'x'});  // not connected: dropped
  connect_and_accept();
  client->write(std::vector<std::uint8_t>{'$', 'A', 0xB5, '\n'});
  EXPECT_EQ(server.receive(), "$A\xB5\n");
  server.drop_client();
  const std::vector<std::uint8_t> bytes(4096, 'x');
  for (int i = 0; i < 50 && client->valid(); ++i) client->write(bytes);
  ASSERT_TRUE(wait_for_events(2));
}

TEST_F(tcp_client_test, a_quick_reconnect_keeps_the_new_connection) {
  connect_and_accept();
  const auto ups = [&] { return std::count(events.events.begin(), events.events.end(), "up " + peer()); };
  for (int i = 0; i < 5; ++i) {
    client->stop();
    server.drop_client();
    ASSERT_EQ(client->connect("127.0.0.1", server.port()), 0);
    ASSERT_TRUE(server.accept_client());
    // The report, not the flag: a stop before the report reached the main thread would drop it.
    ASSERT_TRUE(queue.run_until([&] { return ups() == i + 2; })) << i;
  }
  server.send("$A*00\r\n");
  ASSERT_TRUE(queue.run_until([&] { return events.received == "$A*00\r\n"; }));
  EXPECT_TRUE(client->valid() && no_errors());
}

TEST_F(tcp_client_test, a_disconnect_racing_the_connect_leaves_no_stale_connection) {
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(client->connect("127.0.0.1", server.port()), 0) << i;
    client->stop();
    while (server.accept_client(0)) server.drop_client();
  }
  queue.run_until([] { return false; }, 0.3);
  EXPECT_EQ(std::pair(client->valid(), client->so()), std::pair(false, -1));
  EXPECT_TRUE(no_errors());
  // Late handshakes of the stopped attempts would fill the small listen backlog: drain it.
  while (server.accept_client(0)) server.drop_client();
  ASSERT_EQ(client->connect("127.0.0.1", server.port()), 0);
  ASSERT_TRUE(server.accept_client());
  EXPECT_TRUE(queue.run_until([&] { return client->valid(); }));
}

TEST_F(tcp_client_test, host_names_and_ipv6_addresses_reach_the_peer) {
  loopback_server_t v6(0, AF_INET6);
  const std::pair<loopback_server_t*, std::string> cases[] = {{&server, "localhost"}, {&v6, "[::1]"}};
  for (const auto& [to, host] : cases) {
    ASSERT_EQ(client->connect(host, to->port()), 0);
    ASSERT_TRUE(to->accept_client());
    ASSERT_TRUE(wait_for_events(events.events.size() + 1));
    EXPECT_EQ(events.events.back(), "up " + host + ":" + std::to_string(to->port()));
    client->stop();
  }
}

// The hub with the real client: failures in red with the system's text, retried every 4 s until
// the peer is back; a new connection starts as text whatever the last one carried.
class hub_over_tcp_test : public ::testing::Test {
protected:
  void TearDown() override {
    queue.close();
    hub.reset();
  }

  test_queue_t queue;
  recording_console_t console;
  tcp_links_t links{queue, console};
  std::unique_ptr<connection_t> hub = std::make_unique<connection_t>(queue, console, links);
};

TEST_F(hub_over_tcp_test, a_server_that_stops_and_comes_back_is_reconnected_as_text) {
  auto server = std::make_unique<loopback_server_t>();
  const auto port = server->port();
  hub->connect_tcp("127.0.0.1", port);
  ASSERT_TRUE(server->accept_client());
  ASSERT_TRUE(queue.run_until([&] { return hub->status_tcp.get() == "127.0.0.1:" + std::to_string(port); }));
  server->send(std::vector<std::uint8_t>{0xB5, 0x62, 0x01});
  ASSERT_TRUE(queue.run_until([&] { return hub->binary(); }));
  server.reset();
  ASSERT_TRUE(queue.run_until([&] { return hub->sta_fg_tcp.get() == colour_t::red; }));
  EXPECT_EQ(hub->status_tcp.get(), "Connection reset by peer");
  queue.advance(4.0);
  ASSERT_TRUE(queue.run_until([&] { return hub->status_tcp.get() == std::strerror(ECONNREFUSED); }));
  EXPECT_EQ(hub->sta_fg_tcp.get(), colour_t::red);
  queue.advance(4.0);
  ASSERT_TRUE(queue.run_until([&] { return hub->status_tcp.get() == std::strerror(ECONNREFUSED); }));
  server = std::make_unique<loopback_server_t>(port);
  queue.advance(4.0);
  ASSERT_TRUE(server->accept_client());
  ASSERT_TRUE(queue.run_until([&] { return hub->sta_fg_tcp.get() == colour_t::secondary; }));
  server->send("$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n");
  ASSERT_TRUE(queue.run_until([&] { return hub->gga.lat.get() != 0.0; }));
  EXPECT_FALSE(hub->binary());
}

// Each failure shows its own text in red and is retried after 4 s: a peer that sends nothing, an
// address that never answers, a name the C library cannot look up (an unknown interface, which
// fails without asking a name server).
TEST_F(hub_over_tcp_test, a_silent_peer_an_unanswered_connect_and_a_failed_lookup_are_shown_and_retried) {
  links.timing = {.connect_timeout_s = 0.2, .silence_limit_s = 0.2};
  loopback_server_t silent;
  loopback_server_t unanswering;
  unanswering.stop_answering();
  const std::tuple<std::string, std::uint16_t, loopback_server_t*, int, std::string> cases[] = {
      {"127.0.0.1", silent.port(), &silent, ENODATA, "no data for 15 s"},
      {"127.0.0.1", unanswering.port(), nullptr, ETIMEDOUT, "Connection timed out"},
      {"[::1%nosuchif]", 81, nullptr, EAI_NONAME, "Name or service not known"},
  };
  for (const auto& [host, port, accepting, error, text] : cases) {
    const auto peer = host + ":" + std::to_string(port);
    hub->connect_tcp(host, port);
    ASSERT_TRUE(!accepting || accepting->accept_client());
    ASSERT_TRUE(queue.run_until([&] { return hub->sta_fg_tcp.get() == colour_t::red; })) << peer;
    EXPECT_EQ(hub->status_tcp.get(), text);
    EXPECT_EQ(console.copy().back(), console.date() + "  connect " + peer + "  " + std::to_string(error) + " " + text);
    queue.advance(4.0);
    EXPECT_EQ(hub->status_tcp.get(), "Connect " + peer);
    EXPECT_TRUE(!accepting || accepting->accept_client()) << "reconnected";
    hub->disconnect();
  }
}

// The last report of a request may be on its way to the main thread when the user ends the request.
TEST_F(hub_over_tcp_test, a_report_on_its_way_when_the_user_ends_the_request_changes_nothing) {
  loopback_server_t up;
  loopback_server_t refused;
  refused.stop_listening();
  for (const auto* server : {&up, &refused}) {
    hub->connect_tcp("127.0.0.1", server->port());
    ASSERT_TRUE(queue.wait_posted());
    hub->disconnect();
    queue.run_pending();
    EXPECT_EQ(std::pair(hub->status_tcp.get(), hub->sta_fg_tcp.get()),
              std::pair(std::string("offline"), colour_t::accent));
  }
  hub->connect_tcp("127.0.0.1", refused.port());
  ASSERT_TRUE(queue.wait_posted());
  hub->connect_tcp("127.0.0.1", up.port());
  ASSERT_TRUE(queue.run_until([&] { return hub->sta_fg_tcp.get() == colour_t::secondary; }));
  EXPECT_EQ(queue.delayed_count(), 0u) << "the refusal of the request before neither shows nor retries";
}

}  // namespace
