#include "link/host_address.h"

#include <gtest/gtest.h>

namespace {

// One set of rules for every place a host is entered: the settings, the host history, the command line.
TEST(host_address, hosts_are_dotted_quads_host_names_or_ipv6_addresses) {
  const std::string label63(63, 'a');
  const std::pair<std::string, std::string> accepted[] = {
      {"10.0.0.1", "10.0.0.1"},
      {"010.000.000.001", "10.0.0.1"},
      {"127.0.0.010", "127.0.0.10"},  // decimal, never octal
      {"254.255.255.254", "254.255.255.254"},
      {"localhost", "localhost"},
      {"gps-1.Example.com", "gps-1.Example.com"},
      {label63 + ".b", label63 + ".b"},
      {"::1", "[::1]"},
      {"[0:0::1]", "[::1]"},
      {"[fe80::a:1]", "[fe80::a:1]"},
  };
  for (const auto& [text, normalised] : accepted) EXPECT_EQ(parse_host(text), normalised) << text;
  // 0x7f... the C library reads as 127.0.0.1.
  for (const std::string text :
       {"0.1.2.3",  "255.1.2.3", "1.2.3.0",  "1.2.3.255", "1.2.3",      "127.1",      "1.2.3.4.5",
        "1..2.3",   "",          "1.2.3.+4", "1.2.3.-4",  "0x7f.0.0.1", "0x7f000001", "-gps.lan",
        "gps-.lan", "gps..lan",  "gps.lan.", "gps_1",     "gps 1",      "[::1",       "::g"})
    EXPECT_FALSE(parse_host(text)) << text;
  EXPECT_FALSE(parse_host("a" + label63 + ".b"));
  EXPECT_EQ(std::pair(lookup_name("[::1]"), lookup_name("gps.lan")),
            std::pair(std::string("::1"), std::string("gps.lan")));
}

}  // namespace
