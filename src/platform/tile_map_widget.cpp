#include "platform/tile_map_widget.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "platform/clip_segment.h"

namespace {

bool placeable(geo_coordinate_t c) {
  return std::isfinite(c.latitude) && std::isfinite(c.longitude);
}

constexpr double wheel_notch = 120.0;   // angle delta of one wheel notch
constexpr double zoom_per_notch = 0.5;  // zoom levels per wheel notch
constexpr double ancestor_levels = 6;   // coarser levels scaled up while a tile loads
const QColor system_red(255, 59, 48);
const QColor location_blue(0, 122, 255);

}  // namespace

tile_map_widget_t::tile_map_widget_t(tile_sources_t sources, const QString& cache_dir,
                                     std::unique_ptr<device_position_t> device)
    : sources_(std::move(sources)),
      loader_(
          cache_dir,
          [this] {
            ++tiles_arrived_;
            update();
          },
          this),
      position_source_(std::move(device)) {
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_AcceptTouchEvents);
  setMinimumSize(120, 120);
  animation_.setDuration(animation_ms);
  animation_.setEasingCurve(QEasingCurve::InOutCubic);
  animation_.setStartValue(0.0);
  animation_.setEndValue(1.0);
  QObject::connect(&animation_, &QVariantAnimation::valueChanged, this, [this](const QVariant& v) {
    const double t = v.toDouble();
    camera_.centre = {from_.centre.x + (to_.centre.x - from_.centre.x) * t,
                      from_.centre.y + (to_.centre.y - from_.centre.y) * t};
    camera_.scale = std::exp(std::log(from_.scale) + (std::log(to_.scale) - std::log(from_.scale)) * t);
    update();
  });
  QObject::connect(&animation_, &QVariantAnimation::finished, this, [this] {
    camera_ = to_;
    update();
    did_change(true);
  });
  wheel_settle_.setSingleShot(true);
  wheel_settle_.setInterval(wheel_settle_ms);
  QObject::connect(&wheel_settle_, &QTimer::timeout, this, [this] { end_user_change(); });
}

tile_map_widget_t::~tile_map_widget_t() {
  animation_.stop();
  delegate_ = nullptr;
}

void tile_map_widget_t::set_shows_compass(bool on) {
  shows_compass_ = on;
  update();
}

void tile_map_widget_t::set_shows_scale(bool on) {
  shows_scale_ = on;
  update();
}

void tile_map_widget_t::set_shows_user_location(bool on) {
  if (on == shows_user_location_) return;
  shows_user_location_ = on;
  if (position_source_) {
    if (on)
      position_source_->start([this](geo_coordinate_t c) { set_device_location(c); });
    else
      position_source_->stop();
  }
  update();
}

std::optional<geo_coordinate_t> tile_map_widget_t::device_location() const {
  if (device_) return device_;
  return position_source_ ? position_source_->last_known() : std::nullopt;
}

void tile_map_widget_t::set_device_location(std::optional<geo_coordinate_t> c) {
  device_ = c;
  update();
}

void tile_map_widget_t::set_camera_min_distance(double metres) {
  camera_min_distance_ = metres;
  camera_.scale = clamped_scale(camera_.scale, latitude_of(camera_.centre.y));
  update();
}

double tile_map_widget_t::clamped_scale(double scale, double latitude) const {
  const double side = std::max(1, std::min(width(), height()));
  const double closest =
      std::max(std::exp2(20.0 - max_zoom), camera_min_distance_ / metres_per_map_point(latitude) / side);
  return std::clamp(scale, closest, map_camera_t::max_scale);
}

void tile_map_widget_t::set_region(geo_coordinate_t centre, double span_ns_m, double span_ew_m, bool animated) {
  if (!placeable(centre)) return;
  const double mpp = metres_per_map_point(centre.latitude);
  const double w = width() > 0 ? width() : 350.0;
  const double h = height() > 0 ? height() : 350.0;
  map_camera_t target;
  target.centre = map_point_for(centre);
  target.scale = clamped_scale(std::max(span_ns_m / mpp / h, span_ew_m / mpp / w), centre.latitude);
  move_to(target, animated);
}

