#include "core/observable.h"

#include <algorithm>
#include <deque>

struct subscription_t::observers_t {
  struct entry_t {
    std::uint64_t id;
    std::function<void()> observer;
    bool live;
  };
  // A deque keeps references to its elements valid when an observer subscribes during a notice.
  std::deque<entry_t> entries;
  std::uint64_t next_id = 1;
  int notifying = 0;
  bool has_cancelled = false;
  // Set when the observable is destroyed by one of its own observers: the list then owns itself
  // until the notice that is running over it has ended.
  std::shared_ptr<observers_t> orphaned;

  void cancel(std::uint64_t id) {
    for (auto& e : entries) {
      if (e.id == id) {
        e.live = false;
        has_cancelled = true;
      }
    }
    compact();
  }
  void compact() {
    if (notifying > 0 || !has_cancelled) return;
    std::erase_if(entries, [](const entry_t& e) { return !e.live; });
    has_cancelled = false;
  }
};

subscription_t::subscription_t(std::weak_ptr<observers_t> observers, std::uint64_t id)
    : observers_(std::move(observers)), id_(id) {}

subscription_t::subscription_t(subscription_t&& other) noexcept
    : observers_(std::move(other.observers_)), id_(std::exchange(other.id_, 0)) {}

subscription_t& subscription_t::operator=(subscription_t&& other) noexcept {
  if (this != &other) {
    cancel();
    observers_ = std::move(other.observers_);
    id_ = std::exchange(other.id_, 0);
  }
  return *this;
}

subscription_t::~subscription_t() { cancel(); }

void subscription_t::cancel() {
  if (auto observers = observers_.lock(); observers && id_ != 0) observers->cancel(id_);
  observers_.reset();
  id_ = 0;
}

observable_t::observable_t() : observers_(std::make_shared<subscription_t::observers_t>()) {}

observable_t::~observable_t() {
  if (observers_->notifying > 0) observers_->orphaned = std::move(observers_);
}

subscription_t observable_t::subscribe(std::function<void()> observer) {
  const auto id = observers_->next_id++;
  observers_->entries.push_back({id, std::move(observer), true});
  return subscription_t(observers_, id);
}

void observable_t::notify() const {
  // Notices come with every published assignment, so this path takes no reference count: an
  // observer that destroys the observable leaves the list alive (orphaned) until the loop is done.
  // Index afresh on each step: an observer may subscribe or cancel; cancelled entries are only
  // marked while a notice runs and removed after it.
  auto* const observers = observers_.get();
  if (observers->entries.empty()) return;
  ++observers->notifying;
  for (std::size_t i = 0; i < observers->entries.size(); ++i) {
    auto& entry = observers->entries[i];
    if (entry.live) entry.observer();
  }
  if (--observers->notifying > 0) return;
  observers->compact();
  if (observers->orphaned) {
    const auto last_owner = std::move(observers->orphaned);
  }
}
