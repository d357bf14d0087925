#include "ui/text_runs.h"

#include <QFontMetricsF>
#include <QPainter>
#include <cmath>

#include "ui/palette.h"

text_runs_t::text_runs_t(bool clickable, double spacing, QWidget* parent)
    : QAbstractButton(parent), spacing_(spacing), clickable_(clickable) {
  setFocusPolicy(clickable ? Qt::TabFocus : Qt::NoFocus);
  if (clickable)
    setCursor(Qt::PointingHandCursor);
  else
    setAttribute(Qt::WA_TransparentForMouseEvents);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void text_runs_t::set_runs(std::vector<text_run_t> runs) {
  if (runs == runs_) return;
  const bool resized = runs.size() != runs_.size() || !std::equal(runs.begin(), runs.end(), runs_.begin(),
                                                                  [](const text_run_t& a, const text_run_t& b) {
                                                                    return a.text == b.text && a.font == b.font;
                                                                  });
  runs_ = std::move(runs);
  setAccessibleName(joined());
  if (resized) updateGeometry();
  update();
}

QString text_runs_t::joined() const {
  QStringList texts;
  for (const auto& r : runs_) texts << r.text;
  return texts.join(' ');
}

QSize text_runs_t::sizeHint() const {
  double w = 0.0;
  double h = 0.0;
  for (std::size_t i = 0; i < runs_.size(); ++i) {
    const QFontMetricsF m(runs_[i].font);
    w += m.horizontalAdvance(runs_[i].text) + (i > 0 ? spacing_ : 0.0);
    h = std::max(h, m.height());
  }
  return {static_cast<int>(std::ceil(w)), static_cast<int>(std::ceil(h))};
}

void text_runs_t::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.setRenderHint(QPainter::TextAntialiasing);
  if (clickable_ && isDown()) p.setOpacity(0.5);
  double ascent = 0.0;
  for (const auto& r : runs_) ascent = std::max(ascent, QFontMetricsF(r.font).ascent());
  const double top = (height() - sizeHint().height()) / 2.0;
  double x = 0.0;
  for (const auto& r : runs_) {
    const QFontMetricsF m(r.font);
    p.setFont(r.font);
    p.setPen(colour_of(r.colour, palette()));
    p.drawText(QPointF(x, top + ascent), r.text);
    x += m.horizontalAdvance(r.text) + spacing_;
  }
  if (clickable_ && hasFocus()) {
    p.setOpacity(1.0);
    p.setPen(QPen(palette().color(QPalette::Highlight), 2));
    p.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
  }
}
