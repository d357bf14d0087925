#include "nmea/gps_gpgsv.h"

#include <cstdio>

#include "nmea/fields.h"
#include "nmea/sentence.h"

std::string gps_gpgsv_satellite_t::description() const {
  char text[64];
  const int n =
      std::snprintf(text, sizeof text, "%2u  elevation %2u  azimuth %3u  SNR %2u", static_cast<unsigned>(prn),
                    static_cast<unsigned>(elevation), static_cast<unsigned>(azimuth), static_cast<unsigned>(snr));
  return std::string(text, static_cast<std::size_t>(n));
}

void gps_gpgsv_t::reset() {
  sentence_count = 0;
  sentence_last = 0;
  satellites_in_view = 0;
  satellite_arr.modify([](auto& table) { table.clear(); });
  ageing_.clear();
}

// $GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,00*74
//        count number in-view (PRN elevation azimuth SNR) x 4 [signal id]
void gps_gpgsv_t::update(std::span<const std::string_view> f) {
  if (f.size() != 17 && f.size() != 20 && f.size() != 21) return;
  if (f[0] != "$GPGSV") return;

  if (const auto count = parse_unsigned(f[1], UINT8_MAX)) {
    if (*count > sentence_count_max) return;
    sentence_count = static_cast<std::uint8_t>(*count);
  }
  if (const auto number = parse_unsigned(f[2], UINT8_MAX)) {
    if (*number > sentence_count) return;
    sentence_last = static_cast<std::uint8_t>(*number);
  }
  if (const auto in_view = parse_unsigned(f[3], UINT8_MAX)) {
    if (*in_view > in_view_max) return;
    satellites_in_view = static_cast<std::uint8_t>(*in_view);
  }

  const double now = clock_.now_s();
  ageing_.expire(satellite_arr, now, [](const satellite_ref_t& s) { return s->time; });

  for (std::size_t g = 1; g <= 4; ++g) {
    const std::size_t at = 4 * g;
    if (at + 3 >= f.size()) continue;
    const auto prn_field = f[at];
    const auto elevation_field = f[at + 1];
    const auto azimuth_field = f[at + 2];
    // The fourth SNR of a 20-field sentence carries the checksum suffix.
    const auto snr_field = strip_checksum(f[at + 3]);

    if (prn_field.empty()) continue;
    const auto prn = parse_unsigned(prn_field, UINT8_MAX);
    if (!prn || *prn >= prn_limit) return;

    const auto elevation = parse_unsigned(elevation_field.empty() ? "0" : elevation_field, UINT8_MAX);
    if (!elevation || *elevation > elevation_max || (!elevation_field.empty() && elevation_field.size() != 2)) return;

    const auto azimuth = parse_unsigned(azimuth_field.empty() ? "0" : azimuth_field, UINT16_MAX);
    if (!azimuth || *azimuth > azimuth_max || (!azimuth_field.empty() && azimuth_field.size() != 3)) return;

    if (snr_field.empty()) return;
    const auto snr = parse_unsigned(snr_field, UINT8_MAX);
    if (!snr || *snr >= snr_limit) return;

    enter({!elevation_field.empty() && !azimuth_field.empty(), now, static_cast<std::uint8_t>(*prn),
           static_cast<std::uint8_t>(*snr), static_cast<std::uint8_t>(*elevation),
           static_cast<std::uint16_t>(*azimuth)});
  }
}

void gps_gpgsv_t::enter(const gps_gpgsv_satellite_t& report) {
  ageing_.reported(report.time);
  satellite_arr.modify([&](auto& table) {
    auto& slot = table[report.prn];
    if (slot && slot.use_count() == 1) {
      // Nobody but the table holds the old report: its storage can take the new one.
      *std::const_pointer_cast<gps_gpgsv_satellite_t>(slot) = report;
    } else {
      slot = std::make_shared<gps_gpgsv_satellite_t>(report);
    }
  });
}

void gps_gpgsv_t::update_pvt(const gps_pvt_t& r) {
  satellites_in_view = r.numSV;
}
