#include "gnss/gnss_sky.h"

#include <algorithm>
#include <functional>

#include "nmea/fields.h"
#include "nmea/sentence.h"

namespace {

constexpr std::size_t tag_length = 6;  // "$GPGSV"

// A whole-number field up to max, or absent (empty) or bad. Plain ints keep the loops over
// satellites free of the stores and reloads that optionals cost there; the one to three digits
// that nearly every field holds are read without a loop.
constexpr int absent = -1;
constexpr int bad = -2;
int read_long_number(std::string_view field, int max) {
  const auto v = parse_unsigned(field, static_cast<std::uint64_t>(max));
  return v ? static_cast<int>(*v) : bad;
}
inline int read_number(std::string_view field, int max) {
  const auto digit = [field](std::size_t i) {
    return static_cast<unsigned>(static_cast<unsigned char>(field[i])) - '0';
  };
  unsigned value = 0;
  switch (field.size()) {
    case 0:
      return absent;
    case 1:
      value = digit(0);
      if (value > 9) return read_long_number(field, max);
      break;
    case 2: {
      const unsigned tens = digit(0), ones = digit(1);
      if ((tens > 9) | (ones > 9)) return read_long_number(field, max);
      value = tens * 10 + ones;
      break;
    }
    case 3: {
      const unsigned hundreds = digit(0), tens = digit(1), ones = digit(2);
      if ((hundreds > 9) | (tens > 9) | (ones > 9)) return read_long_number(field, max);
      value = hundreds * 100 + tens * 10 + ones;
      break;
    }
    default:
      return read_long_number(field, max);
  }
  return value <= static_cast<unsigned>(max) ? static_cast<int>(value) : bad;
}

// A sentence's fields, the last without its checksum suffix, which only the last one carries.
class sentence_fields_t {
public:
  explicit sentence_fields_t(std::span<const std::string_view> fields)
      : fields_(fields), last_(fields.empty() ? std::string_view() : strip_checksum(fields.back())) {}
  std::size_t size() const { return fields_.size(); }
  std::string_view operator[](std::size_t i) const { return i + 1 == fields_.size() ? last_ : fields_[i]; }

private:
  std::span<const std::string_view> fields_;
  std::string_view last_;
};

// A DOP field: as store_decimal reads it, with "1.85" and its like read in line. Digits, a point
// and digits, 9 in all at most, are an exact integer over an exact power of ten, whose quotient is
// the nearest double as parsing would give it.
bool read_dop(std::string_view field, double& out) {
  static constexpr double powers_of_ten[] = {1.0, 10.0, 100.0, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
  constexpr std::size_t digits_max = 9;
  if (field.size() < 2 || field.size() > digits_max + 1) return store_decimal(field, gnss_sky_t::dop_max, out);
  std::int64_t digits = 0;
  std::size_t point = std::string_view::npos;
  for (std::size_t i = 0; i < field.size(); ++i) {
    const char c = field[i];
    if (c == '.' && point == std::string_view::npos) {
      point = i;
    } else if (c >= '0' && c <= '9') {
      digits = digits * 10 + (c - '0');
    } else {
      return store_decimal(field, gnss_sky_t::dop_max, out);
    }
  }
  if (point == std::string_view::npos) return store_decimal(field, gnss_sky_t::dop_max, out);
  const double value = static_cast<double>(digits) / powers_of_ten[field.size() - 1 - point];
  if (value > gnss_sky_t::dop_max) return false;
  out = value;
  return true;
}

// A signal id is one hexadecimal digit: BeiDou's reach B2I at 0xB.
std::optional<gnss_signal_t> read_signal_id(std::string_view field) {
  if (field.size() != 1) return std::nullopt;
  const char c = field[0];
  if (c >= '0' && c <= '9') return static_cast<gnss_signal_t>(c - '0');
  if (c >= 'A' && c <= 'F') return static_cast<gnss_signal_t>(c - 'A' + 10);
  return std::nullopt;
}

}  // namespace

void gnss_sky_t::reset() {
  satellites.modify([](table_t& table) { table.clear(); });
  dop = sky_dop_t{};
  oldest_ = std::numeric_limits<double>::infinity();
  gsa_run_systems_ = 0;
  sig_seen_ = false;
  history_.clear();
  records_ = {};
}

// Every sentence ends a run of GSA sentences but another GSA.
void gnss_sky_t::update(std::span<const std::string_view> f) {
  const std::string_view tag = f.empty() || f[0].size() != tag_length ? std::string_view() : f[0];
  const bool gsa = tag.ends_with("GSA");
  if (!gsa) gsa_run_systems_ = 0;
  if (!gsa && !tag.ends_with("GSV")) return;
  const auto talker = tag.substr(1, 2);
  const auto system = talker_system(talker);
  if (!system && talker != "GN") return;
  if (gsa) {
    update_gsa(f, system);
  } else {
    update_gsv(f, system);
  }
}

sky_counts_t gnss_sky_t::counts() const {
  sky_counts_t out{};
  for (const auto& [key, satellite] : *satellites) {
    auto& c = out[index_of(key.system)];
    ++c.in_view;
    c.used += satellite.used ? 1 : 0;
    c.tracked += static_cast<unsigned>(satellite.tracked.size());
  }
  return out;
}

// While no satellite or signal can have gone unreported too long, the table is not walked. The
// history's sample is taken here, before the report that is due: it shows the state a whole
// second gave. The oldest time is lowered to now for the reports that follow, all at now.
double gnss_sky_t::expire() {
  const double now = clock_.now_s();
  const double limit = now - satellite_valid_periode;
  if (oldest_ < limit) satellites.modify([&](table_t& table) { oldest_ = table.expire(limit); });
  if (history_.due(now)) sample(now);
  oldest_ = std::min(oldest_, now);
  return now;
}

void gnss_sky_t::sample(double now) {
  sky_sample_t s;
  s.time = now;
  const auto c = counts();
  for (std::size_t i = 0; i < gnss_system_count; ++i) {
    s.in_view[i] = static_cast<std::uint8_t>(std::min(c[i].in_view, 255u));
    s.used[i] = static_cast<std::uint8_t>(std::min(c[i].used, 255u));
  }
  s.hdop = static_cast<float>(dop->hdop);
  s.pdop = static_cast<float>(dop->pdop);
  // The strongest signals, kept in descending order.
  std::array<std::uint8_t, sky_history_t::strongest> top{};
  for (const auto& [key, satellite] : *satellites) {
    for (const auto& signal : satellite.tracked) {
      if (signal.cn0 <= top.back()) continue;
      top.back() = signal.cn0;
      std::sort(top.begin(), top.end(), std::greater<>());
    }
  }
  int sum = 0, n = 0;
  for (const auto cn0 : top) {
    sum += cn0;
    n += cn0 > 0 ? 1 : 0;
  }
  s.cn0_top = n > 0 ? static_cast<float>(sum) / static_cast<float>(n) : std::numeric_limits<float>::quiet_NaN();
  history_.add(s);
}

sky_satellite_t* gnss_sky_t::report(table_t& table, sky_key_t key, double now) {
  auto* satellite = table.entry(key);
  if (satellite == nullptr) return nullptr;
  satellite->time = now;
  return satellite;
}

// $GAGSV,2,1,08,02,45,123,38,07,12,234,40,11,67,345,44,19,23,056,33,7*7B
//        count number in-view (number elevation azimuth C/N0) x 1 to 4 [signal id]
void gnss_sky_t::update_gsv(std::span<const std::string_view> f, std::optional<gnss_system_t> talker) {
  const std::size_t n = f.size();
  if (n < 4 || (n - 4) % 4 > 1) return;
  const sentence_fields_t field(f);

  constexpr int sentences_max = 9;
  const int count = read_number(field[1], sentences_max);
  if (count < 0 || read_number(field[2], count) < 0 || read_number(field[3], UINT8_MAX) < 0) return;
  gnss_signal_t signal_id = 0;  // none: each system's first band
  if ((n - 4) % 4 == 1) {
    const auto id = read_signal_id(field[n - 1]);
    if (!id) return;
    signal_id = *id;
  }

  const double now = expire();
  // Whether the signal has a name in the system of the satellites before: it does not change
  // within a sentence unless the system does.
  // Only GPS sentences and GN ones carry the satellites of several systems.
  const bool by_number = !talker || *talker == gnss_system_t::gps;
  auto named_system = gnss_system_t::gps;
  bool named = !signal_name(named_system, signal_id != 0 ? signal_id : primary_signal(named_system)).empty();
  satellites.modify([&](table_t& table) {
    for (std::size_t at = 4; at + 4 <= n; at += 4) {
      const auto number_field = field[at], elevation_field = field[at + 1], azimuth_field = field[at + 2],
                 cn0_field = field[at + 3];
      const int number = read_number(number_field, number_max);
      if (number == absent) continue;
      if (number <= 0) return;
      auto system = talker;
      if (by_number) {
        system = numbered_system(talker, static_cast<std::uint64_t>(number));
        if (!system) return;
      }

      const int elevation = read_number(elevation_field, elevation_max);
      const int azimuth = read_number(azimuth_field, azimuth_max);
      const int cn0 = read_number(cn0_field, cn0_max);
      if (elevation == bad || azimuth == bad || cn0 == bad) return;

      const gnss_signal_t signal = signal_id != 0 ? signal_id : primary_signal(*system);
      if (*system != named_system) {
        named_system = *system;
        named = !signal_name(named_system, signal).empty();
      }
      if (!named) continue;

      auto* satellite = report(table, {*system, static_cast<std::uint16_t>(number)}, now);
      if (satellite == nullptr) return;
      satellite->placed = elevation >= 0 && azimuth >= 0;
      satellite->elevation = static_cast<std::int8_t>(std::max(elevation, 0));
      satellite->azimuth = static_cast<std::uint16_t>(std::max(azimuth, 0));
      satellite->tracked.set(signal, static_cast<std::uint8_t>(std::max(cn0, 0)), now);
    }
  });
}

// $GNGSA,A,3,05,13,15,,,,,,,,,,1.85,1.02,1.54,1*0D
//        mode type number x 12 PDOP HDOP VDOP [system id]
void gnss_sky_t::update_gsa(std::span<const std::string_view> f, std::optional<gnss_system_t> talker) {
  const std::size_t n = f.size();
  if (n != 18 && n != 19) return;
  const sentence_fields_t field(f);

  std::optional<gnss_system_t> stated = talker;
  if (n == 19) {
    const auto id = parse_unsigned(field[18], UINT8_MAX);
    stated = id ? nmea_system(*id) : std::nullopt;
    if (!stated) return;
  }
  double pdop = dop->pdop, hdop = dop->hdop, vdop = dop->vdop;
  if (!read_dop(field[15], pdop) || !read_dop(field[16], hdop) || !read_dop(field[17], vdop)) return;
  // Most GSA sentences repeat the DOPs of the one before: only a change is a notice.
  if (sky_dop_t read = *dop; read.pdop != pdop || read.hdop != hdop || read.vdop != vdop) {
    read.pdop = pdop;
    read.hdop = hdop;
    read.vdop = vdop;
    dop = read;
  }

  const double now = expire();
  satellites.modify([&](table_t& table) {
    // A system stated by its id has its marks replaced even when the sentence lists no satellite.
    if (n == 19) clear_used(table, *stated);
    for (std::size_t i = 3; i <= 14; ++i) {
      const int number = read_number(field[i], number_max);
      if (number == absent) continue;
      if (number <= 0) return;
      const auto system = numbered_system(stated, static_cast<std::uint64_t>(number));
      if (!system) return;
      mark_used(table, {*system, static_cast<std::uint16_t>(number)}, now);
    }
  });
}

void gnss_sky_t::update_dop(const gps_dop_t& r) {
  expire();
  constexpr double hundredths = 100.0;
  dop = {r.gDOP / hundredths, r.pDOP / hundredths, r.tDOP / hundredths, r.vDOP / hundredths,
         r.hDOP / hundredths, r.nDOP / hundredths, r.eDOP / hundredths};
  records_.dop = r;
}

void gnss_sky_t::update_sat(const gps_sat_t& r) {
  constexpr int elevation_known = 90;  // degrees either way; beyond, the receiver does not know it
  const double now = expire();
  satellites.modify([&](table_t& table) {
    records_.sat = r;  // an assignment into the kept record reuses its entries' storage
    for (const auto& sv : r.entries) {
      const auto system = ubx_system(sv.gnssId);
      if (!system || sv.svId == 0) continue;
      auto* entry = report(table, {*system, sv.svId}, now);
      if (entry == nullptr) return;
      auto& satellite = *entry;
      satellite.placed = sv.elev >= -elevation_known && sv.elev <= elevation_known && sv.azim >= 0 &&
                         sv.azim <= static_cast<int>(azimuth_max);
      satellite.elevation = satellite.placed ? sv.elev : std::int8_t{0};
      satellite.azimuth = satellite.placed ? static_cast<std::uint16_t>(sv.azim) : std::uint16_t{0};
      satellite.used = (sv.flags & gps_sat_sv_t::flag_used) != 0;
      satellite.health = static_cast<std::uint8_t>((sv.flags >> gps_sat_sv_t::health_shift) & 0x03);
      satellite.quality = static_cast<std::uint8_t>(sv.flags & gps_sat_sv_t::quality_mask);
      satellite.residual_dm = sv.prRes;
      if (!sig_seen_) satellite.tracked.set(primary_signal(*system), sv.cno, now);
    }
  });
}

void gnss_sky_t::update_sig(const gps_sig_t& r) {
  sig_seen_ = true;
  const double now = expire();
  satellites.modify([&](table_t& table) {
    records_.sig = r;
    for (const auto& sv : r.entries) {
      const auto system = ubx_system(sv.gnssId);
      const auto signal = system ? ubx_signal(*system, sv.sigId) : std::nullopt;
      if (!signal || sv.svId == 0) continue;
      auto* satellite = report(table, {*system, sv.svId}, now);
      if (satellite == nullptr) return;
      if (auto* tracked = satellite->tracked.set(*signal, sv.cno, now))
        tracked->used = (sv.sigFlags & gps_sig_sv_t::flag_pr_used) != 0;
    }
  });
}

void gnss_sky_t::clear_used(table_t& table, gnss_system_t system) {
  const auto bit = static_cast<std::uint8_t>(1u << index_of(system));
  if (gsa_run_systems_ & bit) return;
  gsa_run_systems_ |= bit;
  for (auto& [key, satellite] : table.of_system(system)) satellite.used = false;
}

void gnss_sky_t::mark_used(table_t& table, sky_key_t key, double now) {
  clear_used(table, key.system);
  if (auto* satellite = report(table, key, now)) satellite->used = true;
}
