#include "core/observable.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>

#include "core/ring.h"

namespace {

struct model_t : observable_t {
  published_t<int> value{*this, 0};
};

TEST(observable, every_assignment_notifies_before_it_stores_even_with_the_same_value) {
  model_t m;
  std::vector<int> seen;
  auto sub = m.subscribe([&] { seen.push_back(m.value); });
  m.value = 1;
  m.value = 1;
  m.value.modify([](int& v) { v += 3; });
  EXPECT_EQ(std::pair(seen, m.value.get()), std::pair(std::vector<int>{0, 1, 1}, 4));
}

TEST(observable, a_destroyed_subscription_stops_the_notices_and_may_outlive_the_observable) {
  auto m = std::make_unique<model_t>();
  int notices = 0;
  subscription_t outliving = m->subscribe([] {});
  auto sub = std::make_unique<subscription_t>(m->subscribe([&] { ++notices; }));
  m->value = 1;
  sub.reset();
  m->value = 2;
  m.reset();
  outliving.cancel();
  EXPECT_EQ(notices, 1);
}

TEST(observable, observers_may_subscribe_and_cancel_during_a_notice) {
  model_t m;
  int first = 0, added = 0;
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
  EXPECT_EQ(std::tuple(m == nullptr, after), std::tuple(true, 1));
}

TEST(ring, keeps_the_newest_entries_at_either_end_and_releases_what_leaves) {
  string_ring_t log(3);
  for (const char* s : {"a", "b", "c", "d", "e"}) log.push_back(s);
  EXPECT_EQ(std::vector<std::string>({log[0], log[1], log.back()}), std::vector<std::string>({"c", "d", "e"}));
  log.pop_front();
  EXPECT_EQ(std::tuple(log.size(), log[0]), std::tuple(2u, "d"));
  log.clear();
  log.pop_front();
  EXPECT_TRUE(log.empty()) << "nothing to remove";

  const auto held = std::make_shared<int>(1);
  ring_t<std::shared_ptr<int>> refs(2);
  for (const auto& ref : {held, std::make_shared<int>(2), std::make_shared<int>(3)}) refs.push_front(ref);
  EXPECT_EQ(std::tuple(*refs[0], *refs[1]), std::tuple(3, 2));
  EXPECT_EQ(held.use_count(), 1) << "the entry pushed out at the back is released";
  refs.push_front(held);
  EXPECT_EQ(*refs.pop_back(), 3);
  EXPECT_EQ(refs.size(), 1u);
  refs.clear();
  EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
