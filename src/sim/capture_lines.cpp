#include "sim/capture_lines.h"

capture_lines_t::capture_lines_t(const std::string& bytes) {
  std::size_t start = 0;
  while (start < bytes.size()) {
    auto end = bytes.find('\n', start);
    end = end == std::string::npos ? bytes.size() : end + 1;
    lines_.push_back(bytes.substr(start, end - start));
    start = end;
  }
}
