// Arbitrary lines through the hub's line path with all six decoders: length limits, checksum,
// field list, every decoder's reading. Each input is cut at LF; a line that fails the checksum
// gets a correct one appended half of the time, so that the decoders see the bytes too.
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

#include "link/connection.h"

namespace {

struct idle_queue_t final : main_queue_t {
  void post(std::function<void()>) override {}
  bool post_and_wait(std::function<void()> task) override {
    task();
    return true;
  }
  void post_after(double, std::function<void()>) override {}
  double now_s() const override { return now; }
  double now = 0.0;
};

struct silent_console_t final : console_t {
  void print(std::string_view) override {}
  std::time_t utc_now() const override { return 0; }
};

struct no_links_t final : link_factory_t {
  struct tcp_t final : tcp_link_t {
    std::int32_t connect(const std::string&, std::uint16_t) override { return 0; }
    bool enabled() const override { return false; }
    bool valid() const override { return false; }
    void stop() override {}
    void send(std::span<const std::uint8_t>) override {}
  };
  struct ble_t final : ble_link_t {
    void connect(const std::string&) override {}
    void stop() override {}
    void write(std::span<const std::uint8_t>) override {}
  };
  std::unique_ptr<tcp_link_t> make_tcp(tcp_client_delegate_t&) override { return std::make_unique<tcp_t>(); }
  std::unique_ptr<ble_link_t> make_ble(ble_delegate_t&) override { return std::make_unique<ble_t>(); }
};

std::string with_checksum(std::string line) {
  unsigned sum = 0;
  for (std::size_t i = 1; i < line.size(); ++i) sum ^= static_cast<unsigned char>(line[i]);
  static const char* hex = "0123456789ABCDEF";
  line += '*';
  line += hex[sum >> 4];
  line += hex[sum & 15];
  return line;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static idle_queue_t queue;
  static silent_console_t console;
  static no_links_t links;
  static connection_t hub(queue, console, links);
  std::string line;
  for (std::size_t i = 0; i <= size; ++i) {
    if (i < size && data[i] != '\n') {
      line.push_back(static_cast<char>(data[i]));
      continue;
    }
    hub.receive_line(line);
    if (!line.empty() && line.find('*') == std::string::npos) hub.receive_line(with_checksum(line));
    line.clear();
    queue.now += 0.5;
  }
  if (size > 0 && data[0] == 'R') hub.reset();
  return 0;
}
