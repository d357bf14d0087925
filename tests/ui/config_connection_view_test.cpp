#include "ui/config_connection_view.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include "link/serial_port_list.h"
#include "main_screen.h"
#include "ui/palette.h"

namespace {

// The settings dialog as the window opens it.
struct config_connection_view_test : ::testing::Test, main_screen_t {
  config_connection_view_test() {
    view.sheets().show(sheet_id_t::settings, true);
    run();
  }
  config_connection_view& sheet() { return window.settings_view(); }
  QColor colour(colour_t c) { return colour_of(c, sheet().palette()); }
  static QColor text_of(QWidget* w) { return w->palette().color(w->foregroundRole()); }
  void type(QLineEdit* field, const QString& text) {
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Backspace);
    QTest::keyClicks(field, text);
    run();
  }
  void choose(QToolButton* history, const QString& entry) {
    for (QAction* a : history->menu()->actions())
      if (a->text() == entry) a->trigger();
    run();
  }
};

// Which texts are valid is the settings model's test; the sheet shows it and reverts.
TEST_F(config_connection_view_test, an_invalid_entry_turns_red_and_revert_or_closing_puts_back_the_last_good_one) {
  for (const auto& [typed, valid] : {std::pair{QString("192.168.1.256"), false}, {QString("192.168.1.20"), true}}) {
    type(sheet().host_field(), typed);
    EXPECT_EQ(text_of(sheet().host_field()), colour(valid ? colour_t::primary : colour_t::red)) << valid;
    EXPECT_EQ(text_of(sheet().ip_connect_button()), colour(valid ? colour_t::green : colour_t::secondary)) << valid;
    sheet().ip_revert_button()->click();
    run();
    EXPECT_EQ(sheet().host_field()->text(), valid ? typed : "127.0.0.1");
  }
  type(sheet().port_field(), "99999");
  EXPECT_EQ(text_of(sheet().port_field()), colour(colour_t::red));
  sheet().close_button()->click();
  run();
  EXPECT_FALSE(window.settings_dialog().isVisible());
  EXPECT_EQ(std::pair(cfg.port_valid.get(), cfg.port_bind()), std::pair(true, std::string("81")))
      << "closing put the last good port back";
}

TEST_F(config_connection_view_test, ble_connect_with_an_empty_name_is_dimmed_but_still_connects) {
  cfg.set_enable_ble(false);
  type(sheet().ble_name_field(), "");
  EXPECT_EQ(text_of(sheet().ble_connect_button()), colour(colour_t::secondary));
  sheet().ble_connect_button()->click();
  run();
  EXPECT_TRUE(cfg.enable_ble());
  EXPECT_FALSE(view.sheets().shown(sheet_id_t::settings));
  EXPECT_TRUE(hub.hub.ble_enabled() && !hub.hub.tcp_enabled()) << "BLE only";
}

TEST_F(config_connection_view_test, history_entries_fill_the_fields_revert_takes_the_first_and_delete_forgets_them) {
  cfg.save_ble_name("Receiver A");
  cfg.save_ble_name("Receiver B");
  cfg.save_port(10110);
  run();
  choose(sheet().ble_history(), "Receiver A");
  EXPECT_EQ(sheet().ble_name_field()->text(), "Receiver A");
  sheet().ble_revert_button()->click();
  run();
  EXPECT_EQ(cfg.ble_name.get(), "Receiver B");
  choose(sheet().port_history(), "10110");
  EXPECT_EQ(std::pair(sheet().port_field()->text(), cfg.port.get()), std::pair(QString("10110"), std::uint16_t{10110}));
  ASSERT_FALSE(store.values.empty());
  sheet().delete_button()->click();
  run();
  EXPECT_TRUE(store.values.empty());
}

TEST_F(config_connection_view_test, bridge_drops_both_links_and_reconnects_in_the_new_mode) {
  cfg.set_enable_ble(false);
  view.connect_or_disconnect();  // TCP
  view.sheets().show(sheet_id_t::settings, true);
  run();
  EXPECT_TRUE(sheet().disconnect_button()->isVisible() && sheet().status_line()->text().contains("127.0.0.1:81"));

  sheet().bridge_button()->click();
  run();
  EXPECT_TRUE(cfg.enable_bridge());
  EXPECT_FALSE(window.settings_dialog().isVisible());
  EXPECT_EQ(std::tuple(hub.links.tcp->stops, hub.links.tcp->connects.size(), hub.hub.ble_enabled()),
            std::tuple(1, 2u, true));

  view.sheets().show(sheet_id_t::settings, true);
  run();
  EXPECT_TRUE(sheet().bridge_button()->isChecked()) << "drawn highlighted";
  sheet().disconnect_button()->click();
  run();
  EXPECT_TRUE(!sheet().disconnect_button()->isVisible() && sheet().status_line()->text().contains("offline"));
}

