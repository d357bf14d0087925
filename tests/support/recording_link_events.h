#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "link/link.h"

// Writes down what a transport reports: "up PEER" and "down PEER N" in order; the received bytes
// are appended to `received`, chunk by chunk.
struct recording_link_events_t final : link_events_t {
  void link_up(const std::string& peer) override { events.push_back("up " + peer); }
  void link_down(const std::string& peer, std::int32_t error) override {
    events.push_back("down " + peer + " " + std::to_string(error));
  }
  void link_bytes(std::span<const std::uint8_t> bytes) override {
    received.append(bytes.begin(), bytes.end());
    ++chunks;
  }
  std::vector<std::string> events;
  std::string received;
  std::size_t chunks = 0;
};
