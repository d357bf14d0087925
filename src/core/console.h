#pragma once

#include <ctime>
#include <string>
#include <string_view>

// Diagnostic lines on standard output. They never reach the screens.
class console_t {
public:
  virtual ~console_t() = default;
  virtual void print(std::string_view line) = 0;
  // The wall clock that dates console lines and dated log entries.
  virtual std::time_t utc_now() const = 0;

  // The current UTC time as "2026-01-01 12:00:00 +0000".
  std::string date() const;
};

// "2026-01-01 12:00:00 +0000" for the given time, in UTC.
std::string console_date(std::time_t t);

class stdout_console_t final : public console_t {
public:
  void print(std::string_view line) override;
  std::time_t utc_now() const override;
};
