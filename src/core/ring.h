#pragma once

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// A bounded double-ended sequence over storage reserved up front, indexed from its front. Adding or
// removing at either end is O(1) and moves no other entry, so a 10 000-point track does not move on
// every insertion. A slot that an entry leaves is emptied: a string slot keeps its buffer for the
// next entry, so a steady stream of log lines allocates nothing; a shared reference is released.
template <class T>
class ring_t {
public:
  explicit ring_t(std::size_t capacity) : slots_(capacity) {}

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  std::size_t capacity() const { return slots_.size(); }

  const T& operator[](std::size_t i) const { return slots_[slot(i)]; }
  T& operator[](std::size_t i) { return slots_[slot(i)]; }
  const T& back() const { return (*this)[size_ - 1]; }

  // Adds before index 0; when full, the entry at the back makes room.
  template <class V>
  void push_front(V&& value) {
    if (size_ == slots_.size()) pop_back();
    head_ = (head_ + slots_.size() - 1) % slots_.size();
    slots_[head_] = std::forward<V>(value);
    ++size_;
  }
  // Adds after the last entry; when full, the entry at the front makes room.
  template <class V>
  void push_back(V&& value) {
    if (size_ == slots_.size()) pop_front();
    slots_[slot(size_)] = std::forward<V>(value);
    ++size_;
  }
  // Removes the last entry and hands it back.
  T pop_back() {
    --size_;
    T value = std::move(slots_[slot(size_)]);
    vacate(slots_[slot(size_)]);
    return value;
  }
  void pop_front() {
    if (size_ == 0) return;
    vacate(slots_[head_]);
    head_ = (head_ + 1) % slots_.size();
    --size_;
  }
  void clear() {
    while (size_ > 0) pop_front();
    head_ = 0;
  }

  bool operator==(const ring_t& other) const {
    if (size_ != other.size_) return false;
    for (std::size_t i = 0; i < size_; ++i)
      if ((*this)[i] != other[i]) return false;
    return true;
  }

private:
  static void vacate(T& slot) {
    if constexpr (std::is_same_v<T, std::string>) {
      slot.clear();
    } else {
      slot = T();
    }
  }
  std::size_t slot(std::size_t i) const { return (head_ + i) % slots_.size(); }

  std::vector<T> slots_;
  std::size_t head_ = 0;
  std::size_t size_ = 0;
};

// The log's lines, oldest first.
using string_ring_t = ring_t<std::string>;
