#include "ui/gnss_sky_plot_view.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "gnss/gnss_sky.h"
#include "ui/palette.h"
#include "ui/sky_style.h"

namespace {

constexpr double degree = std::numbers::pi / 180.0;
constexpr double rim_margin = 26.0;  // points around the horizon for the compass letters
constexpr double letter_font_px = 13.0;
constexpr double small_font_px = 10.5;  // ring labels and satellite numbers
constexpr double legend_font_px = 12.0;
constexpr double ring_elevations[] = {30.0, 60.0};  // degrees; the rim is the horizon
constexpr double hover_distance = 10.0;             // points from a marker's centre

QFont sized(QFont font, double px, QFont::Weight weight = QFont::Normal) {
  font.setPixelSize(static_cast<int>(px));
  font.setWeight(weight);
  return font;
}

}  // namespace

gnss_sky_plot_view::gnss_sky_plot_view(gnss_sky_t& sky, QWidget* parent) : QWidget(parent), sky_(sky) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  redraw_.watch(sky_);
}

QPointF gnss_sky_plot_view::centre() const {
  const double plot_height = height() - legend_height;
  return {width() / 2.0, plot_height / 2.0};
}

double gnss_sky_plot_view::radius() const {
  const double plot_height = height() - legend_height;
  return std::max(10.0, std::min(width(), static_cast<int>(plot_height)) / 2.0 - rim_margin);
}

QPointF gnss_sky_plot_view::position(const sky_satellite_t& s) const {
  const double r = radius() * (90.0 - std::clamp<double>(s.elevation, 0.0, 90.0)) / 90.0;
  const double a = s.azimuth * degree;
  return centre() + QPointF(r * std::sin(a), -r * std::cos(a));
}

QString gnss_sky_plot_view::text_at(QPointF point) const {
  for (const auto& [key, s] : *sky_.satellites) {
    if (!s.placed || s.elevation < 0) continue;
    const QPointF d = position(s) - point;
    if (std::hypot(d.x(), d.y()) > hover_distance) continue;
    QString text = QString("%1 %2%3\nelevation %4°  azimuth %5°")
                       .arg(system_text(key.system))
                       .arg(key.number)
                       .arg(s.used ? "  used in the fix" : "")
                       .arg(s.elevation)
                       .arg(s.azimuth);
    for (const auto& signal : s.tracked) {
      const auto name = signal_name(key.system, signal.id);
      text += QString("\n%1  %2 dB-Hz")
                  .arg(QString::fromLatin1(name.data(), static_cast<int>(name.size())))
                  .arg(signal.cn0);
    }
    if (s.tracked.empty()) text += "\nno signal";
    return text;
  }
  return {};
}

bool gnss_sky_plot_view::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    auto* help = static_cast<QHelpEvent*>(event);
    const QString text = text_at(help->pos());
    if (text.isEmpty()) {
      QToolTip::hideText();
      event->ignore();
    } else {
      QToolTip::showText(help->globalPos(), text, this);
    }
    return true;
  }
  return QWidget::event(event);
}

void gnss_sky_plot_view::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), colour_of(colour_t::background, palette()));
  painter.setRenderHint(QPainter::Antialiasing);
  paint_guides(painter);
  paint_satellites(painter);
  paint_legend(painter);
}

// Rings with their elevations, the two axes, the horizon, and the letters outside it.
void gnss_sky_plot_view::paint_guides(QPainter& painter) const {
  const QPointF c = centre();
  const double r = radius();
  const QColor guide = colour_of(colour_t::tertiary, palette());
  painter.setPen(QPen(guide, 1.0));
  painter.setBrush(Qt::NoBrush);
  painter.setFont(sized(font(), small_font_px));
  for (const double elevation : ring_elevations) {
    const double ring = r * (90.0 - elevation) / 90.0;
    painter.drawEllipse(c, ring, ring);
  }
  painter.drawLine(c - QPointF(0, r), c + QPointF(0, r));
  painter.drawLine(c - QPointF(r, 0), c + QPointF(r, 0));
  painter.setPen(QPen(colour_of(colour_t::secondary, palette()), 1.2));
  painter.drawEllipse(c, r, r);

  // The ring labels along the north-east diagonal, each just inside its ring.
  painter.setPen(colour_of(colour_t::secondary, palette()));
  for (const double elevation : {0.0, 30.0, 60.0}) {
    const double ring = r * (90.0 - elevation) / 90.0;
    const QPointF at = c + QPointF(ring * std::sin(45 * degree), -ring * std::cos(45 * degree));
    painter.drawText(QRectF(at.x() - 30, at.y() + 1, 28, 14), Qt::AlignRight | Qt::AlignTop,
                     QString("%1°").arg(elevation));
  }

  painter.setFont(sized(font(), letter_font_px, QFont::DemiBold));
  const std::pair<const char*, QPointF> letters[] = {{"N", {0, -1}}, {"E", {1, 0}}, {"S", {0, 1}}, {"W", {-1, 0}}};
  for (const auto& [text, direction] : letters) {
    const QPointF at = c + direction * (r + rim_margin / 2.0);
    painter.setPen(colour_of(text[0] == 'N' ? colour_t::primary : colour_t::secondary, palette()));
    painter.drawText(QRectF(at.x() - 12, at.y() - 10, 24, 20), Qt::AlignCenter, QString::fromLatin1(text));
  }
}

