#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// A list of strings, oldest first, that grows to a fixed capacity. Its slots keep their storage
// when entries are removed, so a steady stream of appends and removals allocates nothing once
// every slot has held an entry of the usual length.
class string_ring_t {
public:
  explicit string_ring_t(std::size_t capacity) : slots_(capacity) {}

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  std::size_t capacity() const { return slots_.size(); }

  // Entry i counted from the oldest.
  const std::string& operator[](std::size_t i) const { return slots_[(head_ + i) % slots_.size()]; }
  const std::string& back() const { return (*this)[size_ - 1]; }

  // Appends; when full, the oldest entry makes room.
  void push_back(std::string_view entry) {
    if (size_ == slots_.size()) pop_front();
    slots_[(head_ + size_) % slots_.size()].assign(entry);
    ++size_;
  }
  void pop_front() {
    if (size_ == 0) return;
    head_ = (head_ + 1) % slots_.size();
    --size_;
  }
  void clear() {
    head_ = 0;
    size_ = 0;
  }

  bool operator==(const string_ring_t& other) const {
    if (size_ != other.size_) return false;
    for (std::size_t i = 0; i < size_; ++i)
      if ((*this)[i] != other[i]) return false;
    return true;
  }

private:
  std::vector<std::string> slots_;
  std::size_t head_ = 0;
  std::size_t size_ = 0;
};
