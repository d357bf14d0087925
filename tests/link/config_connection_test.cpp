#include "link/config_connection.h"

#include <gtest/gtest.h>

#include "link/memory_kv_store.h"
#include "support/recording_console.h"

namespace {

using strings_t = std::vector<std::string>;

class config_test : public ::testing::Test {
protected:
  std::unique_ptr<config_connection_t> start() { return std::make_unique<config_connection_t>(store, console); }
  strings_t stored_strings(std::string_view key) const {
    strings_t out;
    for (const auto& e : store.get(key).list) out.push_back(e.text);
    return out;
  }
  memory_kv_store_t store;
  recording_console_t console;
};

TEST_F(config_test, first_start_with_an_empty_store) {
  const auto c = start();
  EXPECT_EQ(std::tuple(c->ble_name.get(), c->host.get(), c->port.get()), std::tuple("Thingy:91 UART", "127.0.0.1", 81));
  EXPECT_EQ(c->history_ble_name.get(), config_connection_t::default_ble_names);
  EXPECT_EQ(c->history_host.get(), config_connection_t::default_hosts);
  EXPECT_EQ(c->history_port.get(), std::vector<std::uint16_t>{81});
  EXPECT_EQ(stored_strings("history_host"), config_connection_t::default_hosts) << "the histories are stored";
  EXPECT_EQ(std::pair(c->enable_bridge().get(), c->enable_ble().get()), std::pair(false, true));
  EXPECT_EQ(store.get("enable_ble").kind, kv_value_t::kind_t::absent) << "switches are stored only when changed";
}

TEST_F(config_test, a_saved_name_moves_to_the_front_without_duplicates) {
  const auto c = start();
  EXPECT_EQ(c->save_ble_name("nrf9160dk UART"), "nrf9160dk UART");
  EXPECT_EQ(c->history_ble_name.get(), (strings_t{"nrf9160dk UART", "Thingy:91 UART", "nrf52840dk UART"}));
  EXPECT_EQ(c->save_ble_name(""), "nrf9160dk UART") << "an empty name keeps the current one";
  EXPECT_EQ(stored_strings("history_ble_name").front(), "nrf9160dk UART");
}

TEST_F(config_test, the_eleventh_host_drops_the_oldest) {
  const auto c = start();
  for (int i = 1; i <= 11; ++i) c->save_host("10.0.0." + std::to_string(i));
  ASSERT_EQ(c->history_host->size(), 10u);
  EXPECT_EQ(c->history_host->front(), "10.0.0.11");
  EXPECT_EQ(c->history_host->back(), "10.0.0.2");
  EXPECT_EQ(c->save_host("not an address"), "10.0.0.11") << "an invalid host keeps the current one";
  EXPECT_EQ(c->save_port(0), 81);
  c->set_port_bind("8080");
  EXPECT_EQ(c->save_port(0), 81) << "no port given: the last one saved";
  EXPECT_EQ(c->save_port(10110), 10110);
  EXPECT_EQ(c->port_bind(), "10110");
}

TEST_F(config_test, typed_host_and_port_are_validated) {
  const auto c = start();
  c->set_host_bind("192,168,1,20");
  EXPECT_EQ(c->host_bind(), "192.168.1.20");
  EXPECT_TRUE(c->host_valid);
  EXPECT_EQ(c->host.get(), "192.168.1.20");
  c->set_host_bind("192.168.1.");
  EXPECT_FALSE(c->host_valid);
  EXPECT_EQ(c->host.get(), "192.168.1.20") << "an invalid host never replaces the current one";
  c->set_host_bind("::1");
  EXPECT_EQ(std::pair(c->host_valid.get(), c->host.get()), std::pair(true, std::string("[::1]")));

  const struct {
    const char* text;
    bool valid;
    std::uint16_t port;
  } ports[] = {{"65535", true, 65535}, {"0", false, 65535},  {"65536", false, 65535},
               {"", false, 65535},     {"8x", false, 65535}, {"81", true, 81}};
  for (const auto& p : ports) {
    c->set_port_bind(p.text);
    EXPECT_EQ(c->port_valid.get(), p.valid) << p.text;
    EXPECT_EQ(c->port.get(), p.port) << p.text;
  }
}

TEST_F(config_test, stored_values_of_the_wrong_type_are_ignored) {
  const auto list = [](std::vector<kv_value_t> values) {
    kv_value_t v;
    v.kind = kv_value_t::kind_t::list;
    v.list = std::move(values);
    return v;
  };
  store.values["enable_ble"] = memory_kv_store_t::text("false");
  store.values["history_host"] = list({memory_kv_store_t::text("10.0.0.9"), memory_kv_store_t::integer(5)});
  store.values["history_port"] = list({memory_kv_store_t::integer(70000)});
  store.values["history_ble_name"] = list({});
  const auto c = start();
  EXPECT_EQ(std::tuple(c->enable_ble().get(), c->host.get(), c->port.get(), c->ble_name.get()),
            std::tuple(true, "127.0.0.1", 81, "Thingy:91 UART"));
  store.values["history_host"] = list({memory_kv_store_t::text("no host!"), memory_kv_store_t::text("010.0.0.9")});
  EXPECT_EQ(start()->history_host.get(), strings_t{"10.0.0.9"}) << "stored hosts meet the typed hosts' rules";
}

TEST_F(config_test, a_restart_restores_switches_and_histories) {
  {
    const auto c = start();
    c->set_enable_bridge(true);
    c->set_enable_ble(false);
    c->save_ble_name("nrf52840dk UART");
    c->save_host("192.168.4.1");
    c->save_port(10110);
  }
  const auto c = start();
  EXPECT_EQ(
      std::tuple(c->enable_bridge().get(), c->enable_ble().get(), c->ble_name.get(), c->host.get(), c->port.get()),
      std::tuple(true, false, "nrf52840dk UART", "192.168.4.1", 10110));
  EXPECT_EQ(c->history_port.get(), (std::vector<std::uint16_t>{10110, 81}));
}

TEST_F(config_test, delete_config_then_a_restart_gives_the_defaults) {
  {
    const auto c = start();
    c->set_enable_bridge(true);
    c->save_host("192.168.4.1");
    c->save_source("udp://:10110");
    c->delete_config();
    EXPECT_EQ(console.lines.back(), "delete_config");
    EXPECT_TRUE(c->enable_bridge()) << "current values keep until the next start";
    for (const char* key : {"enable_bridge", "enable_ble", "history_ble_name", "history_host", "history_port",
                            "enable_source", "history_source"})
      EXPECT_EQ(store.get(key).kind, kv_value_t::kind_t::absent) << key;
  }
  const auto c = start();
  EXPECT_FALSE(c->enable_bridge());
  EXPECT_EQ(c->history_host.get(), config_connection_t::default_hosts);
}

// Serial, UDP and gpsd addresses: stored ones read as typed ones (normalised, the unreadable and
// repeated dropped); a kind chosen from the menu takes its newest address, or a common one.
TEST_F(config_test, source_addresses_are_kept_normalised_and_a_kind_takes_its_newest) {
  store.set_strings("history_source", {"gpsd://localhost", "serial:dev/tty", "udp://:10110", "gpsd://localhost:2947"});
  auto c = start();
  EXPECT_EQ(c->history_source.get(), (strings_t{"gpsd://localhost:2947", "udp://:10110"}));
  EXPECT_FALSE(c->enable_source());

  EXPECT_FALSE(c->save_source("udp://:0"));
  EXPECT_TRUE(c->save_source("serial:///dev/ttyACM0?baud=38400"));
  EXPECT_EQ(stored_strings("history_source").front(), "serial:///dev/ttyACM0?baud=38400");
  using kind = source_address_t::kind_t;
  for (const auto& [chosen, front] : {std::pair{kind::udp, "udp://:10110"},
                                      {kind::gpsd, "gpsd://localhost:2947"},
                                      {kind::serial, "serial:///dev/ttyACM0?baud=38400"}}) {
    c->choose_source_kind(chosen);
    EXPECT_EQ(c->chosen_source()->text(), front);
    EXPECT_EQ(c->history_source->size(), 3u) << "no entry twice";
  }
  EXPECT_TRUE(c->enable_source());
  std::vector<std::string> many;
  for (int port = 1; port <= 12; ++port) many.push_back("udp://:" + std::to_string(port));
  store.set_strings("history_source", many);
  EXPECT_EQ(start()->history_source->size(), config_connection_t::history_count) << "ten are kept";
  c->delete_config();
  c = start();
  c->choose_source_kind(kind::gpsd);
  EXPECT_EQ(c->chosen_source()->text(), "gpsd://127.0.0.1:2947") << "a common address where none was used";
}

}  // namespace
