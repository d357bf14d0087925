// The connection settings of the serial, UDP and gpsd links.
#include <algorithm>

#include "link/config_connection.h"

void config_connection_t::load_source() {
  using kind = kv_value_t::kind_t;
  if (const auto v = store_.get(key_enable_source); v.kind == kind::boolean) enable_source_ = v.boolean;
  // A stored address meets the rules of a typed one: normalised, or dropped when it is none.
  std::vector<std::string> addresses;
  if (const auto v = store_.get(key_history_source); v.kind == kind::list) {
    for (const auto& e : v.list) {
      if (e.kind != kind::text) continue;
      const auto parsed = parse_source_url(e.text);
      if (parsed.address && std::find(addresses.begin(), addresses.end(), parsed.address->text()) == addresses.end())
        addresses.push_back(parsed.address->text());
    }
  }
  if (addresses.size() > history_count) addresses.resize(history_count);
  history_source = addresses;
}

void config_connection_t::set_enable_source(bool on) {
  enable_source_ = on;
  store_.set_bool(key_enable_source, on);
}

std::optional<source_address_t> config_connection_t::save_source(const std::string& address) {
  auto parsed = parse_source_url(address);
  if (!parsed.address) return std::nullopt;
  const std::string text = parsed.address->text();
  history_source.modify([&](auto& h) {
    std::erase(h, text);
    h.insert(h.begin(), text);
    if (h.size() > history_count) h.pop_back();
  });
  store_.set_strings(key_history_source, history_source);
  return parsed.address;
}

std::optional<source_address_t> config_connection_t::chosen_source() const {
  if (history_source->empty()) return std::nullopt;
  return parse_source_url(history_source->front()).address;
}

void config_connection_t::choose_source_kind(source_address_t::kind_t kind) {
  using k = source_address_t::kind_t;
  const auto latest = latest_source(kind);
  const char* common = kind == k::serial ? "serial:///dev/ttyACM0"
                       : kind == k::udp  ? "udp://:10110"
                                         : "gpsd://127.0.0.1";
  save_source(latest ? latest->text() : common);
  set_enable_source(true);
}

std::optional<source_address_t> config_connection_t::latest_source(source_address_t::kind_t kind) const {
  for (const auto& text : history_source.get())
    if (auto a = parse_source_url(text).address; a && a->kind == kind) return a;
  return std::nullopt;
}
