#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// A compact JSON writer for the state snapshots: commas are placed by the writer, doubles are
// written in their shortest round-trip form and non-finite doubles as null.
class json_writer_t {
public:
  void begin_object();
  void end_object();
  void begin_array();
  void end_array();
  void key(std::string_view name);

  void value(std::string_view text);
  void value(const char* text) { value(std::string_view(text)); }
  void value(bool flag);
  void value(std::int64_t number);
  void value(std::uint64_t number);
  void value(int number) { value(static_cast<std::int64_t>(number)); }
  void value(double number);

  // A member of the object being written: its key, then its value.
  template <class T>
  void put(std::string_view name, const T& v) {
    key(name);
    value(v);
  }

  const std::string& text() const { return out_; }

private:
  void separate();

  std::string out_;
  bool need_comma_ = false;
};
