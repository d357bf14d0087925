#pragma once

#include <cstdint>
#include <span>
#include <string_view>

// What a transport hands the hub: one text line (no CR, no LF) ...
class receive_line_t {
public:
  virtual ~receive_line_t() = default;
  virtual void receive_line(std::string_view line) = 0;
};

// ... or one chunk of binary bytes.
class receive_arr_t {
public:
  virtual ~receive_arr_t() = default;
  virtual void receive_arr(std::span<const std::uint8_t> bytes) = 0;
};
