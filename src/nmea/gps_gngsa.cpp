#include "nmea/gps_gngsa.h"

#include <cstdio>
#include <iterator>

#include "nmea/fields.h"

namespace {

std::string_view nmea_fix_type(std::uint8_t t) {
  switch (t) {
    case 1:
      return "no fix";
    case 2:
      return "2D fix";
    case 3:
      return "3D fix";
    default:
      return {};
  }
}

// The NAV-PVT fix type's text, or empty when there is none.
std::string_view pvt_fix_type(std::uint8_t t) {
  return t < std::size(ubx_fix_type_text) ? ubx_fix_type_text[t] : "";
}

// The text of a field before "*", with empty pieces dropped: "1.54*10" gives "1.54", "*10" gives
// "10", "*" gives nothing.
std::string_view first_piece_before_star(std::string_view field) {
  std::size_t start = 0;
  while (start < field.size() && field[start] == '*') ++start;
  const auto end = field.find('*', start);
  return field.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
}

}  // namespace

std::string_view gps_gngsa_t::fix_type_text() const {
  const auto text = pvt_mode ? pvt_fix_type(fix_type_i) : nmea_fix_type(fix_type_i);
  return text.empty() ? "invalid" : text;
}

std::string_view gps_gngsa_t::fix_mode_text() const {
  if (fix_mode_c == "A") return "Auto";
  if (fix_mode_c == "M") return "Manual";
  return "invalid";
}

std::string gps_gngsa_t::PRN_text() const {
  std::string text;
  for (const auto& [prn, when] : *PRN_arr) {
    if (!text.empty()) text.push_back(' ');
    char digits[8];
    std::snprintf(digits, sizeof digits, "%2u", static_cast<unsigned>(prn));
    text += digits;
  }
  return text;
}

void gps_gngsa_t::reset() {
  fix_mode_c = "A";
  fix_type_i = 1;
  PRN_arr.modify([](auto& prns) { prns.clear(); });
  ageing_.clear();
  pdop_d = 0.0;
  hdop_d = 0.0;
  vdop_d = 0.0;
}

// $GNGSA,A,3,05,13,15,,,,,,,,,,1.85,1.02,1.54*10
//        mode type PRN x 12    PDOP HDOP VDOP [system id]
void gps_gngsa_t::update(std::span<const std::string_view> f) {
  if (f.size() != 18 && f.size() != 19) return;
  if (f[0] != "$GNGSA" && f[0] != "$GPGSA") return;

  if (f[1].size() == 1) {
    if (f[1] != "A" && f[1] != "M") return;
    fix_mode_c = f[1] == "A" ? "A" : "M";
  }

  if (f[2].size() == 1) {
    if (const auto type = parse_unsigned(f[2], UINT8_MAX)) {
      if (nmea_fix_type(static_cast<std::uint8_t>(*type)).empty()) return;
      fix_type_i = static_cast<std::uint8_t>(*type);
    }
  }

  pvt_mode = false;

  const double now = clock_.now_s();
  ageing_.expire(PRN_arr, now, [](double listed) { return listed; });

  if (!store_decimal(f[15], dop_max, pdop_d)) return;
  if (!store_decimal(f[16], dop_max, hdop_d)) return;
  if (!store_decimal(first_piece_before_star(f[17]), dop_max, vdop_d)) return;

  for (std::size_t i = 3; i <= 14; ++i) {
    if (f[i].empty()) continue;
    const auto prn = parse_unsigned(f[i], UINT8_MAX);
    if (!prn) continue;
    if (*prn >= prn_limit) break;
    PRN_arr.modify([&](auto& prns) { prns[static_cast<std::uint8_t>(*prn)] = now; });
    ageing_.reported(now);
  }
}

void gps_gngsa_t::update_posllh(const gps_posllh_t&) {
  pvt_mode = false;
  fix_type_i = 1;
}

void gps_gngsa_t::update_pvt(const gps_pvt_t& r) {
  if (pvt_fix_type(r.fixType).empty()) return;
  pvt_mode = true;
  fix_type_i = r.fixType;
  pdop_d = r.pDOP / 100.0;
}