void tile_map_widget_t::set_centre(geo_coordinate_t centre, bool animated) {
  if (!placeable(centre)) return;
  map_camera_t target = animating() ? to_ : camera_;
  target.centre = map_point_for(centre);
  move_to(target, animated);
}

map_rect_t tile_map_widget_t::visible_map_rect() const {
  return camera_.visible(size());
}

void tile_map_widget_t::move_to(map_camera_t target, bool animated) {
  target.centre.x = std::clamp(target.centre.x, 0.0, map_world_size);
  target.centre.y = std::clamp(target.centre.y, 0.0, map_world_size);
  if (animated && isVisible()) {
    const bool running = animating();
    if (running)
      animation_.stop();
    else
      will_change(true);
    from_ = camera_;
    to_ = target;
    animation_.start();
    return;
  }
  if (animating()) {
    animation_.stop();
    did_change(true);
  }
  camera_ = target;
  update();
}

void tile_map_widget_t::zoom_about(QPointF anchor, double factor, bool animated) {
  const map_camera_t start = animating() ? to_ : camera_;
  const map_point_t under = start.to_map(anchor, size());
  map_camera_t target = start;
  target.scale = clamped_scale(start.scale * factor, latitude_of(under.y));
  target.centre = {under.x - (anchor.x() - width() / 2.0) * target.scale,
                   under.y - (anchor.y() - height() / 2.0) * target.scale};
  if (animated) {
    move_to(target, true);
    return;
  }
  camera_ = target;
  camera_.centre.x = std::clamp(camera_.centre.x, 0.0, map_world_size);
  camera_.centre.y = std::clamp(camera_.centre.y, 0.0, map_world_size);
  update();
}

void tile_map_widget_t::will_change(bool animated) {
  if (delegate_) delegate_->region_will_change(animated);
}

void tile_map_widget_t::did_change(bool animated) {
  if (delegate_) delegate_->region_did_change(animated);
}

void tile_map_widget_t::end_user_change() {
  if (!user_changing_) return;
  user_changing_ = false;
  did_change(false);
}

void tile_map_widget_t::set_map_type(map_type_t type) {
  type_ = type;
  update();
}

// A marker added or removed repaints its pin; a removal that finds nothing repaints nothing (the
// coordinator hands back every marker it drops, shown or not, at every fix).
void tile_map_widget_t::add_annotation(const annotation_ref_t& a) {
  markers_.push_back(a);
  update(pin_area(*a));
}

void tile_map_widget_t::remove_annotation(const annotation_ref_t& a) {
  if (std::erase(markers_, a) == 0) return;
  if (hovered_ != -1) {
    hovered_ = -1;  // the numbers shift: the title bubble goes
    update();
    return;
  }
  update(pin_area(*a));
}

QRect tile_map_widget_t::pin_area(const point_annotation_t& a) const {
  if (!placeable(a.coordinate)) return {};
  const QPointF tip = camera_.to_screen(map_point_for(a.coordinate), size());
  return QRectF(std::round(tip.x() - pin_width / 2.0), std::round(tip.y() - pin_height + 1.0), pin_width, pin_height)
      .toAlignedRect();
}

void tile_map_widget_t::remove_annotations(const std::vector<annotation_ref_t>& all) {
  for (const auto& a : all) std::erase(markers_, a);
  hovered_ = -1;
  update();
}

std::vector<overlay_ref_t> tile_map_widget_t::overlays() const {
  return overlays_;
}

