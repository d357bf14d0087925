#include "link/serial_port.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "link/serial_port_list.h"
#include "link/serial_tty.h"
#include "sim/sim_engine.h"
#include "sim/sim_pacer.h"
#include "sim/sim_pty.h"
#include "support/recording_console.h"
#include "support/recording_status_events.h"
#include "support/test_queue.h"

namespace {

constexpr double window_s = 0.3;  // s at each rate, instead of 1.5

// The simulated receiver on a pseudo-terminal, an epoch every 20 ms from its own thread.
struct paced_pty_t {
  explicit paced_pty_t(std::uint32_t baud, bool ubx = false) : pty(baud), engine({.ubx = ubx}) {
    pty.open();
    thread = std::thread([this] {
      run_paced(
          0.02, 0, [this] { return engine.next_epoch(); }, [this](const std::string& p) { pty.send(p); }, stop);
    });
  }
  ~paced_pty_t() {
    stop = true;
    thread.join();
  }
  sim_pty_t pty;
  sim_engine_t engine;
  std::atomic<bool> stop{false};
  std::thread thread;
};

class serial_port_test : public ::testing::Test {
protected:
  void TearDown() override {
    queue.close();
    port.reset();
  }
  const std::vector<std::string>& events() const { return recorder.record.events; }
  bool wait_for(const std::string& event) {
    return queue.run_until([&] { return std::find(events().begin(), events().end(), event) != events().end(); });
  }

