#include "gnss/sky_table.h"

#include <algorithm>
#include <limits>

namespace {

bool key_less(const sky_table_t::value_type& entry, sky_key_t key) {
  return entry.first < key;
}

}  // namespace

std::uint8_t sky_satellite_t::best_cn0() const {
  std::uint8_t best = 0;
  for (const auto& s : tracked) best = std::max(best, s.cn0);
  return best;
}

void sky_signals_t::expire(double limit) {
  for (std::size_t i = count_; i-- > 0;)
    if (slots_[i].time < limit) remove(i);
}

void sky_signals_t::remove(std::size_t i) {
  std::copy(slots_.begin() + static_cast<std::ptrdiff_t>(i) + 1, slots_.begin() + count_,
            slots_.begin() + static_cast<std::ptrdiff_t>(i));
  --count_;
}

const sky_satellite_t* sky_table_t::find(sky_key_t key) const {
  if (key.number >= number_limit) return nullptr;
  const auto at = position_[slot(key)];
  return at == 0 ? nullptr : &entries_[at - 1].second;
}

sky_satellite_t* sky_table_t::insert(sky_key_t key) {
  if (entries_.size() == capacity) return nullptr;
  const auto it = std::lower_bound(entries_.begin(), entries_.end(), key, key_less);
  const auto inserted = entries_.insert(it, {key, {}});
  reindex();
  return &inserted->second;
}

std::span<sky_table_t::value_type> sky_table_t::of_system(gnss_system_t system) {
  const auto i = index_of(system);
  return std::span(entries_).subspan(system_start_[i], system_start_[i + 1] - system_start_[i]);
}

void sky_table_t::clear() {
  for (const auto& [key, satellite] : entries_) position_[slot(key)] = 0;
  entries_.clear();
  system_start_.fill(0);
}

double sky_table_t::expire(double limit) {
  double oldest = std::numeric_limits<double>::infinity();
  const auto gone = std::remove_if(entries_.begin(), entries_.end(), [&](value_type& entry) {
    auto& satellite = entry.second;
    if (satellite.time < limit) {
      position_[slot(entry.first)] = 0;
      return true;
    }
    satellite.tracked.expire(limit);
    oldest = std::min(oldest, satellite.time);
    for (const auto& signal : satellite.tracked) oldest = std::min(oldest, signal.time);
    return false;
  });
  entries_.erase(gone, entries_.end());
  reindex();
  return oldest;
}

void sky_table_t::reindex() {
  for (std::size_t i = 0; i < entries_.size(); ++i)
    position_[slot(entries_[i].first)] = static_cast<std::uint8_t>(i + 1);
  // Entries are in system order: a system starts where the ones before it end.
  std::size_t at = 0;
  for (std::size_t i = 0; i < gnss_system_count; ++i) {
    system_start_[i] = static_cast<std::uint8_t>(at);
    while (at < entries_.size() && index_of(entries_[at].first.system) == i) ++at;
  }
  system_start_[gnss_system_count] = static_cast<std::uint8_t>(at);
}
