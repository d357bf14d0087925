#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// A value as a store gives it back, with its type, so that a reader can ignore what it does not
// expect (a string where a bool belongs, a list holding a number where names belong).
struct kv_value_t {
  enum class kind_t : std::uint8_t { absent, boolean, integer, text, list };
  kind_t kind = kind_t::absent;
  bool boolean = false;
  std::int64_t integer = 0;
  std::string text;
  std::vector<kv_value_t> list;
};

// The per-user persistent key-value store of the platform.
class kv_store_t {
public:
  virtual ~kv_store_t() = default;
  virtual void set_bool(std::string_view key, bool value) = 0;
  virtual void set_strings(std::string_view key, const std::vector<std::string>& value) = 0;
  virtual void set_integers(std::string_view key, const std::vector<std::int64_t>& value) = 0;
  // What is stored under the key, of whatever type; kind absent when nothing is.
  virtual kv_value_t get(std::string_view key) const = 0;
  virtual void remove(std::string_view key) = 0;
};
