#include "ui/config_connection_view.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include "main_screen.h"
#include "ui/palette.h"
#include "ui/sheet.h"

namespace {

// The settings sheet as the main screen opens it.
struct settings_sheet_t : main_screen_t {
  settings_sheet_t() {
    view.sheets().show(sheet_id_t::settings, true);
    run();
  }
  config_connection_view& sheet() { return *static_cast<config_connection_view*>(view.settings_sheet()->content()); }
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

TEST(config_connection_view, an_invalid_host_turns_red_and_revert_or_closing_puts_back_the_last_good_one) {
  const struct {
    const char* name;
    QString typed;
    bool valid;
  } cases[] = {
      {"octet above 255", "192.168.1.256", false},
      {"not a dotted quad", "gps.local", false},
      {"a good address", "192.168.1.20", true},
  };
  for (const auto& c : cases) {
    settings_sheet_t s;
    auto& sheet = s.sheet();
    s.type(sheet.host_field(), c.typed);
    EXPECT_EQ(s.cfg.host_valid.get(), c.valid) << c.name;
    EXPECT_EQ(s.text_of(sheet.host_field()), s.colour(c.valid ? colour_t::primary : colour_t::red)) << c.name;
    EXPECT_EQ(s.text_of(sheet.ip_connect_button()), s.colour(c.valid ? colour_t::green : colour_t::secondary))
        << c.name;
    sheet.ip_revert_button()->click();
    s.run();
    EXPECT_EQ(sheet.host_field()->text(), c.valid ? c.typed : "127.0.0.1") << c.name;
  }
  settings_sheet_t s;
  s.type(s.sheet().port_field(), "99999");
  EXPECT_EQ(s.text_of(s.sheet().port_field()), s.colour(colour_t::red));
  s.sheet().close_button()->click();
  s.run();
  EXPECT_FALSE(s.view.settings_sheet()->isVisible());
  EXPECT_TRUE(s.cfg.port_valid) << "closing put the last good port back";
  EXPECT_EQ(s.cfg.port_bind(), "81");
}

TEST(config_connection_view, ble_connect_with_an_empty_name_is_dimmed_but_still_connects) {
  settings_sheet_t s;
  s.cfg.set_enable_ble(false);
  s.type(s.sheet().ble_name_field(), "");
  EXPECT_EQ(s.text_of(s.sheet().ble_connect_button()), s.colour(colour_t::secondary));
  s.sheet().ble_connect_button()->click();
  s.run();
  EXPECT_TRUE(s.cfg.enable_ble());
  EXPECT_FALSE(s.view.sheets().shown(sheet_id_t::settings));
  EXPECT_TRUE(s.hub.hub.ble_enabled() && !s.hub.hub.tcp_enabled()) << "BLE only";
}

TEST(config_connection_view, history_entries_fill_the_fields_revert_takes_the_first_and_delete_forgets_them) {
  settings_sheet_t s;
  s.cfg.save_ble_name("Receiver A");
  s.cfg.save_ble_name("Receiver B");
  s.cfg.save_port(10110);
  s.run();
  auto& sheet = s.sheet();
  s.choose(sheet.ble_history(), "Receiver A");
  EXPECT_EQ(s.cfg.ble_name.get(), "Receiver A");
  EXPECT_EQ(sheet.ble_name_field()->text(), "Receiver A");
  sheet.ble_revert_button()->click();
  s.run();
  EXPECT_EQ(s.cfg.ble_name.get(), "Receiver B");
  s.choose(sheet.port_history(), "10110");
  EXPECT_EQ(sheet.port_field()->text(), "10110");
  EXPECT_EQ(s.cfg.port.get(), 10110);
  ASSERT_FALSE(s.store.values.empty());
  sheet.delete_button()->click();
  s.run();
  EXPECT_TRUE(s.store.values.empty());
}

TEST(config_connection_view, bridge_drops_both_links_and_reconnects_in_the_new_mode) {
  settings_sheet_t s;
  s.cfg.set_enable_ble(false);
  s.view.connect_or_disconnect();  // TCP
  s.view.sheets().show(sheet_id_t::settings, true);
  s.run();
  EXPECT_TRUE(s.sheet().disconnect_button()->isVisible());
  EXPECT_TRUE(s.sheet().status_line()->text().contains("127.0.0.1:81"));

  s.sheet().bridge_button()->click();
  s.run();
  EXPECT_TRUE(s.cfg.enable_bridge());
  EXPECT_FALSE(s.view.settings_sheet()->isVisible());
  EXPECT_EQ(s.hub.links.tcp->stops, 1);
  EXPECT_EQ(s.hub.links.tcp->connects.size(), 2u);
  EXPECT_TRUE(s.hub.hub.ble_enabled());

  s.view.sheets().show(sheet_id_t::settings, true);
  s.run();
  EXPECT_TRUE(s.sheet().bridge_button()->isChecked()) << "drawn highlighted";
  s.sheet().disconnect_button()->click();
  s.run();
  EXPECT_FALSE(s.sheet().disconnect_button()->isVisible());
  EXPECT_TRUE(s.sheet().status_line()->text().contains("offline"));
}

}  // namespace
