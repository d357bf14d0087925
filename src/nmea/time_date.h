#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// UTC time of day as the receiver reports it. A decoder keeps one for its whole life and changes
// it in place; the screens hold a reference. All zeros means not yet known.
struct time_hms_t {
  std::int64_t hh = 0;
  std::int64_t mm = 0;
  std::int64_t ss = 0;
  std::int64_t ms = 0;  // the fraction digits as the integer they spell: ".5" is 5, ".500" is 500

  // hhmmss or hhmmss.f; on failure nothing changes.
  bool parse(std::string_view text);
  // GPS time of day from a millisecond of the GPS week (no leap-second correction).
  void set_from_itow(std::uint32_t itow);
  void set(std::int64_t h, std::int64_t m, std::int64_t s, std::int64_t f);
  void clear() { set(0, 0, 0, 0); }

  bool operator==(const time_hms_t&) const = default;
};

// Calendar date. All zeros means not yet known.
struct date_ymd_t {
  std::int64_t y = 0;
  std::int64_t m = 0;
  std::int64_t d = 0;

  // ddmmyy; a two-digit year above 79 is in the 1900s, else in the 2000s. On failure nothing
  // changes. Days are not checked against the month.
  bool parse(std::string_view text);
  void set(std::int64_t year, std::int64_t month, std::int64_t day);
  void clear() { set(0, 0, 0); }

  bool operator==(const date_ymd_t&) const = default;
};

// The time or date of a fix as markers and screens show it, in a buffer of its own: the marker
// titles are made for every fix without building a string first.
struct fix_text_t {
  char text[32];
  std::size_t size;
  std::string_view view() const { return {text, size}; }
};
// "12:35:19"
fix_text_t hms_chars(const time_hms_t& t);
// "2024-03-23"
fix_text_t ymd_chars(const date_ymd_t& d);
