#include "link/command_settings.h"

#include <algorithm>

namespace {

// A preset's commands in one text, one a line: a typed command never holds a line end.
std::string joined(const std::vector<std::string>& commands) {
  std::string text;
  for (const auto& c : commands) text += (text.empty() ? "" : "\n") + c;
  return text;
}

std::vector<std::string> split_lines(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t at = 0;
  while (at <= text.size() && !text.empty()) {
    const auto end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

}  // namespace

std::vector<std::string> command_settings_t::strings(std::string_view key) const {
  const auto v = store_.get(key);
  std::vector<std::string> out;
  if (v.kind != kv_value_t::kind_t::list) return out;
  for (const auto& e : v.list) {
    if (e.kind != kv_value_t::kind_t::text) return {};
    out.push_back(e.text);
  }
  return out;
}

bool command_settings_t::read_only(std::string_view address) const {
  const auto links = strings(key_read_only);
  return std::find(links.begin(), links.end(), address) != links.end();
}

void command_settings_t::set_read_only(std::string_view address, bool read_only) {
  auto links = strings(key_read_only);
  std::erase(links, address);
  if (read_only) links.emplace_back(address);
  store_.set_strings(key_read_only, links);
}

std::vector<std::string> command_settings_t::preset_names() const {
  const auto names = strings(key_preset_names);
  // Lists that disagree in length were not written by this class: no presets.
  return names.size() == strings(key_preset_commands).size() ? names : std::vector<std::string>{};
}

std::vector<std::string> command_settings_t::preset(std::string_view name) const {
  const auto names = preset_names();
  const auto it = std::find(names.begin(), names.end(), name);
  if (it == names.end()) return {};
  return split_lines(strings(key_preset_commands)[static_cast<std::size_t>(it - names.begin())]);
}

void command_settings_t::save_preset(std::string_view name, const std::vector<std::string>& commands) {
  auto names = preset_names();
  auto texts = names.empty() ? std::vector<std::string>{} : strings(key_preset_commands);
  const auto it = std::find(names.begin(), names.end(), name);
  if (it == names.end()) {
    names.emplace_back(name);
    texts.push_back(joined(commands));
  } else {
    texts[static_cast<std::size_t>(it - names.begin())] = joined(commands);
  }
  store_presets(names, texts);
}

void command_settings_t::remove_preset(std::string_view name) {
  auto names = preset_names();
  auto texts = names.empty() ? std::vector<std::string>{} : strings(key_preset_commands);
  const auto it = std::find(names.begin(), names.end(), name);
  if (it == names.end()) return;
  texts.erase(texts.begin() + (it - names.begin()));
  names.erase(it);
  store_presets(names, texts);
}

void command_settings_t::store_presets(const std::vector<std::string>& names,
                                       const std::vector<std::string>& commands) {
  store_.set_strings(key_preset_names, names);
  store_.set_strings(key_preset_commands, commands);
}
