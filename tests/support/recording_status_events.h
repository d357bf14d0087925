#pragma once

#include <string>

#include "link/link_status.h"
#include "support/recording_link_events.h"

// Writes down what a transport reports, its statuses ("status TEXT") among "up" and "down".
struct recording_status_events_t final : link_status_events_t {
  void link_up(const std::string& peer) override { record.link_up(peer); }
  void link_down(const std::string& peer, std::int32_t error) override { record.link_down(peer, error); }
  void link_bytes(std::span<const std::uint8_t> bytes) override { record.link_bytes(bytes); }
  void link_status(const std::string& text) override { record.events.push_back("status " + text); }
  recording_link_events_t record;
};
