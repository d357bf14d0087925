#pragma once

#include <memory>

#include "link/link_factory.h"

// Transports that never come up, for a hub that has no link to open (a replay, a benchmark) and for
// a link the program cannot open: a connect attempt starts and nothing follows; bridge writes are
// dropped.
class offline_tcp_t final : public tcp_link_t {
public:
  std::int32_t connect(const std::string&, std::uint16_t) override {
    enabled_ = true;
    return 0;
  }
  bool enabled() const override { return enabled_; }
  bool valid() const override { return false; }
  void stop() override { enabled_ = false; }
  void write(std::span<const std::uint8_t>) override {}

private:
  bool enabled_ = false;
};

class offline_ble_t final : public ble_link_t {
public:
  void connect(const std::string&) override { enabled_ = true; }
  bool enabled() const override { return enabled_; }
  void stop() override { enabled_ = false; }
  void write(std::span<const std::uint8_t>) override {}
  std::string radio_status() const override { return "offline"; }
  colour_t radio_colour() const override { return colour_t::secondary; }
  std::string radio_state() const override { return {}; }

private:
  bool enabled_ = false;
};

class offline_links_t final : public link_factory_t {
public:
  std::unique_ptr<tcp_link_t> make_tcp(link_events_t&) override { return std::make_unique<offline_tcp_t>(); }
  std::unique_ptr<ble_link_t> make_ble(link_events_t&) override { return std::make_unique<offline_ble_t>(); }
};
