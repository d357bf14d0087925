#include "ui/sky_history_view.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "gnss/gnss_sky.h"
#include "ui/palette.h"
#include "ui/sky_style.h"

namespace {

constexpr double margin_left = 40.0;  // points: the value scale
constexpr double margin_right = 10.0;
constexpr double axis_height = 18.0;  // points under the last chart: the time scale
constexpr double chart_gap = 10.0;
constexpr double title_height = 18.0;       // points above each chart's plot: title and legend
constexpr double legend_mark_width = 28.0;  // points before each legend name: its line or marker, and a gap
constexpr double legend_gap = 10.0;         // points between two legend entries
constexpr double title_gap = 12.0;          // points at least between the title and the legend
constexpr double font_px = 11.0;
constexpr double cn0_top = 55.0;  // dB-Hz
constexpr double satellites_min_top = 12.0;
constexpr double dop_min_top = 3.0;
constexpr int default_span = 1;  // index of 10 minutes

QFont sized(QFont font, double px) {
  font.setPixelSize(static_cast<int>(px));
  return font;
}

// One line of a chart: its name in the legend, its colour and dash, and its value in a sample.
struct series_t {
  QString name;
  QColor colour;
  Qt::PenStyle style;
  std::function<double(const sky_sample_t&)> value;
  gnss_system_t system;  // the legend's marker, for the satellite chart
  bool marker;
};

struct chart_t {
  QString title;
  double top;  // the highest value of the scale
  std::vector<series_t> series;
};

// The three charts, painted in one widget so that they share the time scale.
class history_charts_t final : public QWidget {
public:
  history_charts_t(const gnss_sky_t& sky, const sky_history_view& owner, QWidget* parent)
      : QWidget(parent), sky_(sky), owner_(owner) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumHeight(240);
  }
  int paints = 0;

protected:
  void paintEvent(QPaintEvent*) override;

private:
  std::vector<chart_t> charts() const;
  // Where each chart's plot stands: the charts share the height, each under its header.
  std::vector<QRectF> plot_rects(const std::vector<chart_t>& list) const;
  // Whether the title and the legend share the header's one row.
  bool one_header_row(const chart_t& chart) const;
  void paint_frame(QPainter& painter, const chart_t& chart, QRectF plot) const;
  void paint_lines(QPainter& painter, const chart_t& chart, QRectF plot, double newest, double span) const;
  void paint_time_scale(QPainter& painter, QRectF plot, double span) const;

  const gnss_sky_t& sky_;
  const sky_history_view& owner_;
  // Frames, titles, legends and scales, drawn again only when one of them changes.
  QPixmap still_;
  QString still_key_;
};

std::vector<chart_t> history_charts_t::charts() const {
  const auto& samples = sky_.history().samples();
  const double newest = samples.empty() ? 0.0 : samples.back().time;
  std::array<bool, gnss_system_count> present{};
  double satellites_top = satellites_min_top;
  double dop_top = dop_min_top;
  for (std::size_t i = samples.size(); i-- > 0 && samples[i].time >= newest - owner_.span_s();) {
    const auto& s = samples[i];
    for (std::size_t k = 0; k < gnss_system_count; ++k) {
      present[k] = present[k] || s.in_view[k] > 0;
      satellites_top = std::max(satellites_top, static_cast<double>(s.in_view[k]) + 1.0);
    }
    for (const float dop : {s.hdop, s.pdop})
      if (std::isfinite(dop)) dop_top = std::max(dop_top, std::ceil(static_cast<double>(dop)));
  }

  chart_t satellites{"Satellites in view (dashed) and used (solid)", satellites_top, {}};
  for (const auto system : gnss_systems) {
    const std::size_t k = index_of(system);
    if (!present[k]) continue;
    const QColor colour = system_colour(system, palette());
    satellites.series.push_back({system_text(system), colour, Qt::DashLine,
                                 [k](const sky_sample_t& s) { return static_cast<double>(s.in_view[k]); }, system,
                                 true});
    satellites.series.push_back({QString(), colour, Qt::SolidLine,
                                 [k](const sky_sample_t& s) { return static_cast<double>(s.used[k]); }, system, false});
  }
  const QColor hdop = colour_of(colour_t::blue, palette());
  const QColor pdop = colour_of(colour_t::purple, palette());
  chart_t dops{"Dilution of precision",
               dop_top,
               {{"HDOP", hdop, Qt::SolidLine, [](const sky_sample_t& s) { return static_cast<double>(s.hdop); },
                 gnss_system_t::gps, false},
                {"PDOP", pdop, Qt::DashLine, [](const sky_sample_t& s) { return static_cast<double>(s.pdop); },
                 gnss_system_t::gps, false}}};
  chart_t cn0{"Mean C/N0 of the four strongest signals, dB-Hz",
              cn0_top,
              {{"C/N0", colour_of(colour_t::green, palette()), Qt::SolidLine,
                [](const sky_sample_t& s) { return static_cast<double>(s.cn0_top); }, gnss_system_t::gps, false}}};
  return {satellites, dops, cn0};
}

