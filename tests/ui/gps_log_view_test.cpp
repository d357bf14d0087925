#include "ui/gps_log_view.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include "support/records.h"
#include "ui/palette.h"
#include "ui_test_app.h"
#include "view_hub.h"

namespace {

const std::string gga1 = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47";
const std::string gga2 = with_checksum("$GPGGA,123520,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
const std::string rmc = "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A";

class log_view_test : public ::testing::Test {
protected:
  bool app_ = (ui_test_app(), true);
  view_hub_t hub;
  gps_log_view view{hub.hub};

  QColor colour(colour_t c) const { return colour_of(c, view.palette()); }
  static QColor text_colour(const QWidget& w) { return w.palette().color(QPalette::ButtonText); }
  std::string shown() const { return view.log_text().toPlainText().toStdString(); }
};

TEST_F(log_view_test, shows_the_lines_and_the_filter_decides_about_lines_to_come) {
  feed_line(hub.hub.tcp_events(), gga1);
  feed_line(hub.hub.tcp_events(), rmc);  // not logged while the filter is on GGA
  settle();
  EXPECT_EQ(shown(), gga1);
  EXPECT_EQ(view.title_label().palette().color(QPalette::WindowText), colour(colour_t::primary));
  EXPECT_EQ(view.filter_button().text(), "GGA");
  EXPECT_EQ(text_colour(view.filter_button()), colour(colour_t::secondary));
  view.filter_button().click();
  EXPECT_TRUE(hub.hub.show_all);
  feed_line(hub.hub.tcp_events(), rmc);
  feed_line(hub.hub.tcp_events(), gga2);
  settle();
  EXPECT_EQ(view.filter_button().text(), "All");
  EXPECT_EQ(shown(), gga1 + "\n" + rmc + "\n" + gga2);
}

TEST_F(log_view_test, clear_empties_the_log_and_restarts_the_counters_even_when_empty) {
  const struct {
    const char* name;
    std::vector<std::string> lines;
    colour_t clear_colour;
  } cases[] = {
      {"log with lines", std::vector<std::string>(12, gga1), colour_t::secondary},
      {"empty log, bad lines counted", std::vector<std::string>(4, gga1.substr(0, gga1.size() - 1) + "0"),
       colour_t::tertiary},
  };
  for (const auto& c : cases) {
    for (const auto& line : c.lines) feed_line(hub.hub.tcp_events(), line);
    settle();
    ASSERT_NE(hub.hub.msg_ack_count + hub.hub.msg_count, 0u) << c.name;
    EXPECT_EQ(text_colour(view.clear_button()), colour(c.clear_colour)) << c.name;
    view.clear_button().click();
    EXPECT_TRUE(hub.hub.arr_rx->empty()) << c.name;
    EXPECT_EQ(hub.hub.msg_count + hub.hub.msg_good + hub.hub.msg_ack_count, 0u) << c.name;
    EXPECT_FALSE(hub.hub.msg_ack) << c.name;
    settle();
    EXPECT_EQ(shown(), "") << c.name;
    EXPECT_EQ(text_colour(view.clear_button()), colour(colour_t::tertiary)) << c.name;
  }
}

TEST_F(log_view_test, binary_records_show_larger_under_a_mark) {
  auto frame = frame_of(image_of(pvt_record()));
  frame.back() ^= 0xFF;  // a checksum error: one more log entry
  hub.hub.tcp_events().link_bytes(frame);
  settle();
  EXPECT_FALSE(view.binary_label().isHidden());
  EXPECT_EQ(view.binary_label().text(), "binary");
  EXPECT_EQ(view.log_text().font().pixelSize(), 13);
  feed_line(hub.hub.ble_events(), gga2);  // text from the other link
  settle();
  EXPECT_TRUE(view.binary_label().isHidden());
  EXPECT_EQ(view.log_text().font().pixelSize(), 11);
}

TEST_F(log_view_test, close_and_the_bare_backquote_key_toggle_the_log) {
  hub.hub.show_log = true;
  view.close_button().click();
  EXPECT_FALSE(hub.hub.show_log);
  view.show();
  view.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
  QTest::keyClick(&view, Qt::Key_QuoteLeft);
  EXPECT_TRUE(hub.hub.show_log);
  QTest::keyClick(&view, Qt::Key_QuoteLeft, Qt::ControlModifier);
  EXPECT_TRUE(hub.hub.show_log);
  QTest::keyClick(&view, Qt::Key_QuoteLeft);
  EXPECT_FALSE(hub.hub.show_log);
}

}  // namespace
