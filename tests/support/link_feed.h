#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "link/link.h"

// Hands bytes to a link's receive path as one received chunk.
inline void feed(link_events_t& link, std::string_view chunk) {
  link.link_bytes(std::span(reinterpret_cast<const std::uint8_t*>(chunk.data()), chunk.size()));
}

// One text line, ended by LF, as one chunk.
inline void feed_line(link_events_t& link, std::string_view line) {
  feed(link, std::string(line) + "\n");
}
