#include "ubx/record_text.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string_view>

namespace {

// snprintf appended to the buffer.
[[gnu::format(printf, 2, 3)]] void appendf(std::string& out, const char* format, ...) {
  char piece[256];
  va_list args;
  va_start(args, format);
  const int n = std::vsnprintf(piece, sizeof piece, format, args);
  va_end(args);
  if (n > 0) out.append(piece, static_cast<std::size_t>(n) < sizeof piece ? static_cast<std::size_t>(n) : sizeof piece - 1);
}

// A scaled value as "whole.fraction": the whole part right-aligned in `width` columns with its
// sign, the fraction zero-padded to `digits`. The fraction comes from the unsigned magnitude, so
// the most negative value of a type renders without overflow; a value between -1 and 0 unit shows
// its whole part as "-0".
void append_fixed(std::string& out, std::int64_t v, std::uint32_t scale, int width, int digits) {
  const std::uint64_t magnitude = v < 0 ? 0 - static_cast<std::uint64_t>(v) : static_cast<std::uint64_t>(v);
  const std::int64_t whole = v / static_cast<std::int64_t>(scale);
  const auto fraction = static_cast<unsigned>(magnitude % scale);
  if (v < 0 && whole == 0) {
    appendf(out, "%*s.%0*u", width, "-0", digits, fraction);
  } else {
    appendf(out, "%*lld.%0*u", width, static_cast<long long>(whole), digits, fraction);
  }
}

constexpr std::uint32_t mm = 1000;          // mm and mm/s to m and m/s
constexpr std::uint32_t deg_1e5 = 100000;   // 1e-5 degree
constexpr std::uint32_t deg_1e7 = 10000000; // 1e-7 degree
constexpr std::uint32_t hundredths = 100;   // 0.01 units
constexpr std::uint32_t ms_per_day = 86400000;

std::string_view label(std::uint8_t id) {
  switch (id) {
    case 1: return "POSECEF";
    case 2: return "POSLLH";
    case 7: return "PVT";
    default: return "?";
  }
}

void append_header(std::string& out, std::uint8_t cls, std::uint8_t id, std::uint16_t length, std::uint32_t iTOW,
                   const char* gap_before_itow, const char* gap_after_itow) {
  const auto day = iTOW / ms_per_day;
  const std::string_view weekday = day < std::size(ubx_weekday_text) ? ubx_weekday_text[day] : "";
  const auto name = label(id);
  appendf(out, "cls %u  id %u %8.*s  len %2u%siTOW %10u%s%.*s %2u:%02u:%02u.%03u\n", cls, id,
          static_cast<int>(name.size()), name.data(), length, gap_before_itow, iTOW, gap_after_itow,
          static_cast<int>(weekday.size()), weekday.data(), (iTOW / 3600000) % 24, (iTOW / 60000) % 60,
          (iTOW / 1000) % 60, iTOW % 1000);
}

}  // namespace

void append_text(std::string& out, const gps_posllh_t& r) {
  append_header(out, r.cls, r.id, r.length, r.iTOW, "       ", "         ");
  out += "accuracy H ";
  append_fixed(out, r.hAcc, mm, 5, 3);
  out += "  [height above elipsoid ";
  append_fixed(out, r.height, mm, 7, 3);
  out += "]  lat ";
  append_fixed(out, r.lat, deg_1e7, 4, 7);
  out += "\naccuracy V ";
  append_fixed(out, r.vAcc, mm, 5, 3);
  out += "  [height mean sea level ";
  append_fixed(out, r.hMSL, mm, 7, 3);
  out += "]  lon ";
  append_fixed(out, r.lon, deg_1e7, 4, 7);
  out += "\n";
}

void append_text(std::string& out, const gps_pvt_t& r) {
  constexpr std::uint32_t widest_accuracy = 999999;  // mm; wider values take the space before "["
  append_header(out, r.cls, r.id, r.length, r.iTOW, "              ", "  ");
  out += "accuracy H";
  append_fixed(out, r.hAcc, mm, 6, 3);
  out += r.hAcc <= widest_accuracy ? " " : "";
  out += " [height above elipsoid";
  append_fixed(out, r.height, mm, 8, 3);
  out += "]  lat ";
  append_fixed(out, r.lat, deg_1e7, 4, 7);
  out += "\naccuracy V";
  append_fixed(out, r.vAcc, mm, 6, 3);
  out += r.vAcc <= widest_accuracy ? " " : "";
  out += " [height mean sea level";
  append_fixed(out, r.hMSL, mm, 8, 3);
  out += "]  lon ";
  append_fixed(out, r.lon, deg_1e7, 4, 7);
  appendf(out, "\nvalid %02x flags %02x %02x  %04x     velocity", r.valid, r.flags, r.flags2, r.flags3);
  append_fixed(out, r.velN, mm, 4, 3);
  out += "N ";
  append_fixed(out, r.velE, mm, 4, 3);
  out += "E     ";
  append_fixed(out, r.velD, mm, 4, 3);
  out += "D\nmagnetic declination ";
  append_fixed(out, r.magDec, hundredths, 2, 2);
  out += "     accuracy ";
  append_fixed(out, r.magAcc, hundredths, 3, 2);
  out += "      pDOP        ";
  append_fixed(out, r.pDOP, hundredths, 3, 2);
  out += "\nground speed       ";
  append_fixed(out, r.gSpeed, mm, 4, 3);
  out += "    accuracy ";
  append_fixed(out, r.sAcc, mm, 3, 3);
  appendf(out, "     sat count   %3u\nheading of motion  ", r.numSV);
  append_fixed(out, r.headMot, deg_1e5, 4, 5);
  out += "  accuracy ";
  append_fixed(out, r.headAcc, deg_1e5, 3, 5);
  const std::string_view fix = r.fixType < std::size(ubx_fix_type_text) ? ubx_fix_type_text[r.fixType] : "invalid";
  appendf(out, "   %u %.*s\nheading of vehicle ", r.fixType, static_cast<int>(fix.size()), fix.data());
  append_fixed(out, r.headVeh, deg_1e5, 4, 5);
  appendf(out, "  nano sec%11i  UTC %4u-%02u-%02u %02u:%02u:%02u\n", r.nano, r.year, r.month, r.day, r.hour, r.min,
          r.sec);
}

std::string text(const gps_posllh_t& record) {
  std::string out;
  append_text(out, record);
  return out;
}

std::string text(const gps_pvt_t& record) {
  std::string out;
  append_text(out, record);
  return out;
}
