#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/console.h"
#include "core/observable.h"
#include "link/defaults.h"
#include "link/kv_store.h"
#include "link/source_address.h"

// The connection settings: which link to use (TCP, Bluetooth LE, or both as a bridge), the BLE
// peripheral name, the TCP host and port, a most-recently-used history of each, and whether what
// the user is typing is valid. The two switches and the three histories persist in the user's
// store; the current name, host and port are restored as the first entries of their histories.
class config_connection_t final : public observable_t {
public:
  static constexpr std::size_t history_count = 10;  // entries a history keeps after a save
  static constexpr std::string_view key_enable_bridge = "enable_bridge";
  static constexpr std::string_view key_enable_ble = "enable_ble";
  static constexpr std::string_view key_history_ble_name = "history_ble_name";
  static constexpr std::string_view key_history_host = "history_host";
  static constexpr std::string_view key_history_port = "history_port";

  // The histories of a new user, each led by the default value.
  static const std::vector<std::string> default_ble_names;
  static const std::vector<std::string> default_hosts;  // loopback first: the demo and local bridges
  static const std::vector<std::uint16_t> default_ports;

  // Restores the saved settings; what is missing or unreadable starts from the defaults.
  config_connection_t(kv_store_t& store, console_t& console);

  std::string save_ble_name(const std::string& name);
  std::string save_host(const std::string& host);
  std::uint16_t save_port(std::uint16_t port);

  // The text being edited in the host and port fields, "192,168,1,20" read as "192.168.1.20". A
  // host is valid by the rules of link/host_address.h.
  const std::string& host_bind();
  void set_host_bind(const std::string& text);
  const std::string& port_bind();
  void set_port_bind(const std::string& text);

  // The switches, stored at every change.
  const published_t<bool>& enable_bridge() const { return enable_bridge_; }
  void set_enable_bridge(bool on);
  const published_t<bool>& enable_ble() const { return enable_ble_; }
  void set_enable_ble(bool on);

  // Forgets everything stored; the current values keep until the next start.
  void delete_config();
  void reset_histories();

  published_t<std::string> ble_name{*this, std::string(default_ble_name)};
  published_t<std::vector<std::string>> history_ble_name{*this, {std::string(default_ble_name)}};
  published_t<std::string> host{*this, std::string(default_host)};
  published_t<std::vector<std::string>> history_host{*this, {std::string(default_host)}};
  published_t<std::uint16_t> port{*this, default_port};
  published_t<std::vector<std::uint16_t>> history_port{*this, {default_port}};
  published_t<bool> host_valid{*this, true};
  published_t<bool> port_valid{*this, true};

  // A serial port, UDP or gpsd (link/source_address.h) instead of TCP and Bluetooth, and the
  // addresses used, newest first: a serial port under its by-id name, so that a receiver plugged
  // into another socket is found again. The switch and the history persist.
  static constexpr std::string_view key_enable_source = "enable_source";
  static constexpr std::string_view key_history_source = "history_source";
  const published_t<bool>& enable_source() const { return enable_source_; }
  void set_enable_source(bool on);
  // Puts the address, normalised, first in its history and stores the history; nothing when it is
  // no source address.
  std::optional<source_address_t> save_source(const std::string& address);
  // The address to connect: the newest in the history.
  std::optional<source_address_t> chosen_source() const;
  // The newest address of a kind in the history, if any.
  std::optional<source_address_t> latest_source(source_address_t::kind_t kind) const;
  // Turns the switch on with the newest address of the kind first, or a common one where there is
  // none: serial:///dev/ttyACM0, udp://:10110, gpsd://127.0.0.1:2947.
  void choose_source_kind(source_address_t::kind_t kind);
  published_t<std::vector<std::string>> history_source{*this, {}};

private:
  void load();
  void load_source();

  kv_store_t& store_;
  console_t& console_;
  published_t<bool> enable_bridge_{*this, false};
  published_t<bool> enable_ble_{*this, true};
  published_t<bool> enable_source_{*this, false};
  std::optional<std::string> host_bind_;
  std::optional<std::string> port_bind_;
};