// Unused satellites first, so that a used one is never hidden under one that is not; then the
// numbers, over all markers.
void gnss_sky_plot_view::paint_satellites(QPainter& painter) const {
  for (const bool used : {false, true}) {
    for (const auto& [key, s] : *sky_.satellites) {
      if (!s.placed || s.elevation < 0 || s.used != used) continue;
      draw_system_marker(painter, key.system, position(s), marker_size, s.used, palette());
    }
  }
  painter.setFont(sized(font(), small_font_px));
  painter.setPen(colour_of(colour_t::primary, palette()));
  for (const auto& label : number_labels()) painter.drawText(label.box, Qt::AlignCenter, label.text);
}

std::vector<gnss_sky_plot_view::number_label_t> gnss_sky_plot_view::number_labels() const {
  // Digits share one width in the fonts a desktop uses: a number is as wide as its digits.
  const QFontMetricsF metrics(sized(font(), small_font_px));
  const double digit_width = metrics.horizontalAdvance(QLatin1Char('0'));
  const double h = std::ceil(metrics.height());
  const double gap = marker_size / 2 + 1;
  std::vector<QRectF> taken;  // the markers, then each number placed
  for (const auto& [key, s] : *sky_.satellites) {
    if (!s.placed || s.elevation < 0) continue;
    const QPointF at = position(s);
    taken.emplace_back(at.x() - marker_size / 2, at.y() - marker_size / 2, marker_size, marker_size);
  }
  std::vector<number_label_t> out;
  for (const auto& [key, s] : *sky_.satellites) {
    if (!s.placed || s.elevation < 0) continue;
    const QPointF at = position(s);
    const QString text = QString::number(key.number);
    const double w = std::ceil(digit_width * static_cast<double>(text.size())) + 2;
    const QRectF places[] = {QRectF(at.x() + gap, at.y() - h / 2, w, h), QRectF(at.x() - gap - w, at.y() - h / 2, w, h),
                             QRectF(at.x() - w / 2, at.y() - gap - h, w, h),
                             QRectF(at.x() - w / 2, at.y() + gap, w, h)};
    const auto free = [&](const QRectF& box) {
      return std::none_of(taken.begin(), taken.end(), [&](const QRectF& t) { return t.intersects(box); });
    };
    const auto* place = std::find_if(std::begin(places), std::end(places), free);
    const QRectF box = place != std::end(places) ? *place : places[0];
    taken.push_back(box);
    out.push_back({text, box});
  }
  return out;
}

// "● GPS 9/10" for each system in view, then the key to filled and outlined markers.
void gnss_sky_plot_view::paint_legend(QPainter& painter) const {
  const auto counts = sky_.counts();
  const QFont legend_font = sized(font(), legend_font_px);
  painter.setFont(legend_font);
  const QFontMetricsF metrics(legend_font);
  const double row_height = legend_height / 2.0;
  double x = 8.0;
  double y = height() - legend_height;
  const auto place = [&](double w) {
    if (x + w > width() - 8.0 && x > 8.0) {
      x = 8.0;
      y += row_height;
    }
    const double at = x;
    x += w;
    return at;
  };
  for (const auto system : gnss_systems) {
    const auto& c = counts[index_of(system)];
    if (c.in_view == 0) continue;
    const QString text = QString("%1 %2/%3").arg(system_text(system)).arg(c.used).arg(c.in_view);
    const double at = place(marker_size + 6 + metrics.horizontalAdvance(text) + 14);
    draw_system_marker(painter, system, QPointF(at + marker_size / 2, y + row_height / 2), marker_size - 2, true,
                       palette());
    painter.setPen(colour_of(colour_t::primary, palette()));
    painter.drawText(QRectF(at + marker_size + 4, y, 400, row_height), Qt::AlignLeft | Qt::AlignVCenter, text);
  }
  const QString key = "filled: used   outlined: not used   (used/in view)";
  const double at = place(metrics.horizontalAdvance(key) + 8);
  painter.setPen(colour_of(colour_t::secondary, palette()));
  painter.drawText(QRectF(at, y, 600, row_height), Qt::AlignLeft | Qt::AlignVCenter, key);
}
