#include "ui/gps_sat_list_view.h"

#include <gtest/gtest.h>

#include <QLabel>

#include "ui/palette.h"
#include "ui/progress_view.h"
#include "ui_test_app.h"
#include "view_hub.h"

namespace {

class sat_list_test : public ::testing::Test {
protected:
  bool app_ = (ui_test_app(), true);
  view_hub_t hub;
  gps_sat_list_view list{hub.hub};
};

TEST_F(sat_list_test, rows_in_prn_order_dim_unless_heard_and_placed_with_snr_bars) {
  hub.receive(gsv_body(
      4, {{"12", "45", "200", "99"}, {"03", "10", "020", "00"}, {"07", "", "", "30"}, {"30", "60", "300", "40"}}));
  settle();
  const struct {
    const char* text;
    colour_t colour;
    float progress;
  } rows[] = {
      {" 3  elevation 10  azimuth  20  SNR  0", colour_t::secondary, 0.0f},           // silent
      {" 7  elevation  0  azimuth   0  SNR 30", colour_t::secondary, 30.0f / 99.0f},  // no position
      {"12  elevation 45  azimuth 200  SNR 99", colour_t::primary, 1.0f},
      {"30  elevation 60  azimuth 300  SNR 40", colour_t::primary, 40.0f / 99.0f},
  };
  ASSERT_EQ(list.row_count(), std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(list.row_label(i).text().toStdString(), rows[i].text);
    EXPECT_EQ(list.row_label(i).palette().color(QPalette::WindowText), colour_of(rows[i].colour, list.palette()))
        << rows[i].text;
    EXPECT_NEAR(list.row_gauge(i).drawn_progress(), rows[i].progress, 1e-6) << rows[i].text;
    EXPECT_EQ(list.row_gauge(i).value().colour, colour_of(colour_t::secondary, list.palette()));
  }
}

TEST_F(sat_list_test, rows_follow_the_table_as_satellites_come_and_age_out) {
  hub.receive(gsv_body(2, {{"20", "45", "200", "35"}, {"05", "10", "020", "25"}}));
  settle();
  const QLabel* row_of_20 = &list.row_label(1);
  hub.queue.advance(6.0);
  hub.receive(gsv_body(2, {{"20", "46", "201", "36"}, {"11", "12", "100", "20"}}));
  hub.queue.advance(6.0);  // PRN 5 is now 12 s old, PRNs 11 and 20 six
  hub.receive(gsv_body(2, {{"40", "50", "050", "33"}}));
  settle();
  ASSERT_EQ(list.row_count(), 3u);
  EXPECT_EQ(list.row_label(0).text().left(2), "11");
  EXPECT_EQ(list.row_label(1).text().toStdString(), "20  elevation 46  azimuth 201  SNR 36");
  EXPECT_EQ(&list.row_label(1), row_of_20) << "a satellite that stays keeps its row";
  EXPECT_EQ(list.row_label(2).text().left(2), "40");
  hub.hub.reset();
  settle();
  EXPECT_EQ(list.row_count(), 0u);
}

}  // namespace
