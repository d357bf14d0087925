#include "ui/main_window.h"

#include <gtest/gtest.h>

#include <QDockWidget>
#include <QLabel>
#include <QMenuBar>
#include <QProcess>
#include <QTemporaryDir>

#include "link/connection.h"
#include "main_screen.h"
#include "ui/gps_sky_view.h"
#include "ui/link_status_bar.h"

namespace {

struct main_window_test : ::testing::Test, main_screen_t {
  main_window_test() {
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  }
  bool shown(sheet_id_t sheet) { return !window.dock(sheet)->isHidden() && window.sheets().shown(sheet); }
};

TEST_F(main_window_test, menus_and_keys_reach_the_docks_the_dialog_and_the_link) {
  QStringList menus;
  for (QAction* menu : window.menuBar()->actions()) menus << menu->text().remove('&');
  EXPECT_EQ(menus, (QStringList{"File", "Connection", "View", "Help"}));
  EXPECT_EQ(window.action("Quit")->shortcut(), QKeySequence(QKeySequence::Quit));

  const std::tuple<QKeySequence, sheet_id_t> keys[] = {
      {QKeySequence(Qt::CTRL | Qt::Key_L), sheet_id_t::log},
      {QKeySequence(Qt::Key_QuoteLeft), sheet_id_t::log},
      {QKeySequence(Qt::CTRL | Qt::Key_1), sheet_id_t::log},
      {QKeySequence(Qt::CTRL | Qt::Key_2), sheet_id_t::satellites},
      {QKeySequence(Qt::CTRL | Qt::Key_4), sheet_id_t::details},
  };
  for (const auto& [key, sheet] : keys)
    for (const bool open : {true, false}) {
      QTest::keySequence(&window, key);
      run();
      EXPECT_EQ(shown(sheet), open) << key.toString().toStdString();
    }
  QTest::keyClick(&window, Qt::Key_QuoteLeft, Qt::ControlModifier);
  EXPECT_FALSE(shown(sheet_id_t::log)) << "only the bare backquote";

  view.fix_button()->click();
  run();
  EXPECT_TRUE(shown(sheet_id_t::satellites) && shown(sheet_id_t::details)) << "the fix opens both";
  for (QWidget* plot : window.dock(sheet_id_t::satellites)->findChildren<QWidget*>())
    if (dynamic_cast<gps_sky_view*>(plot)) QTest::mouseClick(plot, Qt::LeftButton, {}, plot->rect().center());
  run();
  EXPECT_TRUE(shown(sheet_id_t::satellites)) << "a click on the sky plot leaves it open";
  window.dock(sheet_id_t::details)->close();
  run();
  EXPECT_FALSE(window.sheets().shown(sheet_id_t::details)) << "a closed dock clears its flag";

  window.action("Settings...")->trigger();
  run();
  EXPECT_TRUE(window.settings_dialog().isVisible());
  window.settings_dialog().reject();
  run();
  EXPECT_FALSE(window.sheets().shown(sheet_id_t::settings));
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));

  cfg.set_enable_ble(false);
  run();
  EXPECT_TRUE(window.action("TCP")->isChecked()) << "the menu follows the settings";
  QTest::keySequence(&window, QKeySequence(Qt::CTRL | Qt::Key_K));
  run();
  EXPECT_TRUE(hub.hub.tcp_enabled());
  EXPECT_NE(window.action("Disconnect"), nullptr) << "the entry says what it will do";
  window.action("Bluetooth LE")->trigger();
  run();
  EXPECT_TRUE(hub.hub.ble_enabled() && !hub.hub.tcp_enabled()) << "a wanted link moves to the new kind";
  EXPECT_TRUE(window.action("Bluetooth LE")->isChecked() && !window.action("TCP")->isChecked());

  // Serial, UDP and gpsd: each connects its address at once (which address is the settings' test).
  for (const char* kind : {"Serial port", "UDP", "gpsd"}) {
    window.action(kind)->trigger();
    run();
    EXPECT_TRUE(hub.hub.source_enabled() && !hub.hub.ble_enabled()) << kind;
    EXPECT_TRUE(window.action(kind)->isChecked() && !window.action("Bluetooth LE")->isChecked()) << kind;
  }
  EXPECT_EQ(hub.links.source->where.text(), "gpsd://127.0.0.1:2947");
  QTest::keySequence(&window, QKeySequence(Qt::CTRL | Qt::Key_K));
  run();
  EXPECT_TRUE(!hub.hub.source_enabled() && window.action("Connect"));
}

