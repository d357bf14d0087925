#include "ui/session_controller.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QSlider>
#include <QTimer>
#include <QToolButton>
#include <QUrl>
#include <fstream>

#include "main_screen.h"
#include "ui/link_status_bar.h"
#include "ui/player_bar.h"

namespace {

// The window with its sessions, and a capture of three epochs a second apart on disk.
struct session_controller_test : ::testing::Test, main_screen_t {
  session_controller_test() {
    std::ofstream out(capture.toStdString(), std::ios::binary);
    for (const char* time : {"120000.00", "120001.00", "120002.00"})
      out << with_checksum(std::string("$GPGGA,") + time + ",4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,")
          << "\r\n";
  }

  QTemporaryDir dir;
  QString capture = dir.filePath("drive.nmea");
  session_controller_t& session = *new session_controller_t(window, hub.hub, hub.queue, hub.console);
  player_bar_t& bar = session.bar();
};

TEST_F(session_controller_test, plays_a_capture_from_the_file_menu_with_the_player_bar) {
  EXPECT_FALSE(bar.isVisibleTo(&window));
  session.choose_capture = [this] { return capture; };
  window.action("Open capture...")->trigger();
  hub.queue.run_pending();
  run();
  EXPECT_TRUE(bar.isVisibleTo(&window));
  EXPECT_EQ(hub.hub.gga.time.ss, 0);
  EXPECT_EQ(bar.status().text(), "file drive.nmea 1x 12:00:00");
  EXPECT_EQ(bar.play_button().toolTip(), "Pause");

  bar.speed_box().setCurrentIndex(bar.speed_box().findText("10x"));
  hub.queue.advance(0.1);
  run();
  EXPECT_EQ(hub.hub.gga.time.ss, 1);
  bar.play_button().click();
  hub.queue.advance(5);
  run();
  EXPECT_EQ(bar.status().text(), "file drive.nmea paused");
  EXPECT_EQ(bar.seek_slider().value(), bar.value_at(session.player().offset()));
  bar.step_button().click();
  run();
  EXPECT_EQ(hub.hub.gga.time.ss, 2);
  EXPECT_EQ(bar.status().text(), "file drive.nmea end");
  EXPECT_FALSE(bar.step_button().isEnabled());
  QString gpx = dir.filePath("track.gpx");
  session.choose_export = [&gpx] { return gpx; };
  window.action("Export track...")->trigger();
  QFile exported(gpx);
  ASSERT_TRUE(exported.open(QIODevice::ReadOnly));
  EXPECT_EQ(exported.readAll().count("<trkpt"), 3);

  // The seek bar's start plays the capture again from what a reset leaves.
  bar.seek_slider().triggerAction(QAbstractSlider::SliderToMinimum);
  EXPECT_EQ(session.player().offset(), 0U);
  EXPECT_EQ(hub.hub.msg_good, 0U);
  EXPECT_TRUE(session.track().points().empty());
  EXPECT_TRUE(hub.console.lines.back().ends_with("connected to file drive.nmea"));
}

TEST_F(session_controller_test, a_dropped_file_plays_and_a_live_link_closes_it) {
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(capture)});
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(&window, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(&window, &drop);
  run();
  EXPECT_TRUE(session.player().is_open());
  window.status().tick();
  EXPECT_EQ(window.status().state().text(), "file drive.nmea 1x 12:00:00");
  EXPECT_EQ(window.content().status_button()->joined(), "file drive.nmea 1x 12:00:00");
  hub.hub.connect_tcp("127.0.0.1", 10110);
  run();
  EXPECT_FALSE(session.player().is_open());
  EXPECT_FALSE(bar.isVisibleTo(&window));
}

TEST_F(session_controller_test, records_from_the_file_menu_with_a_red_dot_in_the_status_bar) {
  // Record options: a bad text keeps what was chosen, an empty one records to one file.
  const std::vector<std::pair<QString, record_rotation_t>> options{
      {"6h", {0, 21600}}, {"6x", {0, 21600}}, {"", {}}, {"100M", {100ULL << 20U, 0}}};
  for (const auto& [text, rotation] : options) {
    session.choose_rotation = [answer = text] { return std::optional<QString>(answer); };
    QTimer::singleShot(0, [] {
      if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) box->accept();
    });
    window.action("Record options...")->trigger();
    EXPECT_EQ(session.rotation(), rotation) << text.toStdString();
  }
  session.choose_rotation = [] { return std::optional<QString>(""); };
  window.action("Record options...")->trigger();
  QString file = dir.filePath("rec.nmea");
  session.choose_recording = [&file] { return file; };
  QAction* record = window.action("Record");
  record->trigger();
  run();
  const QLabel* label = window.status().recording();
  ASSERT_NE(label, nullptr);
  EXPECT_TRUE(record->isChecked());
  EXPECT_TRUE(label->isVisibleTo(&window));
  hub.receive("$GPGGA,120000.00,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
  hub.queue.advance(recorder_t::flush_interval_s);
  run();
  EXPECT_EQ(label->text().toStdString(), "<span style=\"color:#d32f2f\">\u25CF</span> rec.nmea 69 B");
  record->trigger();
  run();
  EXPECT_FALSE(record->isChecked());
  EXPECT_FALSE(label->isVisibleTo(&window));
  EXPECT_EQ(QFileInfo(file).size(), 69);
}

}  // namespace
