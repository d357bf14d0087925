#include "ui/gps_details_view.h"

#include <gtest/gtest.h>

#include <QVBoxLayout>

#include "map/gps_heading.h"
#include "ui/gps_dop_view.h"
#include "ui/gps_sat_list_view.h"
#include "ui/gps_sky_view.h"
#include "ui/open_sheets.h"
#include "ui_test_app.h"
#include "view_hub.h"

namespace {

class details_view_test : public ::testing::Test {
protected:
  bool app_ = (ui_test_app(), true);
  view_hub_t hub;
  open_sheets_t sheets{hub.hub};

  // Portrait: plot, list and panel one above the other. Landscape: plot and list side by side,
  // top-aligned, above the panel.
  static void expect_arrangement(const gps_details_view& details, bool portrait) {
    ASSERT_EQ(details.portrait(), portrait);
    const auto place = [&](const QWidget& part) { return QRect(part.mapTo(&details, QPoint()), part.size()); };
    const QRect sky = place(details.sky_view()), list = place(details.sat_list()), dop = place(details.dop_view());
    if (portrait) {
      EXPECT_LE(sky.bottom(), list.top());
      EXPECT_LE(list.bottom(), dop.top());
    } else {
      EXPECT_LE(sky.right(), list.left());
      EXPECT_EQ(sky.top(), list.top());
      EXPECT_LE(sky.bottom(), dop.top());
    }
  }
};

TEST_F(details_view_test, the_sky_plot_follows_the_window_orientation_with_a_new_compass) {
  hub.receive(gsv_body(2, {{"12", "45", "200", "40"}, {"03", "10", "020", "30"}}));
  QWidget window;
  auto* details = new gps_details_view(hub.hub, sheets);
  (new QVBoxLayout(&window))->addWidget(details);
  window.resize(420, 1000);
  window.show();
  settle();
  expect_arrangement(*details, true);
  const gps_heading_t* first = &details->compass();
  window.resize(1000, 700);
  settle();
  expect_arrangement(*details, false);
  EXPECT_NE(&details->compass(), first);
  const gps_sky_view* plot = &details->sky_view();
  window.resize(1100, 700);
  EXPECT_EQ(&details->sky_view(), plot) << "the same orientation keeps the plot";
}

}  // namespace
