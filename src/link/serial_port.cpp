#include "link/serial_port.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include "link/checksum_probe.h"
#include "link/serial_tty.h"

namespace {

// Waits up to timeout_ms for bytes: how many were read, 0 when none came, -1 when the port has
// gone (end of file or an error, as a hung-up terminal or an unplugged adapter gives).
ssize_t read_port(int fd, std::span<std::uint8_t> buffer, int timeout_ms) {
  pollfd p{fd, POLLIN, 0};
  const int ready = ::poll(&p, 1, timeout_ms);
  if (ready == 0 || (ready < 0 && errno == EINTR)) return 0;
  const auto n = ready < 0 ? -1 : ::read(fd, buffer.data(), buffer.size());
  if (n < 0 && (errno == EAGAIN || errno == EINTR)) return 0;
  return n > 0 ? n : -1;
}

}  // namespace

serial_port_t::serial_port_t(link_status_events_t& events, main_queue_t& queue, console_t& console, options_t options)
    : events_(events), queue_(queue), console_(console), options_(std::move(options)) {}

serial_port_t::~serial_port_t() {
  stop();
  threads_.join_all();
}

std::int32_t serial_port_t::open(const std::string& path, std::uint32_t baud) {
  if (attempt_.valid()) return -1;
  enabled_ = true;
  const auto generation = attempt_.begin();
  threads_.join_finished();
  threads_.start("serial_rx", [this, path, baud, generation] { attempt(path, baud, generation); });
  return 0;
}

void serial_port_t::stop() {
  enabled_ = false;
  // The attempt's thread sees the new generation and closes the port within poll_ms.
  attempt_.end();
}

void serial_port_t::write(std::span<const std::uint8_t> bytes) {
  attempt_.with_descriptor(
      [&](int fd) { [[maybe_unused]] const auto written = ::write(fd, bytes.data(), bytes.size()); });
}

// False once the main queue is closing: the loop ends.
bool serial_port_t::hand_over(std::uint64_t generation, std::span<const std::uint8_t> chunk) {
  if (chunk.empty()) return true;
  return queue_.post_and_wait([this, generation, chunk] {
    if (attempt_.current(generation)) events_.link_bytes(chunk);
  });
}

void serial_port_t::attempt(const std::string& path, std::uint32_t baud, std::uint64_t generation) {
  std::lock_guard port(port_mutex_);
  if (!attempt_.current(generation)) return;
  const auto opened = open_tty(path, options_.lock_dir);
  int error = opened.error;
  std::vector<std::uint8_t> first;
  if (error == 0 && baud != 0 && !set_tty_speed(opened.fd, baud)) error = errno;
  if (error == 0 && baud == 0) baud = detect(opened.fd, generation, first, error);
  if (error == 0 && baud != 0 && attempt_.claim(generation, opened.fd)) {
    // Reported before the first chunk, so the hub hears of the link before its bytes.
    attempt_.report(generation, [this, path, baud] { events_.link_up(serial_peer(path, baud)); });
    receive_loop(path, generation, opened.fd, std::move(first));
    return;
  }
  if (opened.fd != -1) close_tty(opened.fd);
  if (error != 0) attempt_.report(generation, [this, path, error] { events_.link_down(path, error); });
}

// Listens at each rate in turn until a valid sentence or frame arrives: that rate, with the bytes
// from that sentence or frame on in `first`. 0 when the attempt ended, or with error set when the
// port went away (ENODEV) or no rate gave data (ETIMEDOUT).
std::uint32_t serial_port_t::detect(int fd, std::uint64_t generation, std::vector<std::uint8_t>& first, int& error) {
  using clock = std::chrono::steady_clock;
  std::array<std::uint8_t, read_size> buffer{};
  checksum_probe_t probe;
  for (const auto rate : detect_rates) {
    if (!attempt_.current(generation)) return 0;
    // A rate the port cannot take is skipped.
    if (!set_tty_speed(fd, rate)) continue;
    attempt_.report(generation,
                    [this, rate] { events_.link_status("detecting baud rate (" + std::to_string(rate) + ")..."); });
    probe.reset();
    const auto deadline = clock::now() + std::chrono::duration<double>(options_.detect_window_s);
    for (auto now = clock::now(); now < deadline && attempt_.current(generation); now = clock::now()) {
      const auto left_ms = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now).count() + 1;
      const auto n = read_port(fd, buffer, static_cast<int>(std::min<long long>(left_ms, poll_ms)));
      if (n < 0) {
        error = ENODEV;
        return 0;
      }
      if (n > 0 && probe.feed(std::span(buffer.data(), static_cast<std::size_t>(n)))) {
        const auto found = probe.from_first();
        first.assign(found.begin(), found.end());
        return rate;
      }
    }
  }
  if (attempt_.current(generation)) error = ETIMEDOUT;
  return 0;
}

void serial_port_t::receive_loop(const std::string& path, std::uint64_t generation, int fd,
                                 std::vector<std::uint8_t> first) {
  std::array<std::uint8_t, read_size> buffer{};
  bool closing = !hand_over(generation, first);
  bool gone = false;
  while (!closing && !gone && attempt_.current(generation)) {
    const auto n = read_port(fd, buffer, poll_ms);
    gone = n < 0;
    if (n > 0) closing = !hand_over(generation, std::span(buffer.data(), static_cast<std::size_t>(n)));
  }
  // A removed device is a loss of the current attempt; a stop, or a program that is closing, is not.
  const bool lost = attempt_.release(generation, fd) && !closing;
  close_tty(fd);
  if (!lost) {
    console_.print("serial_port closed " + path + "\n");
    return;
  }
  attempt_.report(generation, [this, path] { events_.link_down(path, ENODEV); });
}
