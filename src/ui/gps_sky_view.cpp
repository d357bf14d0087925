#include "ui/gps_sky_view.h"

#include <QEvent>
#include <QFontInfo>
#include <QPainter>
#include <cmath>
#include <numbers>

#include "link/connection.h"
#include "map/gps_heading.h"
#include "ui/font_size.h"
#include "ui/palette.h"

namespace {

constexpr double degree = std::numbers::pi / 180.0;
constexpr double letter_font_size = 13.0;
constexpr double label_font_size = 15.0;
constexpr double ring_font_size = 10.0;
constexpr double label_margin = 8.0;                // points from the plot's corner
constexpr double ring_elevations[] = {30.0, 60.0};  // degrees; the rim is the zenith

}  // namespace

QString satellite_count_text(unsigned count) {
  return QString::fromUtf8("\xF0\x9F\x9B\xB0 ") + QString::number(count);  // U+1F6F0
}

QFont with_emoji_fallback(QFont font) {
  static const QString emoji = QStringLiteral("Noto Color Emoji");
  // The family the font resolves to, not its requested name: a generic name ("Sans Serif") is
  // no installed family and would leave the emoji font to draw the digits too.
  const QString text_family = QFontInfo(font).family();
  if (text_family == emoji) return font;
  font.setFamilies({text_family, emoji});
  return font;
}

gps_sky_view::gps_sky_view(connection_t& gps, gps_heading_t& compass, QWidget* parent)
    : QWidget(parent), gps_(gps), compass_(compass) {
  setAccessibleName(tr("Sky plot"));
  setFixedSize(side, side);
  setAccessibleDescription(
      tr("Rings at 30 and 60 degrees of elevation; the rim is the zenith, the centre the horizon"));
  turn_.setDuration(rotation_duration_ms);
  turn_.setEasingCurve(QEasingCurve::InOutQuad);
  QObject::connect(&turn_, &QVariantAnimation::valueChanged, this, [this](const QVariant& v) {
    drawn_rotation_ = v.toDouble();
    update();
  });
  redraw_.watch(gps_);
  redraw_.watch(compass_);
  refresh();
}

QPointF gps_sky_view::dot_offset(const gps_gpgsv_satellite_t& satellite) {
  const double e = satellite.elevation * degree;
  const double a = satellite.azimuth * degree;
  return {plot_radius * std::sin(e) * std::sin(a), -plot_radius * std::sin(e) * std::cos(a)};
}

QPointF gps_sky_view::plot_centre() const {
  return QRectF(rect()).center();
}

void gps_sky_view::refresh() {
  count_text_ = satellite_count_text(gps_.gsv.satellites_in_view);
  const double target = -compass_.heading.get();
  if (target != target_rotation_) {
    target_rotation_ = target;
    turn_.stop();
    if (isVisible()) {
      turn_.setStartValue(drawn_rotation_);
      turn_.setEndValue(target);
      turn_.start();
    } else {
      drawn_rotation_ = target;
    }
  }
  update();
}

void gps_sky_view::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) update();
  QWidget::changeEvent(event);
}

void gps_sky_view::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::TextAntialiasing);

  // The turning layer: guides, satellites, then the labels over them, about the plot centre.
  painter.save();
  painter.translate(plot_centre());
  painter.rotate(drawn_rotation_);
  paint_guides(painter);
  paint_satellites(painter);
  paint_letters(painter);
  paint_ring_labels(painter);
  painter.restore();

  // The upright label in a corner, which the round plot leaves free.
  const QRectF corner_box = QRectF(rect()).adjusted(label_margin, label_margin, -label_margin, -label_margin);
  painter.setFont(with_emoji_fallback(relative_font(font(), label_font_size)));
  painter.setPen(colour_of(colour_t::primary, palette()));
  painter.drawText(corner_box, Qt::AlignLeft | Qt::AlignTop, count_text_);
}

void gps_sky_view::paint_guides(QPainter& painter) const {
  QPen guide(colour_of(colour_t::fill, palette()), 1.0);
  painter.setPen(guide);
  painter.setBrush(Qt::NoBrush);
  for (const double elevation : ring_elevations) {
    const double r = plot_radius * std::sin(elevation * degree);
    painter.drawEllipse(QPointF(), r, r);
  }
  painter.drawLine(QPointF(0.0, -plot_radius), QPointF(0.0, plot_radius));
  painter.drawLine(QPointF(-plot_radius, 0.0), QPointF(plot_radius, 0.0));
  painter.setPen(QPen(colour_of(colour_t::tertiary, palette()), 1.0));
  painter.drawEllipse(QPointF(), plot_radius - 0.5, plot_radius - 0.5);
}

void gps_sky_view::paint_letters(QPainter& painter) const {
  QFont letter_font = relative_font(font(), letter_font_size);
  letter_font.setWeight(QFont::DemiBold);
  painter.setFont(letter_font);
  const QFontMetricsF metrics(letter_font);
  // Each letter in its padded box against the rim, on the axis it names.
  struct letter_t {
    const char* text = nullptr;
    QPointF direction;
    colour_t colour = colour_t::primary;
  };
  const letter_t letters[] = {
      {"N", {0, -1}, colour_t::primary},
      {"W", {-1, 0}, colour_t::secondary},
      {"E", {1, 0}, colour_t::secondary},
      {"S", {0, 1}, colour_t::secondary},
  };
  for (const auto& letter : letters) {
    const QString text = QString::fromLatin1(letter.text);
    const QSizeF box(metrics.horizontalAdvance(text) + 2 * letter_padding, metrics.height() + 2 * letter_padding);
    const QPointF centre = letter.direction * (plot_radius + letter_margin / 2.0);
    const QRectF rect(centre.x() - box.width() / 2, centre.y() - box.height() / 2, box.width(), box.height());
    painter.setPen(colour_of(letter.colour, palette()));
    painter.drawText(rect, Qt::AlignCenter, text);
  }
}

// The elevation of each ring and of the rim, just right of the north line.
void gps_sky_view::paint_ring_labels(QPainter& painter) const {
  const QFont label_font = relative_font(font(), ring_font_size);
  painter.setFont(label_font);
  painter.setPen(colour_of(colour_t::secondary, palette()));
  const QFontMetricsF metrics(label_font);
  for (const double elevation : {ring_elevations[0], ring_elevations[1], 90.0}) {
    const double r = plot_radius * std::sin(elevation * degree);
    painter.drawText(QPointF(letter_padding, -r + metrics.ascent() + 1.0), QString::number(elevation) + QChar(0x00B0));
  }
}

void gps_sky_view::paint_satellites(QPainter& painter) const {
  painter.setPen(Qt::NoPen);
  const QColor lit = colour_of(colour_t::primary, palette());
  const QColor silent = colour_of(colour_t::fill, palette());
  // The table is keyed by PRN, so the dots are drawn in PRN order.
  for (const auto& [prn, satellite] : *gps_.gsv.satellite_arr) {
    if (!satellite->valid) continue;
    painter.setBrush(satellite->snr > 0 ? lit : silent);
    painter.drawEllipse(dot_offset(*satellite), dot_size / 2, dot_size / 2);
  }
}
