#pragma once

#include <cstddef>
#include <vector>

// A bounded sequence indexed newest first: index 0 is the head. Inserting a new head and dropping
// the oldest entry are O(1) (a ring over storage reserved up front), so a 10 000-point track does
// not move on every insertion.
template <class T>
class newest_first_t {
public:
  explicit newest_first_t(std::size_t capacity) : slots_(capacity) {}

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  std::size_t capacity() const { return slots_.size(); }

  const T& operator[](std::size_t i) const { return slots_[slot(i)]; }
  T& operator[](std::size_t i) { return slots_[slot(i)]; }

  // Inserts at index 0; the caller keeps the size within capacity by popping the oldest first.
  void push_front(T value) {
    head_ = (head_ + slots_.size() - 1) % slots_.size();
    slots_[head_] = std::move(value);
    ++size_;
  }
  // Removes the oldest entry and hands it back.
  T pop_back() {
    --size_;
    return std::move(slots_[slot(size_)]);
  }
  void clear() {
    for (std::size_t i = 0; i < size_; ++i) slots_[slot(i)] = T();
    size_ = 0;
    head_ = 0;
  }
  // A copy, newest first.
  std::vector<T> to_vector() const {
    std::vector<T> out;
    out.reserve(size_);
    for (std::size_t i = 0; i < size_; ++i) out.push_back((*this)[i]);
    return out;
  }

private:
  std::size_t slot(std::size_t i) const { return (head_ + i) % slots_.size(); }

  std::vector<T> slots_;
  std::size_t head_ = 0;
  std::size_t size_ = 0;
};
