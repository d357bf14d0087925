#include "ui/gps_dop_view.h"

#include <gtest/gtest.h>

#include <QLabel>

#include "ui/palette.h"
#include "ui/progress_view.h"
#include "ui_test_app.h"
#include "view_hub.h"

namespace {

class dop_view_test : public ::testing::Test {
protected:
  bool app_ = (ui_test_app(), true);
  view_hub_t hub;
  gps_dop_view panel{hub.hub};
};

TEST_F(dop_view_test, shows_fix_satellites_used_and_dops_with_coloured_bars) {
  hub.receive("$GNGSA,A,3,05,13,15,,,,,,,,,,1.00,2.50,25.00");
  settle();
  EXPECT_EQ(panel.fix_mode_label().text(), "Auto");
  EXPECT_EQ(panel.fix_type_label().text(), "3D fix");
  EXPECT_EQ(panel.used_label().text(), QString::fromUtf8("\xF0\x9F\x9B\xB0 3"));
  EXPECT_EQ(panel.prn_label().text(), " 5 13 15");
  const struct {
    gps_dop_view::dop_row_t row;
    const char* text;
    colour_t colour;
    float progress;
  } rows[] = {
      {gps_dop_view::pdop, "1.00", colour_t::primary, 0.95f},
      {gps_dop_view::hdop, "2.50", colour_t::green, 0.875f},
      {gps_dop_view::vdop, "25.00", colour_t::secondary, 0.0f},
  };
  for (const auto& r : rows) {
    EXPECT_EQ(panel.dop_value_label(r.row).text(), r.text);
    EXPECT_EQ(panel.dop_gauge(r.row).value().colour, colour_of(r.colour, panel.palette())) << r.text;
    EXPECT_NEAR(panel.dop_gauge(r.row).drawn_progress(), r.progress, 1e-6) << r.text;
  }
  hub.hub.gsa.fix_mode_c = "X";  // a letter the decoder would not store itself
  hub.hub.notify();
  settle();
  EXPECT_EQ(panel.fix_mode_label().text(), "invalid");
}

}  // namespace