std::vector<QRectF> history_charts_t::plot_rects(const std::vector<chart_t>& list) const {
  const double n = static_cast<double>(list.size());
  const double each = (height() - axis_height - chart_gap * (n - 1)) / n;
  std::vector<QRectF> out;
  for (std::size_t i = 0; i < list.size(); ++i) {
    const double header = one_header_row(list[i]) ? title_height : 2 * title_height;
    const double top = static_cast<double>(i) * (each + chart_gap);
    out.emplace_back(margin_left, top + header, width() - margin_left - margin_right, each - header);
  }
  return out;
}

// A title that the legend would cut short gets the row to itself, the legend the row below.
bool history_charts_t::one_header_row(const chart_t& chart) const {
  const QFontMetricsF metrics(sized(font(), font_px));
  double needed = metrics.horizontalAdvance(chart.title) + title_gap;
  for (const auto& series : chart.series)
    if (!series.name.isEmpty()) needed += metrics.horizontalAdvance(series.name) + legend_mark_width;
  return needed <= width() - margin_left - margin_right;
}

void history_charts_t::paintEvent(QPaintEvent*) {
  ++paints;
  const auto list = charts();
  const auto plots = plot_rects(list);
  const double span = owner_.span_s();
  QString key =
      QString("%1x%2 %3 %4").arg(width()).arg(height()).arg(span).arg(palette().color(QPalette::Window).name());
  for (const auto& chart : list) {
    key += QString(" %1").arg(chart.top);
    for (const auto& series : chart.series) key += series.name;
  }
  if (key != still_key_) {
    const qreal ratio = devicePixelRatioF();
    still_ = QPixmap(size() * ratio);
    still_.setDevicePixelRatio(ratio);
    still_.fill(colour_of(colour_t::background, palette()));
    QPainter still(&still_);
    still.setFont(sized(font(), font_px));
    for (std::size_t i = 0; i < list.size(); ++i) paint_frame(still, list[i], plots[i]);
    paint_time_scale(still, plots.back(), span);
    still_key_ = key;
  }
  QPainter painter(this);
  painter.drawPixmap(0, 0, still_);
  const auto& samples = sky_.history().samples();
  const double newest = samples.empty() ? 0.0 : samples.back().time;
  for (std::size_t i = 0; i < list.size(); ++i) paint_lines(painter, list[i], plots[i], newest, span);
}

void history_charts_t::paint_frame(QPainter& painter, const chart_t& chart, QRectF plot) const {
  const QColor text = colour_of(colour_t::secondary, palette());
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setPen(QPen(colour_of(colour_t::tertiary, palette()), 1.0));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(plot);
  // Three grid lines with their values.
  for (int k = 0; k <= 2; ++k) {
    const double v = chart.top * k / 2.0;
    const double y = plot.bottom() - v / chart.top * plot.height();
    painter.setPen(QPen(colour_of(colour_t::tertiary, palette()), 1.0, Qt::DotLine));
    if (k == 1) painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
    painter.setPen(text);
    painter.drawText(QRectF(0, y - 7, margin_left - 4, 14), Qt::AlignRight | Qt::AlignVCenter,
                     QString::number(v, 'g', 3));
  }
  // The legend from the right: each named series with its line or its system's marker.
  const QFontMetricsF metrics(painter.font());
  double x = plot.right();
  const double legend_y = plot.top() - title_height / 2;
  for (auto it = chart.series.rbegin(); it != chart.series.rend(); ++it) {
    if (it->name.isEmpty()) continue;
    x -= metrics.horizontalAdvance(it->name);
    painter.setPen(colour_of(colour_t::primary, palette()));
    painter.drawText(QRectF(x, legend_y - 8, metrics.horizontalAdvance(it->name) + 1, 16),
                     Qt::AlignLeft | Qt::AlignVCenter, it->name);
    x -= legend_mark_width - legend_gap;
    if (it->marker) {
      painter.setRenderHint(QPainter::Antialiasing, true);
      draw_system_marker(painter, it->system, QPointF(x + 8, legend_y), 9, true, palette());
      painter.setRenderHint(QPainter::Antialiasing, false);
    } else {
      painter.setPen(QPen(it->colour, 2.0, it->style));
      painter.drawLine(QPointF(x, legend_y), QPointF(x + 14, legend_y));
    }
    x -= legend_gap;
  }
  // The title beside the legend, or on the row above it; shortened with an ellipsis only when
  // even a row of its own is too narrow.
  const bool one_row = one_header_row(chart);
  const double title_top = plot.top() - (one_row ? 1 : 2) * title_height;
  const double title_width = std::max(0.0, (one_row ? x : plot.right()) - plot.left());
  painter.setPen(colour_of(colour_t::primary, palette()));
  painter.drawText(QRectF(plot.left(), title_top, title_width, title_height), Qt::AlignLeft | Qt::AlignVCenter,
                   metrics.elidedText(chart.title, Qt::ElideRight, title_width));
}

