#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "link/kv_store.h"

// What the console keeps in the user's settings: the links set read-only, by address
// ("tcp://192.168.1.20:2000"), and the presets, each a name and the commands it sends in order.
// A value of the wrong type reads as nothing stored.
class command_settings_t {
public:
  static constexpr std::string_view key_read_only = "console_read_only_links";
  static constexpr std::string_view key_preset_names = "console_preset_names";
  static constexpr std::string_view key_preset_commands = "console_preset_commands";  // one text per preset

  explicit command_settings_t(kv_store_t& store) : store_(store) {}

  bool read_only(std::string_view address) const;
  void set_read_only(std::string_view address, bool read_only);

  std::vector<std::string> preset_names() const;
  // The commands of the preset; empty when there is none of that name.
  std::vector<std::string> preset(std::string_view name) const;
  // Saves the preset under the name, replacing one of the same name.
  void save_preset(std::string_view name, const std::vector<std::string>& commands);
  void remove_preset(std::string_view name);

private:
  std::vector<std::string> strings(std::string_view key) const;
  void store_presets(const std::vector<std::string>& names, const std::vector<std::string>& commands);

  kv_store_t& store_;
};
