#include "ui/console_dock.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include "command/hex_text.h"
#include "link/command_settings.h"
#include "link/memory_kv_store.h"
#include "link/receiver_console.h"
#include "support/fake_links.h"
#include "support/recording_console.h"
#include "support/test_queue.h"
#include "support/ui_test_app.h"

namespace {

struct console_dock_test : ::testing::Test {
  console_dock_test() {
    commands.set_poll_identity(false);
    hub.connect_tcp("127.0.0.1", 10110);
    links.tcp->is_valid = true;
    hub.tcp_events().link_up("127.0.0.1:10110");
  }
  std::vector<std::string> sent() {
    std::vector<std::string> out;
    for (const auto& bytes : links.tcp->sent) out.push_back(hex_text(bytes));
    links.tcp->sent.clear();
    return out;
  }
  void type(const QString& text) {
    dock.input().setFocus();
    dock.input().lineEdit()->setText(text);
    QTest::keyClick(dock.input().lineEdit(), Qt::Key_Return);
  }

  bool app_ = (ui_test_app(), true);
  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  connection_t hub{queue, console, links};
  receiver_console_t commands{hub, queue, console};
  memory_kv_store_t store;
  command_settings_t settings{store};
  std::string address = "tcp://127.0.0.1:10110";
  console_dock_t dock{commands, settings, [this] { return address; }};
};

TEST_F(console_dock_test, SendsTypedAndPickedCommandsAndReplaysThemAsAPreset) {
  type("ubx:0a,04");
  type("set:CFG-RATE-FAST=1");
  EXPECT_EQ(dock.error().text(), "set: unknown key 'CFG-RATE-FAST'");
  dock.keys().setCurrentIndex(dock.keys().findText("CFG-RATE-MEAS  (U2)"));
  dock.value().setText("200");
  for (auto* b : dock.findChildren<QPushButton*>())
    if (b->text() == "Set") b->click();
  EXPECT_EQ(dock.error().text(), "");
  const std::vector<std::string> both{"B5 62 0A 04 00 00 0E 34",
                                      "B5 62 06 8A 0A 00 00 01 00 00 01 00 21 30 C8 00 B5 81"};
  EXPECT_EQ(sent(), both);
  EXPECT_EQ(dock.input().itemText(0), "set:CFG-RATE-MEAS=200") << "the newest first in the history";

  dock.save_preset("5 Hz");
  EXPECT_EQ(dock.presets().currentText(), "5 Hz");
  dock.replay_preset("5 Hz");
  EXPECT_EQ(sent(), both);
  QApplication::processEvents();
  EXPECT_EQ(dock.answers().count(), 4);
  EXPECT_EQ(dock.answers().item(3)->text().toStdString(), "12:00:00  sent CFG-VALSET CFG-RATE-MEAS=200");
}

TEST_F(console_dock_test, KeepsTheReadOnlySwitchOfEachLink) {
  dock.read_only().setChecked(true);
  type("$PUBX,00");
  EXPECT_EQ(dock.error().text(), "the link is read-only: nothing is sent");
  EXPECT_TRUE(sent().empty());
  address = "tcp://10.0.0.9:2000";
  dock.follow_link();
  EXPECT_FALSE(dock.read_only().isChecked());
  type("$PUBX,00");
  EXPECT_EQ(sent().size(), 1u);
  address = "tcp://127.0.0.1:10110";
  dock.follow_link();
  EXPECT_TRUE(dock.read_only().isChecked());
  EXPECT_TRUE(commands.read_only());
}

}  // namespace
