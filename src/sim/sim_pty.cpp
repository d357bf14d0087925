#include "sim/sim_pty.h"

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <array>

#include "core/termios_speed.h"

bool sim_pty_t::open() {
  std::array<char, 128> name{};
  if (::openpty(&master_, &slave_, name.data(), nullptr, nullptr) != 0) return false;
  slave_path_ = name.data();
  // Raw from the start: no echo of unread bytes back to the master, no line editing.
  termios t{};
  ::tcgetattr(slave_, &t);
  ::cfmakeraw(&t);
  ::tcsetattr(slave_, TCSANOW, &t);
  ::fcntl(master_, F_SETFL, ::fcntl(master_, F_GETFL) | O_NONBLOCK);
  return true;
}

bool sim_pty_t::at_baud() const {
  if (baud_ == 0) return true;
  termios t{};
  return ::tcgetattr(slave_, &t) == 0 && termios_speed(baud_) == ::cfgetispeed(&t);
}

void sim_pty_t::send(std::string_view piece) {
  if (master_ == -1) return;
  std::string bytes(piece);
  if (!at_baud()) {
    // Bytes with the high bit set and never a UBX sync byte: noise that no reader takes for data.
    for (auto& b : bytes) {
      do {
        b = static_cast<char>(0x80 | (noise_() & 0x7F));
      } while (static_cast<unsigned char>(b) == 0xB5);
    }
  }
  [[maybe_unused]] const auto written = ::write(master_, bytes.data(), bytes.size());
}

std::string sim_pty_t::receive() {
  std::string bytes;
  char buffer[4096];
  while (master_ != -1) {
    const auto n = ::read(master_, buffer, sizeof buffer);
    if (n <= 0) break;
    bytes.append(buffer, static_cast<std::size_t>(n));
  }
  return bytes;
}

void sim_pty_t::close() {
  if (master_ != -1) ::close(master_);
  if (slave_ != -1) ::close(slave_);
  master_ = slave_ = -1;
}