// At 10 fixes a second the position dot and the head of the track change and nothing else: only
// the area they touch is repainted, not the whole map with its tiles, and nothing at all when the
// new overlays draw what the old ones drew. A track that grew from the one before takes its map
// points from it.
void tile_map_widget_t::add_overlays(const std::vector<overlay_ref_t>& o) {
  QRegion area;
  for (const auto& overlay : o) {
    projected_t projected;
    projected.centre = map_point_for(overlay->centre);
    if (overlay->kind == map_overlay_t::kind_t::circle) {
      const auto same = std::find_if(overlays_.begin(), overlays_.end(), [&](const overlay_ref_t& x) {
        return x->kind == map_overlay_t::kind_t::circle && x->centre == overlay->centre &&
               x->radius_m == overlay->radius_m && !projected_[x.get()].superseded;
      });
      if (same != overlays_.end())
        projected_[same->get()].superseded = true;
      else
        area += circle_area(*overlay, projected).toAlignedRect();
    } else {
      const auto older = std::find_if(overlays_.rbegin(), overlays_.rend(), [](const overlay_ref_t& x) {
        return x->kind == map_overlay_t::kind_t::polyline;
      });
      std::optional<track_change_t> change;
      if (older != overlays_.rend() && projected_[older->get()].track.whole())
        change = track_change(overlay->points, (*older)->points);
      if (change) {
        projected_t& before = projected_[older->get()];
        projected.track = projected_track_t(overlay->points, before.track, *change);
        before.superseded = true;
        area += track_change_area(projected.track, before.track, *change);
      } else {
        projected.track = projected_track_t(overlay->points);
        area = rect();
      }
    }
    projected_.emplace(overlay.get(), std::move(projected));
    overlays_.push_back(overlay);
  }
  update(area);
}

void tile_map_widget_t::remove_overlays(const std::vector<overlay_ref_t>& o) {
  QRegion area;
  for (const auto& overlay : o) {
    const auto found = projected_.constFind(overlay.get());
    if (found == projected_.cend() || std::erase(overlays_, overlay) == 0) continue;
    // A superseded overlay's pixels are drawn as they were by the newer one.
    if (!found->superseded)
      area += overlay->kind == map_overlay_t::kind_t::circle ? circle_area(*overlay, *found).toAlignedRect() : rect();
    projected_.remove(overlay.get());
  }
  update(area);
}

QRectF tile_map_widget_t::circle_area(const map_overlay_t& circle, const projected_t& projected) const {
  if (!placeable(circle.centre) || !std::isfinite(circle.radius_m)) return {};
  const double pad = circle.radius_m / metres_per_map_point(circle.centre.latitude) / camera_.scale + 4.0;
  const QPointF c = camera_.to_screen(projected.centre, size());
  return QRectF(c.x() - pad, c.y() - pad, 2 * pad, 2 * pad);
}

QRectF tile_map_widget_t::points_area(const std::vector<map_point_t>& points, std::size_t first,
                                      std::size_t last) const {
  constexpr double pad = 4.0;  // half the line width and the antialiasing
  QRectF area;
  for (std::size_t i = first; i < last && i < points.size(); ++i) {
    const QPointF p = camera_.to_screen(points[i], size());
    area |= QRectF(p.x() - pad, p.y() - pad, 2 * pad, 2 * pad);
  }
  return area;
}

// The segments that a change of the track adds or takes away: the new head's, the moved head's and
// the dropped tail's.
QRegion tile_map_widget_t::track_change_area(const projected_track_t& newer, const projected_track_t& older,
                                             const track_change_t& change) const {
  QRegion area;
  if (change.added > 0) area += points_area(newer.points(), 0, change.added + 1).toAlignedRect();
  if (change.replaced > 0) area += points_area(older.points(), 0, change.replaced + 1).toAlignedRect();
  const std::size_t end = change.replaced + change.kept;
  if (end < older.points().size()) area += points_area(older.points(), end - 1, older.points().size()).toAlignedRect();
  return area;
}

// --- Painting ---------------------------------------------------------------------------------

