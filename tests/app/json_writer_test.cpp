#include "app/json_writer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(json_writer, writes_compact_json_with_shortest_doubles) {
  json_writer_t w;
  w.begin_object();
  w.key("s");
  w.value("a\"b\\c\n\x01");
  w.key("n");
  w.begin_array();
  for (const double d : {0.1, 48.1173, -0.0, 1e21, std::nan(""), -std::numeric_limits<double>::infinity()}) w.value(d);
  w.end_array();
  w.key("i");
  w.value(std::int64_t{-3});
  w.key("u");
  w.value(std::uint64_t{18446744073709551615u});
  w.key("b");
  w.value(true);
  w.key("o");
  w.begin_object();
  w.end_object();
  w.end_object();
  EXPECT_EQ(
      w.text(),
      R"({"s":"a\"b\\c\u000a\u0001","n":[0.1,48.1173,-0,1e+21,null,null],"i":-3,"u":18446744073709551615,"b":true,"o":{}})")
      << "\\n is escaped as \\u000a";
}
