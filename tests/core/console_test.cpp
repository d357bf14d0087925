#include "core/console.h"

#include <gtest/gtest.h>

TEST(console, dates_in_utc_with_the_zone_written_out) {
  EXPECT_EQ(console_date(1767268800), "2026-01-01 12:00:00 +0000");
  EXPECT_EQ(console_date(0), "1970-01-01 00:00:00 +0000");
}
