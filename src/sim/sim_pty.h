#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

// A pseudo-terminal that plays a receiver's serial port: a program opens the slave, a real kernel
// terminal ("/dev/pts/4"), and the simulator writes the master. With a baud rate, the device
// speaks only at that rate: while the slave is set to another speed each piece arrives as noise
// of the same length, as bytes sent at one rate read at another do on a UART. Without one it
// answers at any rate, as a USB CDC-ACM receiver does.
class sim_pty_t {
public:
  explicit sim_pty_t(std::uint32_t baud = 0, std::uint64_t seed = 1) : baud_(baud), noise_(seed) {}
  ~sim_pty_t() { close(); }
  sim_pty_t(const sim_pty_t&) = delete;
  sim_pty_t& operator=(const sim_pty_t&) = delete;

  // Creates the pair; false with errno set when the system has no pseudo-terminal to give.
  bool open();
  const std::string& slave_path() const { return slave_path_; }
  // Writes the piece, or noise at a wrong speed; what the terminal cannot take now is dropped.
  void send(std::string_view piece);
  // What a program wrote to the slave since the last call; empty when nothing came.
  std::string receive();
  // Closes both ends: a reader of the slave sees its device removed.
  void close();

private:
  bool at_baud() const;

  std::uint32_t baud_;
  std::mt19937 noise_;
  int master_ = -1;
  int slave_ = -1;  // kept open, so that the terminal's settings outlive a reader's close
  std::string slave_path_;
};