void tile_map_widget_t::paintEvent(QPaintEvent* event) {
  QPainter p(this);
  paint_background(p);
  p.setRenderHint(QPainter::Antialiasing);
  // The track under the markers, the position dot over them: a pin never hides the position.
  paint_overlays(p, map_overlay_t::kind_t::polyline, event->rect());
  paint_markers(p, event->rect());
  paint_overlays(p, map_overlay_t::kind_t::circle, event->rect());
  paint_device(p);
  paint_decorations(p, event->rect());
}

void tile_map_widget_t::paint_background(QPainter& p) {
  // The grid and the tiles change only when the camera moves, the map type changes or a tile
  // arrives; the overlays above them change several times a second. Between such changes the
  // composed background is drawn again as it was.
  const background_key_t key{camera_.centre.x,    camera_.centre.y,
                             camera_.scale,       size(),
                             devicePixelRatioF(), type_,
                             tiles_arrived_,      palette().color(QPalette::Window).rgba()};
  if (key == background_key_ && !background_.isNull()) {
    p.drawImage(QPointF(0, 0), background_);
    return;
  }
  background_ = QImage(size() * devicePixelRatioF(), QImage::Format_RGB32);
  background_.setDevicePixelRatio(devicePixelRatioF());
  QPainter b(&background_);
  paint_grid(b);
  loader_.begin_wanted();
  paint_tiles(b);
  loader_.end_wanted();
  b.end();
  // A tile still on its way leaves a hole; its arrival counts in the key and composes again. The
  // wanted tiles stay queued in the loader meanwhile, so a slow or unreachable server costs no
  // composing on every repaint.
  background_key_ = key;
  p.drawImage(QPointF(0, 0), background_);
}

void tile_map_widget_t::paint_grid(QPainter& p) {
  const bool dark = palette().color(QPalette::Window).lightnessF() < 0.5;
  p.fillRect(rect(), dark ? QColor(44, 44, 46) : QColor(236, 234, 228));
  // Lines on the tile edges of the current level, so that panning over the grid reads as motion.
  const double span = map_camera_t::tile_points * std::exp2(20.0 - std::round(camera_.zoom())) / camera_.scale;
  if (span < 8) return;
  p.setPen(QPen(dark ? QColor(64, 64, 68) : QColor(218, 215, 208), 1));
  const QPointF origin = camera_.to_screen({0, 0}, size());
  for (double x = origin.x() + std::ceil(-origin.x() / span) * span; x < width(); x += span)
    p.drawLine(QPointF(std::round(x) + 0.5, 0), QPointF(std::round(x) + 0.5, height()));
  for (double y = origin.y() + std::ceil(-origin.y() / span) * span; y < height(); y += span)
    p.drawLine(QPointF(0, std::round(y) + 0.5), QPointF(width(), std::round(y) + 0.5));
}

void tile_map_widget_t::paint_tiles(QPainter& p) {
  if (type_ == map_type_t::standard) {
    paint_layer(p, 0, sources_.standard);
  } else {
    paint_layer(p, 1, sources_.imagery);
    paint_layer(p, 2, sources_.labels);
  }
}

