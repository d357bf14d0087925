#include "app/demo_sim.h"

namespace {

sim_config_t demo_receiver(bool ubx, std::uint8_t gnss) {
  sim_config_t c;
  c.ubx = ubx;
  c.gnss = gnss;
  c.speed_mps = demo_sim_t::speed_mps;
  c.epoch_s = 1.0 / demo_sim_t::rate_hz;
  c.rtk = true;  // the same stream until corrections arrive
  return c;
}

sim_server_config_t demo_server() {
  sim_server_config_t c;
  c.port = 0;  // any free port
  c.period_s = 1.0 / demo_sim_t::rate_hz;
  return c;
}

}  // namespace

demo_sim_t::demo_sim_t(bool ubx, std::uint8_t gnss)
    : engine_(demo_receiver(ubx, gnss)), server_(demo_server()), receiver_(1.0 / rate_hz, ubx, [this](double period_s) {
        engine_.set_epoch_s(period_s);
        server_.set_period_s(period_s);
      }) {
  if (!server_.listen()) return;
  port_ = server_.port();
  thread_ = std::thread([this] { server_.run([this] { return engine_.next_epoch(); }, stop_, {&rtcm_, &receiver_}); });
}

demo_sim_t::~demo_sim_t() {
  stop_ = true;
  if (thread_.joinable()) thread_.join();
}
