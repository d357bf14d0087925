#include <gtest/gtest.h>

#include <QAbstractButton>

#include "main_screen.h"
#include "ui/map_panel.h"
#include "ui/palette.h"
#include "ui/round_button.h"
#include "ui/text_runs.h"

namespace {

// Every colour that writes text reaches 4.5:1 on the window: the light and dark themes, and a
// desktop whose highlight is too pale to read.
TEST(accessibility, every_text_colour_reads_on_the_window_in_every_theme) {
  ui_test_app();
  QPalette pale = QApplication::palette();
  pale.setColor(QPalette::Highlight, QColor(150, 200, 255));
  for (const QPalette& theme : {QApplication::palette(), dark_palette(), pale})
    for (const colour_t c : {colour_t::primary, colour_t::secondary, colour_t::tertiary, colour_t::accent,
                             colour_t::blue, colour_t::green, colour_t::orange, colour_t::red, colour_t::purple})
      EXPECT_GE(contrast_ratio(colour_of(c, theme), theme.color(QPalette::Window)), min_text_contrast)
          << static_cast<int>(c) << (is_dark(theme) ? " dark" : " light");
}

struct accessibility_test : ::testing::Test, main_screen_t {};

// Tab reaches every control of the screen; a pictogram has a name and a tooltip and shows a ring
// while it has the focus.
TEST_F(accessibility_test, tab_reaches_every_control_each_named_and_ringed_when_focused) {
  QList<QWidget*> reached;
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  view.time_date_button()->setFocus();
  for (int i = 0; i < 40 && !reached.contains(QApplication::focusWidget()); ++i) {
    reached << QApplication::focusWidget();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
  for (auto* button : view.findChildren<QAbstractButton*>()) {
    if (!button->isVisible() || button->focusPolicy() == Qt::NoFocus) continue;
    EXPECT_TRUE(reached.contains(button)) << button->accessibleName().toStdString();
    if (dynamic_cast<text_runs_t*>(button) == nullptr) {
      EXPECT_FALSE(button->accessibleName().isEmpty() || button->toolTip().isEmpty());
    }
  }
  auto* settings = view.map_panel()->settings_button();
  const auto look = [&] { return settings->grab().toImage(); };
  settings->clearFocus();
  const QImage plain = look();
  settings->setFocus();
  EXPECT_NE(look(), plain) << "the focus shows";
}

TEST_F(accessibility_test, texts_follow_the_desktop_font_size) {
  const auto fix_size = [&] { return view.fix_button()->runs()[0].font.pointSizeF(); };
  const double before = fix_size();
  QFont larger = view.font();
  larger.setPointSizeF(larger.pointSizeF() * 2);
  view.setFont(larger);
  run();
  EXPECT_DOUBLE_EQ(fix_size(), 2 * before);
}

}  // namespace
