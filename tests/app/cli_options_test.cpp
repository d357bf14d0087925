#include "app/cli_options.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

cli_parse_t parse(std::vector<std::string_view> args) { return parse_cli(args); }

TEST(cli_options, reads_a_replay_with_its_options) {
  const auto r = parse({"--replay", "a.log", "--chunk", "16", "--json", "--show-all"});
  ASSERT_TRUE(r.options) << r.error;
  EXPECT_EQ(r.options->replay_file, "a.log");
  EXPECT_EQ(r.options->chunk, 16u);
  EXPECT_TRUE(r.options->json);
  EXPECT_TRUE(r.options->show_all);
  EXPECT_EQ(parse({"--replay", "a.log"}).options->chunk, 2047u);
}

TEST(cli_options, names_what_is_wrong) {
  const struct {
    std::vector<std::string_view> args;
    const char* says;
  } cases[] = {
      {{"--bogus"}, "unknown option '--bogus'"},
      {{"--replay"}, "--replay needs a file name"},
      {{"--replay", "a", "--chunk"}, "--chunk needs"},
      {{"--replay", "a", "--chunk", "0"}, "1 to 65536, not '0'"},
      {{"--replay", "a", "--chunk", "65537"}, "not '65537'"},
      {{"--replay", "a", "--chunk", "-1"}, "not '-1'"},
      {{"--replay", "a", "--chunk", "x"}, "not 'x'"},
      {{}, "nothing to do"},
  };
  for (const auto& c : cases) {
    const auto r = parse(c.args);
    EXPECT_FALSE(r.options);
    EXPECT_NE(r.error.find(c.says), std::string::npos) << r.error;
  }
  EXPECT_TRUE(parse({"--replay", "a", "--chunk", "65536"}).options);
  EXPECT_TRUE(parse({"--help"}).options->help);
}

}  // namespace
