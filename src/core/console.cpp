#include "core/console.h"

#include <cstdio>

std::string console_date(std::time_t t) {
  std::tm utc{};
  gmtime_r(&t, &utc);
  char text[40];
  const auto n = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S +0000", &utc);
  return std::string(text, n);
}

std::string console_t::date() const { return console_date(utc_now()); }

void stdout_console_t::print(std::string_view line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

std::time_t stdout_console_t::utc_now() const { return std::time(nullptr); }
