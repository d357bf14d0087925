#include "ntrip/corrections_settings.h"

#include <algorithm>

corrections_settings_t::corrections_settings_t(kv_store_t& store) : store_(store) {
  using kind = kv_value_t::kind_t;
  const auto stored = store_.get(key_history);
  std::vector<ntrip_address_t> loaded;
  if (stored.kind == kind::list) {
    for (const auto& v : stored.list) {
      if (v.kind != kind::text || loaded.size() >= history_limit) continue;
      if (const auto a = parse_ntrip_url(v.text, true).address) loaded.push_back(*a);
    }
  }
  history = std::move(loaded);
  if (const auto v = store_.get(key_send_gga); v.kind == kind::boolean) send_gga = v.boolean;
}

void corrections_settings_t::remember(const ntrip_address_t& address, bool gga) {
  history.modify([&](std::vector<ntrip_address_t>& h) {
    std::erase(h, address);
    h.insert(h.begin(), address);
    if (h.size() > history_limit) h.resize(history_limit);
  });
  send_gga = gga;
  std::vector<std::string> urls;
  for (const auto& a : *history) urls.push_back(a.url());
  store_.set_strings(key_history, urls);
  store_.set_bool(key_send_gga, gga);
}
