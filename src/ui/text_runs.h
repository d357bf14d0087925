#pragma once

#include <QAbstractButton>
#include <QFont>
#include <QString>
#include <vector>

#include "core/colour.h"

// One piece of text in one colour and font.
struct text_run_t {
  QString text;
  colour_t colour = colour_t::primary;
  QFont font;
  bool operator==(const text_run_t&) const = default;
};

// A row of text runs side by side, as a label or, when clickable, as a flat button. The runs are
// painted in the semantic colours of the current theme.
class text_runs_t final : public QAbstractButton {
public:
  explicit text_runs_t(bool clickable, double spacing = 0.0, QWidget* parent = nullptr);

  void set_runs(std::vector<text_run_t> runs);
  const std::vector<text_run_t>& runs() const { return runs_; }
  // The runs' texts joined with single spaces, for tests and accessibility.
  QString joined() const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  std::vector<text_run_t> runs_;
  double spacing_;
  bool clickable_;
};