  test_queue_t queue;
  recording_console_t console;
  recording_status_events_t recorder;
  std::unique_ptr<serial_port_t> port =
      std::make_unique<serial_port_t>(recorder, queue, console, serial_port_t::options_t{window_s, "/nonexistent"});
};

TEST_F(serial_port_test, a_stream_arrives_whole_and_writes_reach_the_device) {
  int master = -1, slave = -1;
  char name[128];
  ASSERT_EQ(::openpty(&master, &slave, name, nullptr, nullptr), 0);
  ASSERT_EQ(port->open(name, 115200), 0);
  ASSERT_TRUE(wait_for("up " + serial_peer(name, 115200)));
  EXPECT_EQ(port->open(name, 115200), -1) << "already open";
  std::string stream;
  sim_engine_t engine({});
  for (int i = 0; i < 50; ++i) stream += engine.next_epoch();
  std::thread writer([&] { ASSERT_EQ(::write(master, stream.data(), stream.size()), ssize_t(stream.size())); });
  EXPECT_TRUE(queue.run_until([&] { return recorder.record.received.size() >= stream.size(); }));
  writer.join();
  EXPECT_EQ(recorder.record.received, stream);

  port->write(std::vector<std::uint8_t>{'$', 0xB5, '\n'});
  std::string back(8, '\0');
  pollfd p{master, POLLIN, 0};
  ASSERT_EQ(::poll(&p, 1, 5000), 1);
  back.resize(static_cast<std::size_t>(::read(master, back.data(), back.size())));
  EXPECT_EQ(back, "$\xB5\n");
  ::close(master);
  ::close(slave);
}

TEST_F(serial_port_test, detection_tries_each_rate_and_keeps_the_first_with_valid_data) {
  const struct {
    std::uint32_t device_baud;  // 0: the device answers at any rate
    bool ubx;
    std::uint32_t found;
  } cases[] = {{0, false, 9600}, {115200, false, 115200}, {38400, true, 38400}};
  for (const auto& c : cases) {
    paced_pty_t device(c.device_baud, c.ubx);
    const auto& path = device.pty.slave_path();
    recorder.record = {};
    ASSERT_EQ(port->open(path, 0), 0);
    ASSERT_TRUE(wait_for("up " + serial_peer(path, c.found))) << c.found;
    std::vector<std::string> expected;
    for (const auto rate : serial_port_t::detect_rates) {
      expected.push_back("status detecting baud rate (" + std::to_string(rate) + ")...");
      if (rate == c.found) break;
    }
    expected.push_back("up " + serial_peer(path, c.found));
    EXPECT_EQ(events(), expected);
    ASSERT_TRUE(queue.run_until([&] { return recorder.record.received.size() > 200; }));
    EXPECT_EQ(recorder.record.received[0], c.ubx ? '\xB5' : '$') << "the receive path starts at valid data";
    port->stop();
  }
}

TEST_F(serial_port_test, a_removed_device_is_a_loss_and_a_new_one_is_opened_again) {
  auto device = std::make_unique<paced_pty_t>(0);
  const auto first = device->pty.slave_path();
  ASSERT_EQ(port->open(first, 4800), 0);
  ASSERT_TRUE(wait_for("up " + serial_peer(first, 4800)));
  device.reset();
  ASSERT_TRUE(wait_for("down " + first + " " + std::to_string(ENODEV)));
  EXPECT_EQ(serial_error_text(ENODEV), "device removed");
  EXPECT_FALSE(port->valid());
  EXPECT_TRUE(port->enabled()) << "the user still wants the link";
  device = std::make_unique<paced_pty_t>(0);
  ASSERT_EQ(port->open(device->pty.slave_path(), 4800), 0);
  EXPECT_TRUE(wait_for("up " + serial_peer(device->pty.slave_path(), 4800)));
}

TEST_F(serial_port_test, a_stop_during_detection_is_quiet_and_frees_the_port_for_the_next_open) {
  sim_pty_t silent;
  ASSERT_TRUE(silent.open());
  const auto descriptors = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
  const auto before = descriptors();
  ASSERT_EQ(port->open(silent.slave_path(), 0), 0);
  ASSERT_TRUE(wait_for("status detecting baud rate (9600)..."));
  port->stop();
  EXPECT_FALSE(port->enabled());
  ASSERT_EQ(port->open(silent.slave_path(), 57600), 0);
  ASSERT_TRUE(wait_for("up " + serial_peer(silent.slave_path(), 57600)));
  queue.run_until([] { return false; }, window_s);
  EXPECT_EQ(events().size(), 2u) << "nothing from the stopped attempt";
  port->stop();
  ASSERT_TRUE(queue.run_until([&] { return console.copy().size() == 1; }));
  EXPECT_EQ(console.copy()[0], "serial_port closed " + silent.slave_path() + "\n");
  EXPECT_EQ(descriptors(), before);
}

// Opens the path as a user without the root's rights would: the error number.
int open_as_nobody(const std::string& path) {
  const pid_t child = ::fork();
  if (child == 0) _exit(::setuid(65534) == 0 ? open_tty(path, "/nonexistent").error : 255);
  int status = 0;
  ::waitpid(child, &status, 0);
  return WEXITSTATUS(status);
}

TEST_F(serial_port_test, ports_that_cannot_be_used_say_why) {
  sim_pty_t locked, lock_file, no_rights, silent;
  ASSERT_TRUE(locked.open() && lock_file.open() && no_rights.open() && silent.open());
  const auto dir = std::filesystem::temp_directory_path() / ("korvid-lock-" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  // The lock file is named after the device, which is opened here through a link.
  const auto lock_name = lock_file.slave_path().substr(lock_file.slave_path().rfind('/') + 1);
  std::ofstream(dir / ("LCK.." + lock_name)) << "      " << ::getppid() << "\n";
  const auto link = (dir / "usb-receiver-if00").string();
  std::filesystem::create_symlink(lock_file.slave_path(), link);
  const int holder = ::open(locked.slave_path().c_str(), O_RDWR | O_NOCTTY);
  ASSERT_EQ(::flock(holder, LOCK_EX), 0);
  ::chmod(no_rights.slave_path().c_str(), 0600);
  // Only root can become a user without rights to the terminal; other users own theirs.
  if (::geteuid() == 0) {
    EXPECT_EQ(open_as_nobody(no_rights.slave_path()), EACCES);
  }
  EXPECT_EQ(serial_error_text(EACCES), "permission denied: add your user to the dialout group");

  const struct {
    std::string path;
    std::uint32_t baud;
    int error;
    const char* text;
  } cases[] = {
      {"/nonexistent/ttyUSB0", 9600, ENOENT, "no such device"},
      {"/proc/self/status", 9600, ENOTTY, "not a serial device"},
      {locked.slave_path(), 9600, EWOULDBLOCK, "port in use: another program holds its lock"},
      {link, 9600, EWOULDBLOCK, "port in use: another program holds its lock"},
      {silent.slave_path(), 1200, EINVAL, "baud rate not supported"},
      {silent.slave_path(), 0, ETIMEDOUT, "no NMEA or UBX data at any baud rate"},
  };
  port = std::make_unique<serial_port_t>(recorder, queue, console, serial_port_t::options_t{0.02, dir.string()});
  for (const auto& c : cases) {
    recorder.record = {};
    ASSERT_EQ(port->open(c.path, c.baud), 0);
    EXPECT_TRUE(wait_for("down " + c.path + " " + std::to_string(c.error))) << c.path;
    EXPECT_EQ(serial_error_text(c.error), c.text);
  }
  ::close(holder);
  std::filesystem::remove_all(dir);
}

TEST(serial_port_list, a_device_is_remembered_by_its_by_id_link) {
  sim_pty_t pty;
  ASSERT_TRUE(pty.open());
  const auto dir = std::filesystem::temp_directory_path() / ("korvid-by-id-" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  std::filesystem::create_symlink("/dev/null", dir / "usb-other-if00");
  std::filesystem::create_symlink(pty.slave_path(), dir / "usb-u-blox_GNSS-if00");
  const auto by_id = by_id_path(pty.slave_path(), dir);
  EXPECT_EQ(by_id, (dir / "usb-u-blox_GNSS-if00").string());
  EXPECT_EQ(by_id_path("/dev/zero", dir), "");
  EXPECT_EQ(by_id_path(pty.slave_path(), "/nonexistent"), "");
  EXPECT_EQ((serial_port_info_t{pty.slave_path(), by_id, "", ""}.stable_path()), by_id);
  EXPECT_EQ((serial_port_info_t{pty.slave_path(), "", "", ""}.stable_path()), pty.slave_path());
  std::filesystem::remove_all(dir);
}

}  // namespace
