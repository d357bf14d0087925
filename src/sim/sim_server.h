#pragma once

#include <poll.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "sim/sim_input.h"

// Serves a byte stream to any number of TCP clients on 127.0.0.1, one piece every period, until
// the duration has passed or `stop` is set. Clients connected longer than drop_after_s are
// dropped (they may connect again) to test reconnects.
struct sim_server_config_t {
  std::uint16_t port = 10110;  // the port registered for NMEA 0183 over TCP
  double period_s = 1.0;       // s between pieces
  double duration_s = 0.0;     // 0: until stopped
  double drop_after_s = 0.0;   // 0: never
};

class sim_server_t {
public:
  explicit sim_server_t(const sim_server_config_t& config) : config_(config) {}
  ~sim_server_t();

  // Binds and listens; false with errno set when the port cannot be had.
  bool listen();
  std::uint16_t port() const { return port_; }
  // A new period from the next piece on, as a receiver told a new rate; called from run's inputs.
  void set_period_s(double period_s) { config_.period_s = period_s; }
  // Sends next_piece() to every client each period. Returns when done or stopped. Bytes from a
  // client go to each input in turn; their answers go to every client at once.
  void run(const std::function<std::string()>& next_piece, const std::atomic<bool>& stop,
           const std::vector<sim_input_t*>& inputs = {});

  std::uint64_t connections() const { return connections_; }
  std::uint64_t drops() const { return drops_; }

private:
  void send_all(std::string_view piece);
  void read_clients(const std::vector<pollfd>& polled, const std::vector<sim_input_t*>& inputs);

  struct client_t {
    int fd;
    double since_s;
  };
  sim_server_config_t config_;
  int listener_ = -1;
  std::uint16_t port_ = 0;
  std::vector<client_t> clients_;
  std::uint64_t connections_ = 0;
  std::uint64_t drops_ = 0;
};