void tile_map_widget_t::paint_layer(QPainter& p, int layer, const tile_source_t& source) {
  if (source.url_template.isEmpty()) return;
  const int z = std::clamp(static_cast<int>(std::lround(camera_.zoom())), 0, source.max_zoom);
  const int n = 1 << z;
  const double span = map_world_size / n;  // map points per tile
  const map_rect_t r = visible_map_rect();
  const int x0 = std::max(0, static_cast<int>(std::floor(r.x / span)));
  const int y0 = std::max(0, static_cast<int>(std::floor(r.y / span)));
  const int x1 = std::min(n - 1, static_cast<int>(std::floor((r.x + r.width) / span)));
  const int y1 = std::min(n - 1, static_cast<int>(std::floor((r.y + r.height) / span)));
  if (x1 < x0 || y1 < y0) return;

  struct slot_t {
    int x, y;
    double distance;
  };
  std::vector<slot_t> order;
  order.reserve(static_cast<std::size_t>(x1 - x0 + 1) * static_cast<std::size_t>(y1 - y0 + 1));
  const double cx = camera_.centre.x / span - 0.5;
  const double cy = camera_.centre.y / span - 0.5;
  for (int y = y0; y <= y1; ++y)
    for (int x = x0; x <= x1; ++x) order.push_back({x, y, (x - cx) * (x - cx) + (y - cy) * (y - cy)});
  std::sort(order.begin(), order.end(), [](const slot_t& a, const slot_t& b) { return a.distance < b.distance; });

  p.setRenderHint(QPainter::SmoothPixmapTransform, std::abs(camera_.zoom() - z) > 0.01);
  for (const auto& s : order) {
    // Whole screen points for the tile's edges, so that neighbours meet without a seam.
    const QPointF a = camera_.to_screen({s.x * span, s.y * span}, size());
    const QPointF b = camera_.to_screen({(s.x + 1) * span, (s.y + 1) * span}, size());
    const QRectF target(QPointF(std::round(a.x()), std::round(a.y())), QPointF(std::round(b.x()), std::round(b.y())));
    const tile_key_t key{layer, z, s.x, s.y};
    if (const QImage* image = loader_.find(key)) {
      p.drawImage(target, *image);
      continue;
    }
    loader_.want(key, QUrl(tile_url(source.url_template, z, s.x, s.y)));
    paint_ancestor(p, layer, z, s.x, s.y, target);
  }
}

bool tile_map_widget_t::paint_ancestor(QPainter& p, int layer, int z, int x, int y, const QRectF& target) {
  for (int dz = 1; dz <= ancestor_levels && dz <= z; ++dz) {
    const QImage* image = loader_.find({layer, z - dz, x >> dz, y >> dz});
    if (!image) continue;
    const double part = image->width() / static_cast<double>(1 << dz);
    const QRectF source((x - ((x >> dz) << dz)) * part, (y - ((y >> dz) << dz)) * part, part, part);
    p.drawImage(target, *image, source);
    return true;
  }
  return false;
}

void tile_map_widget_t::paint_overlays(QPainter& p, map_overlay_t::kind_t kind, const QRect& exposed) {
  const QSizeF frame = size();
  for (const auto& overlay : overlays_) {
    if (overlay->kind != kind) continue;
    const auto found = projected_.constFind(overlay.get());
    if (found == projected_.cend()) continue;
    const auto style = style_for(*overlay);
    QPen pen(style.stroke_red ? system_red : palette().color(QPalette::Highlight),
             style.line_width > 0 ? style.line_width : 2.0);
    pen.setCapStyle(Qt::RoundCap);
    // Bevel joins: at a track's density they look the same as round ones, and the stroker makes
    // a third less work of them.
    pen.setJoinStyle(Qt::BevelJoin);
    p.setPen(pen);
    if (overlay->kind == map_overlay_t::kind_t::polyline) {
      p.setBrush(Qt::NoBrush);
      paint_polyline(p, found->track, pen.widthF(), exposed);
    } else {
      if (!placeable(overlay->centre) || !std::isfinite(overlay->radius_m)) continue;
      const double radius = overlay->radius_m / metres_per_map_point(overlay->centre.latitude) / camera_.scale;
      p.setBrush(style.fill_white ? QBrush(Qt::white) : QBrush(Qt::NoBrush));
      p.drawEllipse(camera_.to_screen(found->centre, frame), radius, radius);
    }
  }
}

