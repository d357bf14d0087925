#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/observable.h"
#include "link/kv_store.h"
#include "ntrip/ntrip_address.h"

// The corrections sources the user chose, newest first, and whether to send the receiver's
// position, kept in the settings store. Entries that no longer read as an address are skipped.
// The password is part of the address: the store is the user's own, as the hosts' is.
class corrections_settings_t final : public observable_t {
public:
  static constexpr std::size_t history_limit = 8;
  static constexpr const char* key_history = "ntrip_history";
  static constexpr const char* key_send_gga = "ntrip_send_gga";

  explicit corrections_settings_t(kv_store_t& store);

  // Puts the address first in the history and keeps the choice of sending the position.
  void remember(const ntrip_address_t& address, bool send_gga);

  published_t<std::vector<ntrip_address_t>> history{*this, {}};
  published_t<bool> send_gga{*this, false};

private:
  kv_store_t& store_;
};
