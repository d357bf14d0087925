#include "ui/signal_bars_view.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>

#include "gnss/gnss_sky.h"
#include "ui/palette.h"
#include "ui/sky_style.h"

namespace {

constexpr double margin_left = 46.0;    // points: tick labels and the axis title
constexpr double margin_right = 46.0;   // the names of the quality bands
constexpr double margin_top = 24.0;     // the legend
constexpr double margin_bottom = 36.0;  // satellite numbers and system names
constexpr double bar_width_max = 9.0;   // points
constexpr double bar_gap = 1.0;         // between the bars of one satellite
constexpr double satellite_gap = 5.0;   // between satellites
constexpr double system_gap = 16.0;     // between systems
constexpr double small_font_px = 10.0;
constexpr double label_font_px = 11.0;
constexpr double tick_step = 10.0;  // dB-Hz between grid lines

QFont sized(QFont font, double px) {
  font.setPixelSize(static_cast<int>(px));
  return font;
}

QColor tint(QColor c, double alpha) {
  c.setAlphaF(static_cast<float>(alpha));
  return c;
}

}  // namespace

signal_bars_view::signal_bars_view(gnss_sky_t& sky, QWidget* parent) : QWidget(parent), sky_(sky) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  redraw_.watch(sky_);
}

QRectF signal_bars_view::plot_area() const {
  return QRectF(margin_left, margin_top, std::max(1.0, width() - margin_left - margin_right),
                std::max(1.0, height() - margin_top - margin_bottom));
}

double signal_bars_view::y_of(double cn0) const {
  const QRectF plot = plot_area();
  return plot.bottom() - std::clamp(cn0, 0.0, cn0_top) / cn0_top * plot.height();
}

// The bars fill the width when they can, at most bar_width_max each.
std::vector<signal_bars_view::bar_t> signal_bars_view::bars() const {
  std::vector<bar_t> out;
  double gaps = 0.0;
  std::size_t count = 0;
  bool first = true;
  gnss_system_t last_system{};
  for (const auto& [key, s] : *sky_.satellites) {
    if (s.tracked.empty()) continue;
    if (!first) gaps += key.system != last_system ? system_gap : satellite_gap;
    gaps += bar_gap * static_cast<double>(s.tracked.size() - 1);
    count += s.tracked.size();
    first = false;
    last_system = key.system;
  }
  if (count == 0) return out;
  const QRectF plot = plot_area();
  const double w = std::clamp((plot.width() - gaps) / static_cast<double>(count), 1.0, bar_width_max);
  double x = plot.left();
  first = true;
  for (const auto& [key, s] : *sky_.satellites) {
    if (s.tracked.empty()) continue;
    if (!first) x += key.system != last_system ? system_gap : satellite_gap;
    first = false;
    last_system = key.system;
    for (std::size_t i = 0; i < s.tracked.size(); ++i) {
      if (i > 0) x += bar_gap;
      out.push_back({key, s.tracked[i].id, s.tracked[i].cn0, s.used, QRectF(x, plot.top(), w, plot.height())});
      x += w;
    }
  }
  return out;
}

bool signal_bars_view::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  for (const auto& bar : bars()) {
    if (!bar.rect.adjusted(-1, 0, 1, margin_bottom).contains(help->pos())) continue;
    const auto name = signal_name(bar.key.system, bar.signal);
    QToolTip::showText(help->globalPos(),
                       QString("%1 %2  %3\n%4 dB-Hz%5")
                           .arg(system_text(bar.key.system))
                           .arg(bar.key.number)
                           .arg(QString::fromLatin1(name.data(), static_cast<int>(name.size())))
                           .arg(bar.cn0)
                           .arg(bar.used ? ", used in the fix" : ""),
                       this);
    return true;
  }
  QToolTip::hideText();
  event->ignore();
  return true;
}

void signal_bars_view::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), colour_of(colour_t::background, palette()));
  paint_scale(painter);
  const auto laid_out = bars();
  if (laid_out.empty()) {
    painter.setPen(colour_of(colour_t::secondary, palette()));
    painter.setFont(sized(font(), label_font_px));
    painter.drawText(plot_area(), Qt::AlignCenter, "no signals");
    return;
  }
  paint_bars(painter, laid_out);
}