struct listed_ports_t final : serial_port_list_t {
  std::vector<serial_port_info_t> ports() const override { return listed; }
  std::vector<serial_port_info_t> listed;
};

// A receiver on a serial port: picked from the list by what the user recognises, remembered by its
// by-id name, connected alone; a typed address that does not read is red and says why.
TEST_F(config_connection_view_test, a_port_from_the_list_is_remembered_by_its_by_id_name_and_connected_alone) {
  listed_ports_t machine;
  machine.listed = {{"/dev/ttyS0", "", "", ""}};
  for (QWidget* control :
       std::initializer_list<QWidget*>{sheet().port_list(), sheet().refresh_ports_button(), sheet().source_field(),
                                       sheet().source_connect_button(), sheet().source_history()})
    EXPECT_TRUE(control->isVisibleTo(&sheet())) << control->metaObject()->className();
  EXPECT_FALSE(sheet().source_field()->accessibleName().isEmpty() || sheet().port_list()->accessibleName().isEmpty());
  EXPECT_EQ(sheet().port_list()->placeholderText(), "no serial port found");
  sheet().set_port_list(&machine);
  EXPECT_EQ(sheet().port_list()->count(), 1);
  EXPECT_EQ(sheet().port_list()->placeholderText(), "choose a serial port");
  machine.listed.push_back(
      {"/dev/ttyACM0", "/dev/serial/by-id/usb-u-blox_AG_GNSS_receiver-if00", "1546:01a8", "u-blox GNSS receiver"});
  sheet().refresh_ports_button()->click();
  ASSERT_EQ(sheet().port_list()->count(), 2);
  EXPECT_EQ(sheet().port_list()->itemText(1),
            "/dev/ttyACM0  usb-u-blox_AG_GNSS_receiver-if00  1546:01a8  u-blox GNSS receiver");

  for (const auto& [typed, valid] :
       {std::pair{"serial:dev/ttyACM0", false}, {"udp://:99999", false}, {"gpsd://localhost", true}}) {
    type(sheet().source_field(), typed);
    EXPECT_EQ(text_of(sheet().source_field()), colour(valid ? colour_t::primary : colour_t::red)) << typed;
    EXPECT_EQ(sheet().source_error()->isVisible(), !valid) << typed;
    EXPECT_EQ(sheet().source_connect_button()->isEnabled(), valid) << typed;
  }

  sheet().port_list()->activated(1);
  EXPECT_EQ(sheet().source_field()->text(), "serial:///dev/serial/by-id/usb-u-blox_AG_GNSS_receiver-if00");
  sheet().source_connect_button()->click();
  run();
  EXPECT_EQ(cfg.history_source.get().front(), "serial:///dev/serial/by-id/usb-u-blox_AG_GNSS_receiver-if00");
  EXPECT_TRUE(cfg.enable_source());
  EXPECT_FALSE(window.settings_dialog().isVisible());
  ASSERT_NE(hub.links.source, nullptr);
  EXPECT_EQ(hub.links.source->where.path, "/dev/serial/by-id/usb-u-blox_AG_GNSS_receiver-if00");
  EXPECT_TRUE(hub.hub.source_enabled() && !hub.hub.tcp_enabled() && !hub.hub.ble_enabled()) << "the serial link alone";

  view.sheets().show(sheet_id_t::settings, true);
  run();
  EXPECT_TRUE(sheet().status_line()->text().contains("serial:///dev/serial/by-id/usb-u-blox_AG_GNSS_receiver-if00"));
  sheet().ip_connect_button()->click();
  run();
  EXPECT_FALSE(cfg.enable_source()) << "TCP's Connect turns the serial link off";
  EXPECT_TRUE(hub.hub.tcp_enabled() && !hub.hub.source_enabled());
}

// A dialog 300 points high scrolls: its fields keep their height instead of vanishing.
TEST_F(config_connection_view_test, a_low_dialog_scrolls_and_keeps_every_field) {
  window.settings_dialog().resize(500, 300);
  run();
  EXPECT_EQ(window.settings_dialog().height(), 300) << "small screens hold it";
  for (QLineEdit* field : {sheet().ble_name_field(), sheet().host_field(), sheet().port_field()})
    EXPECT_GE(field->height(), field->minimumSizeHint().height());
}

}  // namespace
