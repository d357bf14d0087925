#pragma once

#include <QObject>
#include <functional>
#include <vector>

#include "core/observable.h"

// Coalesced redraws: a change notice only marks the screen dirty; the refresh runs once, on the
// next turn of the event loop, after the change has been stored. A burst of notices in one turn
// costs one refresh, and no notice costs none.
class redraw_t {
public:
  redraw_t(QObject* context, std::function<void()> refresh) : context_(context), refresh_(std::move(refresh)) {}

  void watch(observable_t& model) {
    subscriptions_.push_back(model.subscribe([this] { mark(); }));
  }
  void mark();

  int refreshes() const { return refreshes_; }

private:
  QObject* context_;
  std::function<void()> refresh_;
  std::vector<subscription_t> subscriptions_;
  bool scheduled_ = false;
  int refreshes_ = 0;
};
