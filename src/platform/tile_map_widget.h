#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QPixmap>
#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>
#include <memory>
#include <optional>
#include <vector>

#include "map/device_position.h"
#include "map/map_widget_api.h"
#include "map/projected_track.h"
#include "platform/map_camera.h"
#include "platform/tile_loader.h"
#include "platform/tile_source.h"

// The program's slippy map: Web Mercator tiles under the markers, the position circle and the
// track. The user drags to pan, zooms with the wheel, a pinch, a double-click or the + and - keys;
// every such change, and every animated one, is framed by the delegate's will-change and
// did-change. Without tiles (offline, or while they load) a neutral grid stands in for them.
class tile_map_widget_t final : public QWidget, public map_widget_api_t {
public:
  static constexpr int animation_ms = 350;        // animated region and centre changes
  static constexpr int wheel_settle_ms = 250;     // a wheel zoom ends after this pause
  static constexpr double max_zoom = 21.0;        // tiles of the deepest level are scaled beyond it
  static constexpr double pin_hit_radius = 10.0;  // screen points around a marker's tip

  // sources: the tile servers; cache_dir: the on-disk tile cache; device: where the computer is,
  // when the platform can say.
  tile_map_widget_t(tile_sources_t sources, const QString& cache_dir,
                    std::unique_ptr<device_position_t> device = nullptr);
  ~tile_map_widget_t() override;

  // The tile servers, for their attributions.
  const tile_sources_t& sources() const { return sources_; }

  // map_widget_api_t
  void set_delegate(map_widget_delegate_t* delegate) override { delegate_ = delegate; }
  void set_shows_compass(bool on) override;
  void set_shows_scale(bool on) override;
  void set_follows_heading(bool on) override { follows_heading_ = on; }
  void set_shows_user_location(bool on) override;
  void set_camera_min_distance(double metres) override;
  void set_region(geo_coordinate_t centre, double span_ns_m, double span_ew_m, bool animated) override;
  void set_centre(geo_coordinate_t centre, bool animated) override;
  map_rect_t visible_map_rect() const override;
  double frame_width() const override { return width(); }
  double frame_height() const override { return height(); }
  bool in_window() const override { return isVisible(); }
  void set_map_type(map_type_t type) override;
  std::vector<annotation_ref_t> annotations() const override { return markers_; }
  void add_annotation(const annotation_ref_t& a) override;
  void remove_annotation(const annotation_ref_t& a) override;
  void remove_annotations(const std::vector<annotation_ref_t>& all) override;
  std::vector<overlay_ref_t> overlays() const override;
  void add_overlays(const std::vector<overlay_ref_t>& o) override;
  void remove_overlays(const std::vector<overlay_ref_t>& o) override;

  bool shows_user_location() const { return shows_user_location_; }
  // The device's last known position: the latest the position source reported, else what it knew
  // before.
  std::optional<geo_coordinate_t> device_location() const;
  // Where the device is drawn; set by the position source, or by a test.
  void set_device_location(std::optional<geo_coordinate_t> c);

  const map_camera_t& camera() const { return camera_; }
  const tile_loader_t& loader() const { return loader_; }
  bool animating() const { return animation_.state() == QAbstractAnimation::Running; }

protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void leaveEvent(QEvent* event) override;
  bool event(QEvent* event) override;

private:
  struct projected_t {
    projected_track_t track;  // a polyline's coordinates as map points, computed once
    map_point_t centre;
    bool superseded = false;  // a newer overlay draws all of this one still shown: removing it repaints nothing
  };

  // The screen area an overlay change touches, or the whole widget where it cannot tell.
  QRectF circle_area(const map_overlay_t& circle, const projected_t& projected) const;
  QRegion track_change_area(const projected_track_t& newer, const projected_track_t& older,
                            const track_change_t& change) const;
  QRect pin_area(const point_annotation_t& a) const;
  QRectF points_area(const std::vector<map_point_t>& points, std::size_t first, std::size_t last) const;

  void move_to(map_camera_t target, bool animated);
  void zoom_about(QPointF anchor, double factor, bool animated);
  double clamped_scale(double scale, double latitude) const;
  void will_change(bool animated);
  void did_change(bool animated);
  void end_user_change();

  void paint_background(class QPainter& p);
  void paint_tiles(class QPainter& p);
  void paint_layer(class QPainter& p, int layer, const tile_source_t& source);
  bool paint_ancestor(class QPainter& p, int layer, int z, int x, int y, const QRectF& target);
  void paint_grid(class QPainter& p);
  void paint_overlays(class QPainter& p, map_overlay_t::kind_t kind, const QRect& exposed);
  void paint_polyline(class QPainter& p, const projected_track_t& track, double width, const QRect& exposed);
  void paint_markers(class QPainter& p, const QRect& exposed);
  const QPixmap& pin_image();
  void paint_device(class QPainter& p);
  void paint_decorations(class QPainter& p, const QRect& exposed);
  int marker_at(QPointF s) const;

  tile_sources_t sources_;
  tile_loader_t loader_;
  map_widget_delegate_t* delegate_ = nullptr;
  map_camera_t camera_;
  map_type_t type_ = map_type_t::standard;
  bool shows_compass_ = true;
  bool shows_scale_ = true;
  bool follows_heading_ = false;
  bool shows_user_location_ = false;
  double camera_min_distance_ = 0.0;

  // Animation from one camera to another.
  QVariantAnimation animation_;
  map_camera_t from_;
  map_camera_t to_;

  // The user's gestures.
  std::optional<QPointF> drag_last_;
  bool dragging_ = false;
  bool user_changing_ = false;
  QTimer wheel_settle_;

  // The grid and tiles as last composed, and what they were composed for.
  struct background_key_t {
    double x = -1, y = -1, scale = 0;
    QSize size;
    qreal ratio = 0;
    map_type_t type = map_type_t::standard;
    int tiles = -1;
    QRgb window = 0;
    bool operator==(const background_key_t&) const = default;
  };
  QImage background_;
  background_key_t background_key_;
  int tiles_arrived_ = 0;

  std::vector<annotation_ref_t> markers_;
  std::vector<overlay_ref_t> overlays_;
  QHash<const map_overlay_t*, projected_t> projected_;
  QPolygonF polyline_;                  // reused for every track drawn
  static constexpr int pin_width = 14;  // screen points
  static constexpr int pin_height = 22;
  QPixmap pin_;
  int hovered_ = -1;

  std::unique_ptr<device_position_t> position_source_;
  std::optional<geo_coordinate_t> device_;
};
