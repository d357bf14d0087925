#include "link/gpsd_client.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>

#include "link/tcp_client.h"
#include "support/loopback_server.h"
#include "support/recording_console.h"
#include "support/recording_status_events.h"
#include "support/test_queue.h"

namespace {

const std::string capture = std::string(KORVID_LOGS_DIR) + "/neo-m8n.log";

// gpsfake feeding the capture to a gpsd of its own on a loopback port, in a process group of its
// own, so that the daemon goes with it.
class gpsfake_t {
public:
  explicit gpsfake_t(std::uint16_t port) {
    pid_ = ::fork();
    if (pid_ != 0) return;
    ::setpgid(0, 0);
    const auto port_text = std::to_string(port);
    std::freopen("/dev/null", "w", stdout);
    std::freopen("/dev/null", "w", stderr);
    ::execlp("gpsfake", "gpsfake", "-q", "-c", "0.01", "-P", port_text.c_str(), capture.c_str(), nullptr);
    _exit(127);
  }
  ~gpsfake_t() {
    ::kill(-pid_, SIGTERM);
    for (int i = 0; i < 20 && ::waitpid(pid_, nullptr, WNOHANG) == 0; ++i) ::usleep(50'000);
    ::kill(-pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }

private:
  pid_t pid_;
};

class gpsd_client_test : public ::testing::Test {
protected:
  void TearDown() override {
    queue.close();
    client.reset();
  }
  const std::vector<std::string>& events() const { return recorder.record.events; }

  test_queue_t queue;
  recording_console_t console;
  recording_status_events_t recorder;
  std::unique_ptr<gpsd_client_t> client = std::make_unique<gpsd_client_t>(
      recorder, [&](link_events_t& events) { return std::make_unique<tcp_client_t>(events, queue, console); });
};

TEST_F(gpsd_client_test, the_daemons_sentences_reach_the_receive_path_and_its_device_is_named) {
  if (!std::filesystem::exists(capture)) GTEST_SKIP() << "no receiver captures at " << capture;
  if (!std::filesystem::exists("/usr/sbin/gpsd") || !std::filesystem::exists("/usr/bin/gpsfake"))
    GTEST_SKIP() << "gpsd or gpsfake is not installed (packages gpsd, gpsd-clients)";
  const auto port = loopback_server_t().port();
  gpsfake_t gpsfake(port);
  const std::string peer = "gpsd 127.0.0.1:" + std::to_string(port);
  // The daemon takes a moment to start: connect until it answers, for at most 15 s.
  const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(15);
  while (!client->valid() && std::chrono::steady_clock::now() < give_up) {
    recorder.record = {};
    client->connect("127.0.0.1", port, false);
    queue.run_until([&] { return !events().empty(); });
    if (!client->valid()) queue.run_until([] { return false; }, 0.2);
  }
  if (!client->valid()) GTEST_SKIP() << "gpsd did not start on port " << port;
  ASSERT_EQ(events()[0], "up " + peer);
  const auto& received = recorder.record.received;
  ASSERT_TRUE(queue.run_until(
      [&] { return events().size() >= 2 && std::count(received.begin(), received.end(), '$') > 12; }, 10))
      << testing::PrintToString(events());
  EXPECT_EQ(events()[1].rfind("status " + peer + " /dev/", 0), 0u) << events()[1];

  std::ifstream file(capture);
  const std::string log((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  std::istringstream lines(received);
  int sentences = 0;
  for (std::string line; std::getline(lines, line) && lines.good();) {
    if (line.empty() || line[0] != '$') continue;
    EXPECT_NE(log.find(line), std::string::npos) << line;
    ++sentences;
  }
  EXPECT_GE(sentences, 10);
}

// A daemon played by a loopback server: the watch asked for, the devices asked for when the
// greeting names none, and a device report split between chunks.
TEST_F(gpsd_client_test, greets_with_the_watch_asked_for_and_reads_the_device_from_split_reports) {
  loopback_server_t daemon;
  const std::string peer = "gpsd 127.0.0.1:" + std::to_string(daemon.port());
  for (const bool raw : {false, true}) {
    recorder.record = {};
    ASSERT_EQ(client->connect("127.0.0.1", daemon.port(), raw), 0);
    ASSERT_TRUE(daemon.accept_client());
    ASSERT_TRUE(queue.run_until([&] { return !events().empty(); }));
    EXPECT_EQ(daemon.receive(), raw ? gpsd_client_t::watch_raw : gpsd_client_t::watch_nmea);
    daemon.send("{\"class\":\"DEVICES\",\"devices\":[]}\n$GPGLL,4916.45,N,12311.12,W,225444,A,*1D\r\n");
    ASSERT_TRUE(queue.run_until([&] { return recorder.record.received.size() > 70; }));
    EXPECT_EQ(daemon.receive(), gpsd_client_t::query_devices);
    daemon.send("{\"class\":\"DEVICES\",\"devices\":[{\"class\":\"DEVICE\",\"pa");
    ASSERT_TRUE(queue.run_until([&] { return recorder.record.received.size() > 100; }));
    daemon.send("th\":\"/dev/ttyACM0\"}]}\n");
    ASSERT_TRUE(queue.run_until([&] { return events().size() == 2; }));
    EXPECT_EQ(events(), (std::vector<std::string>{"up " + peer, "status " + peer + " /dev/ttyACM0"}));
    client->stop();
    daemon.drop_client();
  }
}

}  // namespace
