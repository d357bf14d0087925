#include "platform/clip_segment.h"

#include <gtest/gtest.h>

namespace {

TEST(clip_segment, keeps_the_part_inside_and_leaves_inner_ends_untouched) {
  const QRectF r(0, 0, 100, 50);
  struct row {
    const char* what;
    QPointF a, b;
    bool inside;
    QPointF a_out, b_out;
  } rows[] = {
      {"wholly inside", {10, 10}, {90, 40}, true, {10, 10}, {90, 40}},
      {"leaving on the right", {50, 25}, {150, 25}, true, {50, 25}, {100, 25}},
      {"coming in from the top", {20, -50}, {20, 10}, true, {20, 0}, {20, 10}},
      {"crossing far beyond both sides", {-1e7, 25}, {1e7, 25}, true, {0, 25}, {100, 25}},
      {"diagonal through a corner region", {-10, 40}, {20, 70}, true, {0, 50}, {0, 50}},
      {"wholly left", {-20, 10}, {-5, 40}, false, {-20, 10}, {-5, 40}},
      {"passing a corner outside", {-30, 30}, {30, 90}, false, {-30, 30}, {30, 90}},
      {"on an edge", {0, 0}, {100, 0}, true, {0, 0}, {100, 0}},
      {"a point inside", {5, 5}, {5, 5}, true, {5, 5}, {5, 5}},
      {"a point outside", {-5, 5}, {-5, 5}, false, {-5, 5}, {-5, 5}},
  };
  for (const auto& c : rows) {
    QPointF a = c.a, b = c.b;
    const bool inside = clip_segment(r, a, b);
    EXPECT_EQ(std::tuple(inside, a, b), std::tuple(c.inside, c.a_out, c.b_out)) << c.what;  // points compared fuzzily
  }
}

}  // namespace
