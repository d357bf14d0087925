#include "link/config_connection.h"

#include <algorithm>

#include "link/host_address.h"

const std::vector<std::string> config_connection_t::default_ble_names = {std::string(default_ble_name),
                                                                         "nrf9160dk UART", "nrf52840dk UART"};
// Loopback (korvid-sim, a local bridge), then the gateways of common receiver Wi-Fi bridges and
// home, office and phone hotspot networks.
const std::vector<std::string> config_connection_t::default_hosts = {
    std::string(default_host), "192.168.4.1", "192.168.1.1", "192.168.0.1", "10.0.0.1", "172.20.10.1"};
const std::vector<std::uint16_t> config_connection_t::default_ports = {default_port};

namespace {

// Moves the value to the front without duplicates, keeping at most `count` entries.
template <class T>
void put_first(std::vector<T>& history, const T& value, std::size_t count) {
  if (!history.empty() && history.front() == value) return;
  std::erase(history, value);
  history.insert(history.begin(), value);
  if (history.size() >= count + 1) history.pop_back();
}

}  // namespace

config_connection_t::config_connection_t(kv_store_t& store, console_t& console) : store_(store), console_(console) {
  reset_histories();
  load();
}

void config_connection_t::reset_histories() {
  history_ble_name = default_ble_names;
  history_host = default_hosts;
  history_port = default_ports;
}

void config_connection_t::load() {
  using kind = kv_value_t::kind_t;
  if (const auto v = store_.get(key_enable_bridge); v.kind == kind::boolean) set_enable_bridge(v.boolean);
  if (const auto v = store_.get(key_enable_ble); v.kind == kind::boolean) set_enable_ble(v.boolean);

  auto strings = [](const kv_value_t& v) -> std::optional<std::vector<std::string>> {
    if (v.kind != kind::list || v.list.empty()) return std::nullopt;
    std::vector<std::string> out;
    for (const auto& e : v.list) {
      if (e.kind != kind::text) return std::nullopt;
      out.push_back(e.text);
    }
    return out;
  };
  if (const auto names = strings(store_.get(key_history_ble_name))) {
    history_ble_name = *names;
    ble_name = names->front();
  } else {
    save_ble_name(std::string(default_ble_name));
  }
  // A stored host meets the rules of a typed one: it is normalised, or dropped when it is no host.
  std::vector<std::string> hosts;
  for (const auto& h : strings(store_.get(key_history_host)).value_or(std::vector<std::string>{}))
    if (const auto parsed = parse_host(h)) hosts.push_back(*parsed);
  if (!hosts.empty()) {
    history_host = hosts;
    host = hosts.front();
  } else {
    save_host(std::string(default_host));
  }

  const auto ports = store_.get(key_history_port);
  std::vector<std::uint16_t> stored_ports;
  bool ports_ok = ports.kind == kind::list && !ports.list.empty();
  for (const auto& e : ports.list) {
    if (e.kind != kind::integer || e.integer < 0 || e.integer > UINT16_MAX) ports_ok = false;
    if (ports_ok) stored_ports.push_back(static_cast<std::uint16_t>(e.integer));
  }
  if (ports_ok) {
    history_port = stored_ports;
    port = stored_ports.front();
  } else {
    save_port(default_port);
  }
  load_source();
}

std::string config_connection_t::save_ble_name(const std::string& name) {
  if (!name.empty()) {
    ble_name = name;
  } else if (!history_ble_name->empty()) {
    ble_name = history_ble_name->front();
  }
  history_ble_name.modify([&](auto& h) { put_first(h, ble_name.get(), history_count); });
  store_.set_strings(key_history_ble_name, history_ble_name);
  return ble_name;
}

std::string config_connection_t::save_host(const std::string& given) {
  if (const auto h = parse_host(given)) {
    host = *h;
  } else if (!history_host->empty()) {
    host = history_host->front();
  }
  host_bind_ = host.get();
  history_host.modify([&](auto& h) { put_first(h, host.get(), history_count); });
  store_.set_strings(key_history_host, history_host);
  return host;
}

std::uint16_t config_connection_t::save_port(std::uint16_t given) {
  if (given != 0) {
    port = given;
  } else if (!history_port->empty()) {
    port = history_port->front();
  }
  port_bind_ = std::to_string(port.get());
  history_port.modify([&](auto& h) { put_first(h, port.get(), history_count); });
  store_.set_integers(key_history_port, std::vector<std::int64_t>(history_port->begin(), history_port->end()));
  return port;
}

const std::string& config_connection_t::host_bind() {
  if (!host_bind_) host_bind_ = host.get();
  return *host_bind_;
}

void config_connection_t::set_host_bind(const std::string& text) {
  std::string typed = text;
  std::replace(typed.begin(), typed.end(), ',', '.');
  host_bind_ = typed;
  if (const auto h = parse_host(typed)) {
    host_valid = true;
    host = *h;
  } else {
    host_valid = false;
  }
}

const std::string& config_connection_t::port_bind() {
  if (!port_bind_) port_bind_ = std::to_string(port.get());
  return *port_bind_;
}

void config_connection_t::set_port_bind(const std::string& text) {
  port_bind_ = text;
  if (const auto p = parse_port(text)) {
    port = *p;
    port_valid = true;
  } else {
    port_valid = false;
  }
}

void config_connection_t::set_enable_bridge(bool on) {
  enable_bridge_ = on;
  store_.set_bool(key_enable_bridge, on);
}

void config_connection_t::set_enable_ble(bool on) {
  enable_ble_ = on;
  store_.set_bool(key_enable_ble, on);
}

void config_connection_t::delete_config() {
  reset_histories();
  for (const auto key : {key_enable_bridge, key_enable_ble, key_history_ble_name, key_history_host, key_history_port,
                         key_enable_source, key_history_source})
    store_.remove(key);
  console_.print("delete_config");
}
