#pragma once

#include <QColor>
#include <QVariantAnimation>
#include <QWidget>
#include <optional>

// The bar gauge as a value: a thin bar filled in proportion to progress, over a track, with
// rounded ends. Screens build one on every refresh and hand it to a progress_gauge_t.
struct progress_view_t {
  float progress = 0.0f;         // clamped to 0..1 when drawn
  std::optional<double> width;   // none: the width the layout offers
  double height = 2.0;
  double corner_radius = 4.0;
  QColor colour;
  QColor track;
  std::optional<int> animation;  // ms of an ease-in-out change of progress; none: immediate
  double opacity = 1.0;          // 0 hides the gauge but keeps its place
  bool reverse = false;          // grow from the trailing edge

  bool operator==(const progress_view_t&) const = default;
};

// Progress clamped to the drawable range.
float clamped_progress(float progress);

class progress_gauge_t final : public QWidget {
public:
  explicit progress_gauge_t(QWidget* parent = nullptr);

  void show_value(const progress_view_t& value);
  const progress_view_t& value() const { return value_; }
  // The fraction drawn right now (moves towards the value's progress while animating).
  double drawn_progress() const { return drawn_; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  progress_view_t value_;
  double drawn_ = 0.0;
  bool shown_once_ = false;
  QVariantAnimation animation_;
};
