#include "link/command_settings.h"

#include <gtest/gtest.h>

#include "link/memory_kv_store.h"

namespace {

using strings = std::vector<std::string>;

TEST(CommandSettings, KeepsPresetsInOrderAndTheReadOnlyLinks) {
  memory_kv_store_t store;
  command_settings_t settings(store);
  settings.save_preset("10 Hz", {"set:CFG-RATE-MEAS=100"});
  settings.save_preset("NAV-PVT + NAV-SAT on USB",
                       {"set:CFG-MSGOUT-UBX_NAV_PVT_USB=1", "set:CFG-MSGOUT-UBX_NAV_SAT_USB=1"});
  settings.save_preset("10 Hz", {"rate:100", "$PUBX,00"});
  settings.save_preset("empty", {});
  settings.set_read_only("tcp://10.0.0.2:2000", true);
  settings.set_read_only("serial:///dev/ttyACM0", true);
  settings.set_read_only("serial:///dev/ttyACM0", false);

  const command_settings_t again(store);
  EXPECT_EQ(again.preset_names(), (strings{"10 Hz", "NAV-PVT + NAV-SAT on USB", "empty"}));
  EXPECT_EQ(again.preset("10 Hz"), (strings{"rate:100", "$PUBX,00"}));
  EXPECT_EQ(again.preset("NAV-PVT + NAV-SAT on USB").size(), 2u);
  EXPECT_EQ(again.preset("empty"), strings{});
  EXPECT_EQ(again.preset("none"), strings{});
  EXPECT_TRUE(again.read_only("tcp://10.0.0.2:2000"));
  EXPECT_FALSE(again.read_only("serial:///dev/ttyACM0"));
  settings.remove_preset("10 Hz");
  EXPECT_EQ(again.preset_names(), (strings{"NAV-PVT + NAV-SAT on USB", "empty"}));
  EXPECT_EQ(again.preset("empty"), strings{});
}

TEST(CommandSettings, IgnoresValuesItDidNotWrite) {
  memory_kv_store_t store;
  store.set_strings(command_settings_t::key_preset_names, {"a", "b"});
  store.set_strings(command_settings_t::key_preset_commands, {"rate:100"});
  store.set_bool(command_settings_t::key_read_only, true);
  command_settings_t settings(store);
  EXPECT_EQ(settings.preset_names(), strings{});
  EXPECT_FALSE(settings.read_only("true"));
  settings.save_preset("c", {"rate:200"});
  EXPECT_EQ(settings.preset_names(), strings{"c"});
}

}  // namespace