// Each second the bar samples the counters; each hint stands until the link shows what it lacks.
TEST_F(main_window_test, status_bar_shows_rates_errors_fix_age_and_the_hint_for_what_is_missing) {
  auto& bar = window.status();
  // The link, the hint, the rates, the errors and the age of the fix.
  const auto texts = [&] {
    bar.tick();
    return QStringList{bar.state().text(), bar.hint().text(), bar.rates().text(), bar.errors().text(),
                       bar.fix_age().text()}
        .join(" | ")
        .toStdString();
  };
  EXPECT_EQ(texts(), "offline |  | 0 B/s  0 sentences/s | checksum errors 0 | no fix");
  cfg.set_enable_ble(false);
  view.connect_or_disconnect();
  EXPECT_EQ(texts(), "TCP connecting to 127.0.0.1:81 |  | 0 B/s  0 sentences/s | checksum errors 0 | no fix");
  hub.links.tcp->is_valid = true;
  hub.hub.tcp_events().link_up("127.0.0.1:81");
  hub.queue.advance(3.0);
  EXPECT_EQ(texts(),
            "TCP connected to 127.0.0.1:81 | no data: check the address or baud rate | 0 B/s  0 sentences/s"
            " | checksum errors 0 | no fix");
  feed(*hub.links.tcp_events, std::string(1499, 'x') + "\n");
  hub.queue.advance(3.0);
  EXPECT_EQ(texts(),
            "TCP connected to 127.0.0.1:81 | data but no valid sentences: wrong baud rate or protocol? | "
            "500 B/s  0 sentences/s | checksum errors 0 | no fix");
  hub.receive(gsv_body(7, {}));
  const std::string no_fix = with_checksum("$GPGGA,123519,,,,,0,00,,,M,,M,,");
  for (int i = 0; i < 20; ++i) feed_line(*hub.links.tcp_events, no_fix);
  feed_line(*hub.links.tcp_events, no_fix.substr(0, no_fix.size() - 1) + "0");
  hub.queue.advance(2.0);
  EXPECT_EQ(texts(),
            "TCP connected to 127.0.0.1:81 | no fix yet: 7 satellites in view | 385 B/s  10 sentences/s | "
            "checksum errors 1 | no fix");
  feed_line(*hub.links.tcp_events, with_checksum("$GPGGA,123520,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"));
  hub.queue.advance(1.0);
  EXPECT_EQ(texts(), "TCP connected to 127.0.0.1:81 |  | 66 B/s  1 sentences/s | checksum errors 1 | last fix 0 s ago");
  hub.queue.advance(5.0);
  EXPECT_EQ(texts().substr(texts().rfind('|')), "| last fix 5 s ago");
  hub.links.tcp->is_valid = false;
  hub.hub.tcp_events().link_down("127.0.0.1:81", ECONNREFUSED);
  EXPECT_EQ(texts().substr(0, 46), "TCP 127.0.0.1:81: Connection refused, retrying");
}

TEST(window_layout, size_docks_and_theme_come_back_in_a_new_process) {
  QTemporaryDir dir;
  const auto probe = [&](const QString& mode) {
    QProcess process;
    process.start(WINDOW_PROBE, {mode, dir.filePath("korvid.ini")});
    EXPECT_TRUE(process.waitForFinished(10000) && process.exitCode() == 0) << mode.toStdString();
    return process.readAllStandardOutput().toStdString();
  };
  EXPECT_EQ(probe("show"), "size 400x300 dark 0 history 10 | area 8 shown 0 | area 2 shown 0 | area 2 shown 0\n");
  probe("save");
  EXPECT_EQ(probe("show"), "size 900x560 dark 1 history 60 | area 1 shown 1 | area 2 shown 0 | area 2 shown 0\n");
}

}  // namespace
