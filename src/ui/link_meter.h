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
  std::unique_ptr<source_link_t> make_source(const source_address_t& address, link_status_events_t& events) override {
    return links_.make_source(address, counted(events, &events));
  }

  // Bytes received over every link since the start.
  std::uint64_t bytes() const { return bytes_; }

private:
  // Passes everything on, counting the bytes; a status goes on where the transport has words of its own.
  class counting_events_t final : public link_status_events_t {
  public:
    counting_events_t(link_events_t& events, link_status_events_t* status, std::uint64_t& bytes)
        : events_(events), status_(status), bytes_(bytes) {}
    void link_up(const std::string& peer) override { events_.link_up(peer); }
    void link_down(const std::string& peer, std::int32_t error) override { events_.link_down(peer, error); }
    void link_bytes(std::span<const std::uint8_t> bytes) override {
      bytes_ += bytes.size();
      events_.link_bytes(bytes);
    }
    void link_status(const std::string& text) override {
      if (status_) status_->link_status(text);
    }

  private:
    link_events_t& events_;
    link_status_events_t* status_;
    std::uint64_t& bytes_;
  };

  counting_events_t& counted(link_events_t& events, link_status_events_t* status = nullptr) {
    return *counters_.emplace_back(std::make_unique<counting_events_t>(events, status, bytes_));
  }

  link_factory_t& links_;
  std::uint64_t bytes_ = 0;
  std::vector<std::unique_ptr<counting_events_t>> counters_;
};