void tile_map_widget_t::paint_polyline(QPainter& p, const projected_track_t& track, double width,
                                       const QRect& exposed) {
  // The projection to map points is cached with the overlay; here only a shift and a scale per
  // point, and only for the runs of points whose bounds reach the repainted area: a repaint of the
  // track's head walks a few runs, not the whole track. Points less than a screen point from the
  // last one kept are skipped, segments are cut to the repainted area (zoomed in, one segment can
  // reach far beyond it, and the rasteriser's work grows with the length it is given), and the
  // rest goes to the stroker in short runs: one long self-crossing path costs the rasteriser far
  // more than many short ones.
  constexpr int stroke_length = 64;
  constexpr double min_step = 1.0;  // screen points
  const QSizeF frame = size();
  const QRectF view = QRectF(exposed).adjusted(-width, -width, width, width);
  const map_point_t corner = camera_.to_map(view.topLeft(), frame);
  const map_rect_t reach{corner.x, corner.y, view.width() * camera_.scale, view.height() * camera_.scale};
  auto flush = [&] {
    if (polyline_.size() >= 2) p.drawPolyline(polyline_);
    polyline_.clear();
  };
  polyline_.clear();
  const auto& points = track.points();
  const auto& runs = track.runs();
  bool have_last = false;
  QPointF last;
  for (std::size_t r = 0; r < runs.size(); ++r) {
    if (!overlaps(runs[r], reach)) {
      flush();
      have_last = false;
      continue;
    }
    const std::size_t first = r * projected_track_t::run_points;
    const std::size_t end = std::min(first + projected_track_t::run_points + 1, points.size());
    if (!have_last) {
      last = camera_.to_screen(points[first], frame);
      have_last = true;
    }
    for (std::size_t i = first + 1; i < end; ++i) {
      const QPointF s = camera_.to_screen(points[i], frame);
      if (std::abs(s.x() - last.x()) + std::abs(s.y() - last.y()) < min_step) continue;
      QPointF a = last;
      QPointF b = s;
      if (!clip_segment(view, a, b)) {
        flush();
      } else {
        if (a != last) flush();  // coming into view: the stroke starts at the edge
        if (polyline_.isEmpty()) polyline_.append(a);
        polyline_.append(b);
        // Going out of view, or a stroke long enough: the next segment starts a new one at its
        // first point.
        if (b != s || polyline_.size() >= stroke_length) flush();
      }
      last = s;
    }
  }
  flush();
}

// A marker's pin, drawn once per pixel ratio: a red head with a white dot on a point.
const QPixmap& tile_map_widget_t::pin_image() {
  const qreal ratio = devicePixelRatioF();
  if (!pin_.isNull() && pin_.devicePixelRatio() == ratio) return pin_;
  pin_ = QPixmap(QSize(pin_width, pin_height) * ratio);
  pin_.setDevicePixelRatio(ratio);
  pin_.fill(Qt::transparent);
  QPainter p(&pin_);
  p.setRenderHint(QPainter::Antialiasing);
  const QPointF tip(pin_width / 2.0, pin_height - 1.0);
  QPainterPath pin;
  pin.moveTo(tip);
  pin.lineTo(tip + QPointF(-3.5, -9));
  pin.arcTo(QRectF(tip.x() - 6, tip.y() - 19, 12, 12), 215, -250);
  pin.closeSubpath();
  p.setPen(QPen(Qt::white, 1.5));
  p.setBrush(QColor(232, 65, 55));
  p.drawPath(pin);
  p.setBrush(Qt::white);
  p.drawEllipse(tip + QPointF(0, -13), 2.2, 2.2);
  return pin_;
}

void tile_map_widget_t::paint_markers(QPainter& p, const QRect& exposed) {
  const QSizeF frame = size();
  const QPixmap& pin = pin_image();
  for (const auto& m : markers_) {
    const QRect area = pin_area(*m);
    if (exposed.intersects(area)) p.drawPixmap(area.topLeft(), pin);
  }
  if (hovered_ >= 0 && hovered_ < static_cast<int>(markers_.size())) {
    const auto& m = markers_[static_cast<std::size_t>(hovered_)];
    const QPointF tip = camera_.to_screen(map_point_for(m->coordinate), frame);
    const QString title = QString::fromStdString(m->title);
    const QFontMetricsF metrics(font());
    QRectF bubble(0, 0, metrics.horizontalAdvance(title) + 12, metrics.height() + 6);
    bubble.moveCenter(tip + QPointF(0, -30));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 255, 255, 235));
    p.drawRoundedRect(bubble, 6, 6);
    p.setPen(Qt::black);
    p.drawText(bubble, Qt::AlignCenter, title);
  }
}

