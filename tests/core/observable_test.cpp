#include "core/observable.h"

#include <gtest/gtest.h>

#include <memory>

#include <string>

#include "core/ring.h"

namespace {

struct model_t : observable_t {
  published_t<int> value{*this, 0};
};

TEST(observable, notice_comes_before_the_assignment) {
  model_t m;
  std::vector<int> seen;
  auto sub = m.subscribe([&] { seen.push_back(m.value); });
  m.value = 1;
  m.value = 2;
  EXPECT_EQ(seen, (std::vector<int>{0, 1}));
  EXPECT_EQ(m.value.get(), 2);
}

TEST(observable, every_assignment_notifies_even_with_the_same_value) {
  model_t m;
  int notices = 0;
  auto sub = m.subscribe([&] { ++notices; });
  m.value = 0;
  m.value = 0;
  m.value.modify([](int& v) { v += 3; });
  EXPECT_EQ(notices, 3);
}

TEST(observable, a_destroyed_subscription_stops_the_notices) {
  model_t m;
  int notices = 0;
  {
    auto sub = m.subscribe([&] { ++notices; });
    m.value = 1;
  }
  m.value = 2;
  EXPECT_EQ(notices, 1);
}

TEST(observable, subscription_may_outlive_the_observable) {
  subscription_t sub;
  {
    model_t m;
    sub = m.subscribe([] {});
  }
  sub.cancel();
  SUCCEED();
}

TEST(observable, observers_may_subscribe_and_cancel_during_a_notice) {
  model_t m;
  int first = 0;
  int added = 0;
  subscription_t self;
  std::vector<subscription_t> later;
  self = m.subscribe([&] {
    ++first;
    self.cancel();  // cancels itself while it runs
    later.push_back(m.subscribe([&] { ++added; }));
  });
  m.value = 1;
  m.value = 2;
  EXPECT_EQ(first, 1);
  EXPECT_GE(added, 1);
}

// A screen may close, and destroy its model, from inside a notice: the rest of the notice still
// reaches the other observers, and nothing is touched after the list is gone.
TEST(observable, an_observer_may_destroy_the_observable_during_a_notice) {
  auto m = std::make_unique<model_t>();
  int after = 0;
  const auto closer = m->subscribe([&] { m.reset(); });
  const auto other = m->subscribe([&] { ++after; });
  m->notify();
  EXPECT_EQ(m, nullptr);
  EXPECT_EQ(after, 1);
}

TEST(string_ring, keeps_the_newest_entries_in_order) {
  string_ring_t ring(3);
  for (const char* s : {"a", "b", "c", "d", "e"}) ring.push_back(s);
  ASSERT_EQ(ring.size(), 3u);
  EXPECT_EQ(ring[0], "c");
  EXPECT_EQ(ring[2], "e");
  ring.pop_front();
  EXPECT_EQ(ring[0], "d");
  EXPECT_EQ(ring.back(), "e");
  ring.clear();
  EXPECT_TRUE(ring.empty());
}

}  // namespace
