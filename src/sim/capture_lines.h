#pragma once

#include <cstddef>
#include <string>
#include <vector>

// A capture served piece by piece: one line each (with its line end), in order, over and over.
class capture_lines_t {
public:
  explicit capture_lines_t(const std::string& bytes);

  bool empty() const { return lines_.empty(); }
  std::string next() { return lines_[next_++ % lines_.size()]; }
  std::size_t served() const { return next_; }

private:
  std::vector<std::string> lines_;
  std::size_t next_ = 0;
};
