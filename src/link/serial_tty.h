#pragma once

#include <cstdint>
#include <string>

// The termios side of a serial port, on a transport's own thread.

// A port opened for a receiver, or why not: error is the C library's error number, with ENOTTY for
// a path that is not a terminal and EWOULDBLOCK for a port another program holds a lock on.
struct tty_open_t {
  int fd = -1;
  int error = 0;
};

// Opens the port non-blocking, checks that it is a terminal and that no other program holds its
// lock (an flock, or a live UUCP lock file LCK..NAME in lock_dir), takes the flock and exclusive
// use, and sets raw 8N1 without flow control.
tty_open_t open_tty(const std::string& path, const std::string& lock_dir);

// Gives up exclusive use, which would otherwise outlast the close while another program (a
// simulator serving a pseudo-terminal) keeps the terminal open, and closes the port.
void close_tty(int fd);

// Sets both speeds and drops what arrived before. False with errno set when the port or the
// system does not support the rate (EINVAL for a rate termios does not name).
bool set_tty_speed(int fd, std::uint32_t baud);
