#include "app/json_writer.h"

#include <charconv>
#include <cmath>
#include <cstdio>

void json_writer_t::separate() {
  if (need_comma_) out_.push_back(',');
  need_comma_ = true;
}

void json_writer_t::begin_object() {
  separate();
  out_.push_back('{');
  need_comma_ = false;
}

void json_writer_t::end_object() {
  out_.push_back('}');
  need_comma_ = true;
}

void json_writer_t::begin_array() {
  separate();
  out_.push_back('[');
  need_comma_ = false;
}

void json_writer_t::end_array() {
  out_.push_back(']');
  need_comma_ = true;
}

void json_writer_t::key(std::string_view name) {
  value(name);
  out_.push_back(':');
  need_comma_ = false;
}

void json_writer_t::value(std::string_view text) {
  separate();
  out_.push_back('"');
  for (const char c : text) {
    const auto u = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out_.push_back('\\');
      out_.push_back(c);
    } else if (u < 0x20 || u == 0x7F) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", u);
      out_ += escaped;
    } else {
      out_.push_back(c);
    }
  }
  out_.push_back('"');
}

void json_writer_t::value(bool flag) {
  separate();
  out_ += flag ? "true" : "false";
}

void json_writer_t::value(std::int64_t number) {
  separate();
  out_ += std::to_string(number);
}

void json_writer_t::value(std::uint64_t number) {
  separate();
  out_ += std::to_string(number);
}

void json_writer_t::value(double number) {
  separate();
  if (!std::isfinite(number)) {
    out_ += "null";
    return;
  }
  char text[32];
  const auto [end, ec] = std::to_chars(text, text + sizeof text, number);
  out_.append(text, end);
}
