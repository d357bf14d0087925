#include "nmea/time_date.h"

#include <algorithm>
#include <cstring>


#include "nmea/fields.h"

namespace {

bool all_digits(std::string_view text) {
  for (const char c : text) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

int two_digits(const char* p) { return (p[0] - '0') * 10 + (p[1] - '0'); }

}  // namespace

bool time_hms_t::parse(std::string_view text) {
  // The usual shape, hhmmss or hhmmss.f with plain digits, read directly; everything else (signs,
  // stray points) goes the general way below, with the same checks.
  if (text.size() >= 6 && all_digits(text.substr(0, 6)) &&
      (text.size() == 6 || (text[6] == '.' && text.size() > 7 && text.size() <= 7 + 18 && all_digits(text.substr(7))))) {
    const int h = two_digits(text.data());
    const int m = two_digits(text.data() + 2);
    const int s = two_digits(text.data() + 4);
    std::int64_t f = 0;
    for (const char c : text.substr(std::min<std::size_t>(text.size(), 7))) f = f * 10 + (c - '0');
    if (h > 23 || m > 59 || s > 59 || f > 999) return false;
    set(h, m, s, f);
    return true;
  }
  auto point = std::string_view::npos;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '.') continue;
    if (point != std::string_view::npos) return false;  // a second point
    point = i;
  }
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

// "%0*u" by hand, written backwards from end: the value's decimal digits with leading zeros up to
// width. Returns where the text starts.
char* put_padded(char* end, unsigned value, int width) {
  char* p = end;
  do {
    *--p = static_cast<char>('0' + value % 10);
    value /= 10;
    --width;
  } while (value != 0);
  while (width-- > 0) *--p = '0';
  return p;
}

// "%0*u<sep>%02u<sep>%02u", the shape of both texts, with the first value's width given.
fix_text_t three_fields(unsigned first, int first_width, unsigned second, unsigned third, char separator) {
  fix_text_t out;
  if (first < (first_width == 4 ? 10000u : 100u) && second < 100 && third < 100) {
    // The usual case: every value fits its width.
    char* p = out.text;
    if (first_width == 4) {
      *p++ = static_cast<char>('0' + first / 1000);
      *p++ = static_cast<char>('0' + first / 100 % 10);
    }
    *p++ = static_cast<char>('0' + first / 10 % 10);
    *p++ = static_cast<char>('0' + first % 10);
    *p++ = separator;
    *p++ = static_cast<char>('0' + second / 10);
    *p++ = static_cast<char>('0' + second % 10);
    *p++ = separator;
    *p++ = static_cast<char>('0' + third / 10);
    *p++ = static_cast<char>('0' + third % 10);
    out.size = static_cast<std::size_t>(p - out.text);
    return out;
  }
  // Three 10-digit values and two separators fill the buffer exactly.
  char* const end = out.text + sizeof out.text;
  char* p = put_padded(end, third, 2);
  *--p = separator;
  p = put_padded(p, second, 2);
  *--p = separator;
  p = put_padded(p, first, first_width);
  out.size = static_cast<std::size_t>(end - p);
  std::memmove(out.text, p, out.size);
  return out;
}

}  // namespace

// "%02u:%02u:%02u"
fix_text_t hms_chars(const time_hms_t& t) {
  return three_fields(static_cast<unsigned>(t.hh), 2, static_cast<unsigned>(t.mm), static_cast<unsigned>(t.ss), ':');
}

// "%04u-%02u-%02u"
fix_text_t ymd_chars(const date_ymd_t& d) {
  return three_fields(static_cast<unsigned>(d.y), 4, static_cast<unsigned>(d.m), static_cast<unsigned>(d.d), '-');
}

std::string hms_text(const time_hms_t& t) { return std::string(hms_chars(t).view()); }

std::string ymd_text(const date_ymd_t& d) { return std::string(ymd_chars(d).view()); }
