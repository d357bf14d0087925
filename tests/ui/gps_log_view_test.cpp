#include "ui/gps_log_view.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

#include "support/records.h"
#include "support/ui_test_app.h"
#include "ubx/record_text.h"
#include "ui/open_sheets.h"
#include "ui/palette.h"
#include "view_hub.h"

namespace {

const std::string gga1 = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47";
const std::string gga2 = with_checksum("$GPGGA,123520,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
const std::string rmc = "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A";

class log_view_test : public ::testing::Test {
protected:
  bool app_ = (ui_test_app(), true);
  view_hub_t hub;
  open_sheets_t sheets{hub.hub};
  gps_log_view view{hub.hub, sheets};
  bool shown_ = (view.show(), true);

  QColor colour(colour_t c) const { return colour_of(c, view.palette()); }
  static QColor text_colour(const QWidget& w) { return w.palette().color(QPalette::ButtonText); }
  std::string shown() const { return view.log_text().toPlainText().toStdString(); }
  // The binary mark, if shown, and the log's font size.
  std::string mark() const {
    return (view.binary_label().isHidden() ? "" : view.binary_label().text().toStdString()) + " " +
           std::to_string(layout_size(view.log_text().font()));
  }
};

TEST_F(log_view_test, shows_the_lines_and_the_filter_decides_about_lines_to_come) {
  feed_line(hub.hub.tcp_events(), gga1);
  feed_line(hub.hub.tcp_events(), rmc);  // not logged while the filter is on GGA
  settle();
  EXPECT_EQ(shown(), gga1);
  EXPECT_EQ(view.title_label().palette().color(QPalette::WindowText), colour(colour_t::primary));
  EXPECT_EQ(std::pair(view.filter_button().text(), text_colour(view.filter_button())),
            std::pair(QString("GGA"), colour(colour_t::secondary)));
  view.filter_button().click();
  EXPECT_TRUE(hub.hub.show_all);
  feed_line(hub.hub.tcp_events(), rmc);
  feed_line(hub.hub.tcp_events(), gga2);
  settle();
  EXPECT_EQ(view.filter_button().text(), "All");
  EXPECT_EQ(shown(), gga1 + "\n" + rmc + "\n" + gga2);
}

TEST_F(log_view_test, clear_empties_the_log_and_restarts_the_counters) {
  for (int i = 0; i < 12; ++i) feed_line(hub.hub.tcp_events(), gga1);
  settle();
  EXPECT_EQ(text_colour(view.clear_button()), colour(colour_t::secondary));
  view.clear_button().click();
  EXPECT_EQ(
      std::tuple(hub.hub.arr_rx->size(), hub.hub.msg_count + hub.hub.msg_good + hub.hub.msg_ack_count, hub.hub.msg_ack),
      std::tuple(0u, 0u, false));
  settle();
  EXPECT_EQ(shown(), "");
  EXPECT_EQ(text_colour(view.clear_button()), colour(colour_t::tertiary)) << "dimmed while the log is empty";
}

TEST_F(log_view_test, binary_records_show_larger_under_a_mark) {
  auto frame = frame_of(image_of(pvt_record()));
  frame.back() ^= 0xFF;  // a checksum error: one more log entry
  hub.hub.tcp_events().link_bytes(frame);
  settle();
  EXPECT_EQ(mark(), "binary 13");
  feed_line(hub.hub.ble_events(), gga2);  // text from the other link
  settle();
  EXPECT_EQ(mark(), " 11");
}

TEST_F(log_view_test, with_all_the_latest_sky_records_follow_the_binary_log) {
  const auto sat = list_record<gps_sat_t>({{0, 5, 38, 45, 123, -12, 0x1F}});
  const gps_dop_t dop{
      ubx_class_nav, gps_dop_t::message_id, gps_dop_t::payload_length, 0, 156, 145, 77, 127, 91, 61, 68};
  for (const auto& frame : {frame_of(image_of(valid_pvt())), frame_of(image_of(sat)), frame_of(image_of(dop))})
    hub.hub.tcp_events().link_bytes(frame);
  settle();
  std::string pvt_text, dop_text, sat_text;
  append_text(pvt_text, valid_pvt());
  append_text(dop_text, dop);
  append_text(sat_text, sat);
  EXPECT_EQ(shown(), pvt_text);
  view.filter_button().click();
  settle();
  EXPECT_EQ(shown(), pvt_text + "\n" + dop_text + "\n" + sat_text);
}

// The backquote key that also closes the log is tried on the window (main_window_test).
TEST_F(log_view_test, close_closes_the_log_and_the_hub_keeps_more_while_open) {
  sheets.show(sheet_id_t::log, true);
  for (int i = 0; i < 45; ++i) feed_line(hub.hub.tcp_events(), gga1);
  EXPECT_EQ(hub.hub.arr_rx->size(), 40u);
  view.close_button().click();
  EXPECT_FALSE(sheets.shown(sheet_id_t::log));
  feed_line(hub.hub.tcp_events(), gga1);
  EXPECT_EQ(hub.hub.arr_rx->size(), 30u);
}

}  // namespace