// The lines, at most a point a pixel column, broken where a value is missing; without
// antialiasing, which would cost more than all the rest.
void history_charts_t::paint_lines(QPainter& painter, const chart_t& chart, QRectF plot, double newest,
                                   double span) const {
  const auto& samples = sky_.history().samples();
  // Samples come a second apart: a stride of the seconds a pixel column spans visits about a
  // sample a column, however long the span.
  const auto stride = static_cast<std::size_t>(std::max(1.0, span / sky_history_t::period_s / plot.width()));
  painter.setClipRect(plot.adjusted(0, -2, 0, 1));
  painter.setRenderHint(QPainter::Antialiasing, false);
  QPolygonF line;
  for (const auto& series : chart.series) {
    painter.setPen(QPen(series.colour, 1.0, series.style));
    line.clear();
    for (std::size_t i = samples.size(); i > 0; i = i > stride ? i - stride : 0) {
      const auto& sample = samples[i - 1];
      if (sample.time < newest - span) break;
      const double v = series.value(sample);
      if (!std::isfinite(v)) {
        if (line.size() > 1) painter.drawPolyline(line);
        line.clear();
        continue;
      }
      const double x = plot.right() - (newest - sample.time) / span * plot.width();
      line << QPointF(x, plot.bottom() - std::min(v, chart.top) / chart.top * plot.height());
    }
    if (line.size() > 1) painter.drawPolyline(line);
  }
  painter.setClipping(false);
}

// "now" at the right, marks every quarter of the span.
void history_charts_t::paint_time_scale(QPainter& painter, QRectF plot, double span) const {
  painter.setPen(colour_of(colour_t::secondary, palette()));
  const double minutes = span / 60.0;
  for (int k = 0; k <= 4; ++k) {
    const double x = plot.right() - k / 4.0 * plot.width();
    const double ago = minutes * k / 4.0;
    const QString label = k == 0      ? QString("now")
                          : ago < 1.0 ? QString("-%1 s").arg(ago * 60.0)
                                      : QString("-%1 min").arg(ago);
    const Qt::Alignment align = k == 0 ? Qt::AlignRight : k == 4 ? Qt::AlignLeft : Qt::AlignHCenter;
    const double left = k == 0 ? x - 60 : k == 4 ? x : x - 30;
    painter.drawText(QRectF(left, plot.bottom() + 2, 60, axis_height - 2), align | Qt::AlignVCenter, label);
  }
}

}  // namespace

sky_history_view::sky_history_view(gnss_sky_t& sky, QWidget* parent)
    : QWidget(parent), sky_(sky), span_(new QComboBox(this)), charts_(nullptr) {
  for (const int minutes : span_minutes) span_->addItem(QString("last %1 min").arg(minutes));
  span_->setCurrentIndex(default_span);
  span_->setToolTip("How far back the charts reach");
  charts_ = new history_charts_t(sky_, *this, this);
  auto* header = new QHBoxLayout;
  auto* title = new QLabel("History");
  header->addWidget(title);
  header->addStretch(1);
  header->addWidget(span_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(4, 4, 4, 4);
  column->addLayout(header);
  column->addWidget(charts_, 1);
  QObject::connect(span_, &QComboBox::currentIndexChanged, charts_, [this] { charts_->update(); });
  redraw_.watch(sky_);
}

double sky_history_view::span_s() const {
  return minutes() * 60.0;
}

int sky_history_view::minutes() const {
  const int index = std::clamp(span_->currentIndex(), 0, static_cast<int>(std::size(span_minutes)) - 1);
  return span_minutes[index];
}

bool sky_history_view::set_minutes(int minutes) {
  const auto* offered = std::find(std::begin(span_minutes), std::end(span_minutes), minutes);
  if (offered == std::end(span_minutes)) return false;
  span_->setCurrentIndex(static_cast<int>(offered - std::begin(span_minutes)));
  return true;
}

int sky_history_view::paints() const {
  return static_cast<const history_charts_t*>(charts_)->paints;
}

// The sky changes many times a second; the charts only when a sample has come.
void sky_history_view::refresh() {
  const auto& samples = sky_.history().samples();
  const double newest = samples.empty() ? -1.0 : samples.back().time;
  if (samples.size() == samples_seen_ && newest == newest_seen_) return;
  samples_seen_ = samples.size();
  newest_seen_ = newest;
  charts_->update();
}