void tile_map_widget_t::paint_device(QPainter& p) {
  if (!shows_user_location_) return;
  const auto where = device_location();
  if (!where || !placeable(*where)) return;
  const QPointF s = camera_.to_screen(map_point_for(*where), size());
  p.setPen(Qt::NoPen);
  p.setBrush(QColor(0, 122, 255, 50));
  p.drawEllipse(s, 16, 16);
  p.setBrush(Qt::white);
  p.drawEllipse(s, 8, 8);
  p.setBrush(location_blue);
  p.drawEllipse(s, 6, 6);
}

// Each decoration is drawn only where the repaint reaches it: its text costs more than the rest of
// a small repaint.
void tile_map_widget_t::paint_decorations(QPainter& p, const QRect& exposed) {
  QFont small = font();
  small.setPointSizeF(std::max(7.0, small.pointSizeF() * 0.8));
  p.setFont(small);
  const QFontMetricsF metrics(small);

  // Attribution, bottom right, on a light band so that it reads over any tile.
  QString attribution = type_ == map_type_t::standard
                            ? sources_.standard.attribution
                            : sources_.imagery.attribution + " | " + sources_.labels.attribution;
  const QRectF band(width() - metrics.horizontalAdvance(attribution) - 10, height() - metrics.height() - 4,
                    metrics.horizontalAdvance(attribution) + 10, metrics.height() + 4);
  if (band.intersects(exposed)) {
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 255, 255, 190));
    p.drawRect(band);
    p.setPen(QColor(40, 40, 40));
    p.drawText(band, Qt::AlignCenter, attribution);
  }

  constexpr double scale_width = 120.0;  // the bar and its label
  if (shows_scale_ &&
      exposed.intersects(
          QRectF(0, height() - metrics.height() - 24, 10 + scale_width, metrics.height() + 24).toAlignedRect())) {
    // The longest 1, 2 or 5 times a power of ten metres that fits in 100 screen points.
    const double m_per_point = metres_per_map_point(latitude_of(camera_.centre.y)) * camera_.scale;
    const double most = 100.0 * m_per_point;
    double length = std::pow(10.0, std::floor(std::log10(most)));
    if (length * 5 <= most)
      length *= 5;
    else if (length * 2 <= most)
      length *= 2;
    const double bar = length / m_per_point;
    const QString label = length >= 1000 ? QString("%1 km").arg(length / 1000) : QString("%1 m").arg(length);
    const QPointF o(10, height() - metrics.height() - 14);
    p.setPen(QPen(QColor(255, 255, 255, 200), 4, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(o, o + QPointF(bar, 0));
    p.setPen(QPen(QColor(40, 40, 40), 2, Qt::SolidLine, Qt::FlatCap));
    p.drawLine(o, o + QPointF(bar, 0));
    p.drawLine(o + QPointF(0, -4), o + QPointF(0, 0));
    p.drawLine(o + QPointF(bar, -4), o + QPointF(bar, 0));
    p.drawText(QRectF(o.x(), o.y() + 2, scale_width, metrics.height() + 2), Qt::AlignLeft | Qt::AlignTop, label);
  }

  const QPointF c(width() - 22, 22);
  if (shows_compass_ && exposed.intersects(QRect(width() - 40, 4, 36, 36))) {
    // The map keeps north up; the indicator says so.
    p.setPen(QPen(QColor(0, 0, 0, 40), 1));
    p.setBrush(QColor(255, 255, 255, 220));
    p.drawEllipse(c, 14, 14);
    QPainterPath north;
    north.moveTo(c + QPointF(0, -10));
    north.lineTo(c + QPointF(4, 0));
    north.lineTo(c + QPointF(-4, 0));
    north.closeSubpath();
    p.setPen(Qt::NoPen);
    p.setBrush(system_red);
    p.drawPath(north);
    p.setPen(QColor(40, 40, 40));
    p.drawText(QRectF(c.x() - 8, c.y(), 16, 12), Qt::AlignCenter, "N");
  }
}

int tile_map_widget_t::marker_at(QPointF s) const {
  for (int i = static_cast<int>(markers_.size()) - 1; i >= 0; --i) {
    const auto& m = markers_[static_cast<std::size_t>(i)];
    if (!placeable(m->coordinate)) continue;
    const QPointF head = camera_.to_screen(map_point_for(m->coordinate), size()) + QPointF(0, -12);
    if (std::hypot(head.x() - s.x(), head.y() - s.y()) <= pin_hit_radius) return i;
  }
  return -1;
}

// --- The user's gestures ----------------------------------------------------------------------

void tile_map_widget_t::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  drag_last_ = event->position();
  dragging_ = false;
}

