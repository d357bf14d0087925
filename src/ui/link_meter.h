#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "link/link_factory.h"

// Counts the bytes the links receive, on their way from the transports to the hub: a link factory
// that wraps the program's own and hands each transport a counting stand-in for the hub's events.
// It must outlive the hub's transports.
class link_meter_t final : public link_factory_t {
public:
  explicit link_meter_t(link_factory_t& links) : links_(links) {}

  std::unique_ptr<tcp_link_t> make_tcp(link_events_t& events) override { return links_.make_tcp(counted(events)); }
  std::unique_ptr<ble_link_t> make_ble(link_events_t& events) override { return links_.make_ble(counted(events)); }

  // Bytes received over every link since the start.
  std::uint64_t bytes() const { return bytes_; }

private:
  class counting_events_t final : public link_events_t {
  public:
    counting_events_t(link_events_t& events, std::uint64_t& bytes) : events_(events), bytes_(bytes) {}
    void link_up(const std::string& peer) override { events_.link_up(peer); }
    void link_down(const std::string& peer, std::int32_t error) override { events_.link_down(peer, error); }
    void link_bytes(std::span<const std::uint8_t> bytes) override {
      bytes_ += bytes.size();
      events_.link_bytes(bytes);
    }

  private:
    link_events_t& events_;
    std::uint64_t& bytes_;
  };

  link_events_t& counted(link_events_t& events) {
    return *counters_.emplace_back(std::make_unique<counting_events_t>(events, bytes_));
  }

  link_factory_t& links_;
  std::uint64_t bytes_ = 0;
  std::vector<std::unique_ptr<counting_events_t>> counters_;
};