// The quality bands, grid lines with their values, the axis title and the legend.
void signal_bars_view::paint_scale(QPainter& painter) const {
  const QRectF plot = plot_area();
  const auto band = [&](double low, double high, colour_t colour, const char* name) {
    const QRectF area(plot.left(), y_of(high), plot.width(), y_of(low) - y_of(high));
    painter.fillRect(area, tint(colour_of(colour, palette()), is_dark(palette()) ? 0.09 : 0.10));
    painter.setPen(colour_of(colour_t::secondary, palette()));
    painter.drawText(QRectF(area.right() + 4, area.top(), margin_right - 4, area.height()),
                     Qt::AlignLeft | Qt::AlignVCenter, name);
  };
  painter.setFont(sized(font(), small_font_px));
  band(0.0, weak_below, colour_t::red, "weak");
  band(weak_below, good_above, colour_t::orange, "usable");
  band(good_above, cn0_top, colour_t::green, "good");

  painter.setPen(QPen(colour_of(colour_t::tertiary, palette()), 1.0));
  for (double v = 0.0; v <= cn0_top; v += tick_step)
    painter.drawLine(QPointF(plot.left(), y_of(v)), QPointF(plot.right(), y_of(v)));
  painter.setPen(colour_of(colour_t::secondary, palette()));
  for (double v = 0.0; v <= cn0_top; v += tick_step)
    painter.drawText(QRectF(plot.left() - 30, y_of(v) - 7, 26, 14), Qt::AlignRight | Qt::AlignVCenter,
                     QString::number(static_cast<int>(v)));

  painter.save();
  painter.translate(10, plot.center().y());
  painter.rotate(-90);
  painter.drawText(QRectF(-60, -8, 120, 16), Qt::AlignCenter, "C/N0 dB-Hz");
  painter.restore();

  painter.setFont(sized(font(), label_font_px));
  painter.drawText(QRectF(plot.left(), 2, plot.width(), margin_top - 6), Qt::AlignRight | Qt::AlignVCenter,
                   "filled: used   outlined: not used   hatched: second band   (signals)");
}

void signal_bars_view::paint_bars(QPainter& painter, const std::vector<bar_t>& laid_out) const {
  const QRectF plot = plot_area();
  painter.setFont(sized(font(), small_font_px));
  const QFontMetricsF metrics(painter.font());
  double number_right = -1e9;  // numbers that would overlap the one before are left out
  for (std::size_t i = 0; i < laid_out.size(); ++i) {
    const auto& bar = laid_out[i];
    const QColor colour = system_colour(bar.key.system, palette());
    const QRectF fill(bar.rect.left(), y_of(bar.cn0), bar.rect.width(), plot.bottom() - y_of(bar.cn0));
    const bool first_band = bar.signal == primary_signal(bar.key.system);
    if (bar.used) {
      painter.fillRect(fill, first_band ? QBrush(colour) : QBrush(colour, Qt::Dense3Pattern));
    } else {
      painter.fillRect(fill, first_band ? QBrush(Qt::NoBrush) : QBrush(colour, Qt::Dense6Pattern));
      painter.setPen(QPen(colour, 1.0));
      painter.drawRect(fill.adjusted(0.5, 0.5, -0.5, -0.5));
    }
    // The satellite's number under its last bar's group; the system's name under its first.
    const bool last_of_satellite = i + 1 == laid_out.size() || !(laid_out[i + 1].key == bar.key);
    if (last_of_satellite) {
      double left = bar.rect.left();
      for (std::size_t k = i; k > 0 && laid_out[k - 1].key == bar.key; --k) left = laid_out[k - 1].rect.left();
      const QString number = QString::number(bar.key.number);
      const double w = metrics.horizontalAdvance(number);
      const double centre = (left + bar.rect.right()) / 2.0;
      if (centre - w / 2 > number_right + 2) {
        painter.setPen(colour_of(colour_t::primary, palette()));
        painter.drawText(QRectF(centre - w / 2 - 1, plot.bottom() + 2, w + 2, 14), Qt::AlignCenter, number);
        number_right = centre + w / 2;
      }
    }
    // The system's name and its signals tracked under its first bar.
    const bool first_of_system = i == 0 || laid_out[i - 1].key.system != bar.key.system;
    if (first_of_system) {
      const auto tracked = std::count_if(laid_out.begin() + static_cast<std::ptrdiff_t>(i), laid_out.end(),
                                         [&](const bar_t& b) { return b.key.system == bar.key.system; });
      painter.setPen(colour);
      painter.drawText(QRectF(bar.rect.left(), plot.bottom() + 17, 120, 14), Qt::AlignLeft | Qt::AlignVCenter,
                       QString("%1 (%2)").arg(system_text(bar.key.system)).arg(tracked));
    }
  }
}
