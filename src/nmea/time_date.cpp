#include "nmea/time_date.h"

#include <cstdio>

#include "nmea/fields.h"

bool time_hms_t::parse(std::string_view text) {
  const auto point = text.find('.');
  if (point != std::string_view::npos && text.find('.', point + 1) != std::string_view::npos) return false;
  const auto clock = text.substr(0, point);
  if (clock.size() != 6) return false;
  const auto h = parse_int(clock.substr(0, 2));
  const auto m = parse_int(clock.substr(2, 2));
  const auto s = parse_int(clock.substr(4, 2));
  if (!h || !m || !s) return false;
  std::int64_t f = 0;
  if (point != std::string_view::npos) {
    const auto fraction = parse_int(text.substr(point + 1));
    if (!fraction) return false;
    f = *fraction;
  }
  if (*h < 0 || *m < 0 || *s < 0 || f < 0) return false;
  if (*h > 23 || *m > 59 || *s > 59 || f > 999) return false;
  set(*h, *m, *s, f);
  return true;
}

void time_hms_t::set_from_itow(std::uint32_t itow) {
  set((itow / 3'600'000u) % 24u, (itow / 60'000u) % 60u, (itow / 1000u) % 60u, itow % 1000u);
}

void time_hms_t::set(std::int64_t h, std::int64_t m, std::int64_t s, std::int64_t f) {
  hh = h;
  mm = m;
  ss = s;
  ms = f;
}

bool date_ymd_t::parse(std::string_view text) {
  if (text.size() != 6) return false;
  const auto dd = parse_int(text.substr(0, 2));
  const auto mo = parse_int(text.substr(2, 2));
  const auto yy = parse_int(text.substr(4, 2));
  if (!dd || !mo || !yy) return false;
  if (*yy < 0 || *yy > 99 || *mo < 1 || *mo > 12 || *dd < 1 || *dd > 31) return false;
  set(*yy > 79 ? 1900 + *yy : 2000 + *yy, *mo, *dd);
  return true;
}

void date_ymd_t::set(std::int64_t year, std::int64_t month, std::int64_t day) {
  y = year;
  m = month;
  d = day;
}

namespace {

// "%02u" of one field, by hand: marker titles are made for every fix.
void append_two_digits(std::string& out, std::int64_t v) {
  const auto u = static_cast<unsigned>(v);
  if (u < 100) {
    out.push_back(static_cast<char>('0' + u / 10));
    out.push_back(static_cast<char>('0' + u % 10));
  } else {
    out += std::to_string(u);
  }
}

}  // namespace

std::string hms_text(const time_hms_t& t) {
  std::string text;
  append_two_digits(text, t.hh);
  text.push_back(':');
  append_two_digits(text, t.mm);
  text.push_back(':');
  append_two_digits(text, t.ss);
  return text;
}

std::string ymd_text(const date_ymd_t& d) {
  char text[64];
  const int n = std::snprintf(text, sizeof text, "%04u-%02u-%02u", static_cast<unsigned>(d.y),
                              static_cast<unsigned>(d.m), static_cast<unsigned>(d.d));
  return std::string(text, static_cast<std::size_t>(n));
}
