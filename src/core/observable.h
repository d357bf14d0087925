#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

// A model object that tells its observers "about to change". Observers are plain callbacks; a
// subscription removes its callback when it is destroyed, and outliving the observable is safe.
class observable_t;

class subscription_t {
public:
  subscription_t() = default;
  subscription_t(const subscription_t&) = delete;
  subscription_t& operator=(const subscription_t&) = delete;
  subscription_t(subscription_t&& other) noexcept;
  subscription_t& operator=(subscription_t&& other) noexcept;
  ~subscription_t();

  void cancel();

private:
  friend class observable_t;
  struct observers_t;
  subscription_t(std::weak_ptr<observers_t> observers, std::uint64_t id);

  std::weak_ptr<observers_t> observers_;
  std::uint64_t id_ = 0;
};

class observable_t {
public:
  observable_t();
  observable_t(const observable_t&) = delete;
  observable_t& operator=(const observable_t&) = delete;
  virtual ~observable_t();

  [[nodiscard]] subscription_t subscribe(std::function<void()> observer);

  // Sends the change notice. Observers added or cancelled while it runs are handled safely.
  void notify() const;

private:
  std::shared_ptr<subscription_t::observers_t> observers_;
};

// A published field: every assignment first notifies the owner's observers, then stores.
template <class T>
class published_t {
public:
  published_t(observable_t& owner, T value) : owner_(&owner), value_(std::move(value)) {}
  published_t(const published_t&) = delete;
  published_t& operator=(const published_t&) = delete;

  const T& get() const { return value_; }
  operator const T&() const { return value_; }
  const T* operator->() const { return &value_; }
  const T& operator*() const { return value_; }

  void set(T value) {
    owner_->notify();
    value_ = std::move(value);
  }
  published_t& operator=(T value) {
    set(std::move(value));
    return *this;
  }

  // An in-place change (append, remove) counts as one assignment.
  template <class F>
  void modify(F&& change) {
    owner_->notify();
    std::forward<F>(change)(value_);
  }

private:
  observable_t* owner_;
  T value_;
};
