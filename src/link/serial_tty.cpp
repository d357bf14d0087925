#include "link/serial_tty.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "core/termios_speed.h"

namespace {

// A UUCP lock file names the process holding the port, as ASCII digits; the lock is stale once
// that process has gone. The file is named after the device itself, also when the port is opened
// by one of its links (/dev/serial/by-id/...).
bool lock_file_held(const std::string& path, const std::string& lock_dir) {
  std::error_code error;
  const auto device = std::filesystem::canonical(path, error).filename().string();
  std::ifstream file(lock_dir + "/LCK.." + device);
  long pid = 0;
  if (!(file >> pid) || pid <= 0 || pid == ::getpid()) return false;
  return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM;
}

bool make_raw(int fd) {
  termios t{};
  if (::tcgetattr(fd, &t) != 0) return false;
  ::cfmakeraw(&t);
  t.c_cflag |= CLOCAL | CREAD;
  t.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS | CSTOPB);
  t.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY);
  t.c_cc[VMIN] = 1;
  t.c_cc[VTIME] = 0;
  return ::tcsetattr(fd, TCSANOW, &t) == 0;
}

}  // namespace

tty_open_t open_tty(const std::string& path, const std::string& lock_dir) {
  const int fd = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return {-1, errno};
  auto fail = [fd](int error) {
    ::close(fd);
    return tty_open_t{-1, error};
  };
  if (!::isatty(fd)) return fail(ENOTTY);
  if (::flock(fd, LOCK_EX | LOCK_NB) != 0 || lock_file_held(path, lock_dir)) return fail(EWOULDBLOCK);
  ::ioctl(fd, TIOCEXCL);
  if (!make_raw(fd)) return fail(errno);
  return {fd, 0};
}

void close_tty(int fd) {
  ::ioctl(fd, TIOCNXCL);
  ::close(fd);
}

bool set_tty_speed(int fd, std::uint32_t baud) {
  const auto speed = termios_speed(baud);
  if (!speed) {
    errno = EINVAL;
    return false;
  }
  termios t{};
  if (::tcgetattr(fd, &t) != 0) return false;
  ::cfsetispeed(&t, *speed);
  ::cfsetospeed(&t, *speed);
  if (::tcsetattr(fd, TCSANOW, &t) != 0) return false;
  return ::tcflush(fd, TCIFLUSH) == 0;
}