void tile_map_widget_t::mouseMoveEvent(QMouseEvent* event) {
  if (drag_last_ && (event->buttons() & Qt::LeftButton)) {
    const QPointF delta = event->position() - *drag_last_;
    if (!dragging_) {
      if (animating()) {
        animation_.stop();
        did_change(true);
      }
      dragging_ = true;
      setCursor(Qt::ClosedHandCursor);
      will_change(false);
    }
    drag_last_ = event->position();
    camera_.centre.x = std::clamp(camera_.centre.x - delta.x() * camera_.scale, 0.0, map_world_size);
    camera_.centre.y = std::clamp(camera_.centre.y - delta.y() * camera_.scale, 0.0, map_world_size);
    update();
    return;
  }
  const int hovered = marker_at(event->position());
  if (hovered != hovered_) {
    hovered_ = hovered;
    update();
  }
}

void tile_map_widget_t::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  drag_last_.reset();
  if (dragging_) {
    dragging_ = false;
    unsetCursor();
    did_change(false);
  }
}

void tile_map_widget_t::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) zoom_about(event->position(), 0.5, true);
}

void tile_map_widget_t::wheelEvent(QWheelEvent* event) {
  const double notches = event->angleDelta().y() / wheel_notch;
  if (notches == 0.0) return;
  if (animating()) {
    animation_.stop();
    did_change(true);
  }
  if (!user_changing_) {
    user_changing_ = true;
    will_change(false);
  }
  zoom_about(event->position(), std::exp2(-notches * zoom_per_notch), false);
  wheel_settle_.start();
  event->accept();
}

void tile_map_widget_t::keyPressEvent(QKeyEvent* event) {
  const QPointF middle(width() / 2.0, height() / 2.0);
  switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      zoom_about(middle, 0.5, true);
      return;
    case Qt::Key_Minus:
      zoom_about(middle, 2.0, true);
      return;
    default:
      QWidget::keyPressEvent(event);
  }
}

void tile_map_widget_t::leaveEvent(QEvent*) {
  if (hovered_ != -1) {
    hovered_ = -1;
    update();
  }
}

bool tile_map_widget_t::event(QEvent* event) {
  if (event->type() == QEvent::NativeGesture) {
    auto* gesture = static_cast<QNativeGestureEvent*>(event);
    if (gesture->gestureType() == Qt::ZoomNativeGesture) {
      if (!user_changing_) {
        user_changing_ = true;
        will_change(false);
      }
      zoom_about(gesture->position(), 1.0 / (1.0 + gesture->value()), false);
      wheel_settle_.start();
      return true;
    }
  }
  return QWidget::event(event);
}
