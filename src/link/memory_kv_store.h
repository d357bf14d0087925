#pragma once

#include <map>
#include <string>

#include "link/kv_store.h"

// A store in memory: the demo keeps its settings here so that the user's stay untouched, and a
// test may put values of any type under any key.
class memory_kv_store_t final : public kv_store_t {
public:
  void set_bool(std::string_view key, bool value) override {
    kv_value_t v;
    v.kind = kv_value_t::kind_t::boolean;
    v.boolean = value;
    values[std::string(key)] = v;
  }
  void set_strings(std::string_view key, const std::vector<std::string>& value) override {
    kv_value_t v;
    v.kind = kv_value_t::kind_t::list;
    for (const auto& s : value) v.list.push_back(text(s));
    values[std::string(key)] = v;
  }
  void set_integers(std::string_view key, const std::vector<std::int64_t>& value) override {
    kv_value_t v;
    v.kind = kv_value_t::kind_t::list;
    for (const auto i : value) v.list.push_back(integer(i));
    values[std::string(key)] = v;
  }
  kv_value_t get(std::string_view key) const override {
    const auto it = values.find(std::string(key));
    return it == values.end() ? kv_value_t{} : it->second;
  }
  void remove(std::string_view key) override { values.erase(std::string(key)); }

  static kv_value_t text(std::string s) {
    kv_value_t v;
    v.kind = kv_value_t::kind_t::text;
    v.text = std::move(s);
    return v;
  }
  static kv_value_t integer(std::int64_t i) {
    kv_value_t v;
    v.kind = kv_value_t::kind_t::integer;
    v.integer = i;
    return v;
  }

  std::map<std::string, kv_value_t> values;
};
