// Paint and refresh costs of the screens, offscreen: the map with a 10 000-point track and 200
// markers at 1920 x 1080, one full refresh of the main window with such a track, and the views of
// the satellites of every system after an hour of a multi-GNSS receiver.
//   korvid_screens_bench [benchmark options]
//   korvid_screens_bench --map-screenshot FILE   the map widget with a track, markers and the dot
//   korvid_screens_bench --tiles DIR LAT LON     write synthetic tiles around a coordinate
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QComboBox>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>

#include "link/config_connection.h"
#include "link/connection.h"
#include "link/memory_kv_store.h"
#include "map/map_view.h"
#include "platform/tile_map_widget.h"
#include "sim/sim_engine.h"
#include "sim/sim_sky.h"
#include "support/fake_links.h"
#include "support/link_feed.h"
#include "support/recording_console.h"
#include "support/sentences.h"
#include "support/test_queue.h"
#include "synthetic_tiles.h"
#include "ui/content_view.h"
#include "ui/gnss_sky_panel.h"
#include "ui/gnss_sky_plot_view.h"
#include "ui/link_meter.h"
#include "ui/main_window.h"
#include "ui/signal_bars_view.h"
#include "ui/sky_history_view.h"

namespace {

constexpr geo_coordinate_t centre{48.1173, 11.5167};
constexpr std::size_t track_points = 10000;
constexpr std::size_t marker_count = 200;

// A wandering walk around the centre, a few metres a step, newest first.
std::vector<geo_coordinate_t> walk(std::size_t n) {
  std::vector<geo_coordinate_t> points;
  points.reserve(n);
  double lat = centre.latitude, lon = centre.longitude, heading = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    heading += 0.02 * std::sin(i * 0.013) + 0.011;
    lat += 4.0 / meters_per_lat * std::cos(heading) * (1.0 + 0.3 * std::sin(i * 0.0007));
    lon += 4.0 / meters_per_lon * std::sin(heading) * 1.5;
    points.push_back({lat, lon});
  }
  return points;
}

// The map widget at 1920 x 1080 on synthetic tiles, with the track, the markers and the dot.
struct map_scene_t {
  QTemporaryDir dir;
  std::unique_ptr<tile_map_widget_t> map;

  map_scene_t(int width, int height) {
    const auto track = walk(track_points);
    const QString url = write_synthetic_tiles(dir.path(), track.front(), 14, 17, 6);
    map = std::make_unique<tile_map_widget_t>(tile_sources_t{{url, 17, "synthetic tiles"}, {}, {}},
                                              dir.path() + "/cache");
    map->resize(width, height);
    map->show();
    map->set_region(track.front(), 1000.0, 1000.0, false);
    auto line = std::make_shared<map_overlay_t>();
    line->kind = map_overlay_t::kind_t::polyline;
    line->points = track;
    auto dot = std::make_shared<map_overlay_t>();
    dot->kind = map_overlay_t::kind_t::circle;
    dot->centre = track.front();
    dot->radius_m = 14.0;
    map->add_overlays({dot, line});
    for (std::size_t i = 0; i < marker_count; ++i) {
      auto a = std::make_shared<point_annotation_t>();
      a->title = "12:00:" + std::to_string(i % 60);
      a->coordinate = track[i * (track.size() / marker_count)];
      map->add_annotation(a);
    }
    // Load every tile in view before measuring.
    for (int round = 0; round < 50; ++round) {
      map->grab();
      QTest::qWait(20);
      if (map->loader().in_flight() == 0 && round > 3) break;
    }
  }
};

void BM_map_paint(benchmark::State& state) {
  map_scene_t scene(1920, 1080);
  QImage image(1920, 1080, QImage::Format_RGB32);
  for (auto _ : state) {
    scene.map->render(&image);
    benchmark::DoNotOptimize(image.bits());
  }
  state.counters["track_points"] = track_points;
  state.counters["markers"] = marker_count;
}
BENCHMARK(BM_map_paint)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

void BM_map_paint_without_overlays(benchmark::State& state) {
  map_scene_t scene(1920, 1080);
  scene.map->remove_overlays(scene.map->overlays());
  scene.map->remove_annotations(scene.map->annotations());
  QImage image(1920, 1080, QImage::Format_RGB32);
  for (auto _ : state) {
    scene.map->render(&image);
    benchmark::DoNotOptimize(image.bits());
  }
}
// Zoomed out until the whole track is in view: every point is projected and most are stroked.
void BM_map_paint_whole_track(benchmark::State& state) {
  map_scene_t scene(1920, 1080);
  const auto track = walk(track_points);
  double south = 90, north = -90, west = 180, east = -180;
  for (const auto& c : track) {
    south = std::min(south, c.latitude);
    north = std::max(north, c.latitude);
    west = std::min(west, c.longitude);
    east = std::max(east, c.longitude);
  }
  const geo_coordinate_t middle{(south + north) / 2, (west + east) / 2};
  scene.map->set_region(middle, (north - south) * meters_per_lat * 1.1,
                        (east - west) * meters_per_lon * std::cos(middle.latitude * 3.14159265 / 180) * 1.1, false);
  QImage image(1920, 1080, QImage::Format_RGB32);
  for (auto _ : state) {
    scene.map->render(&image);
    benchmark::DoNotOptimize(image.bits());
  }
}
BENCHMARK(BM_map_paint_whole_track)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

BENCHMARK(BM_map_paint_without_overlays)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

// One fix on a 10 000-point track, as the coordinator hands it to the map 10 times a second: a new
// position dot and a new track whose head moved (every other fix) or grew by a point while the
// oldest left, the old overlays taken out, and the repaint the event loop does. range(0): the
// whole track in view (1) or 1 km (0).
void BM_map_fix(benchmark::State& state) {
  map_scene_t scene(1920, 1080);
  auto track = walk(track_points + 1);
  std::vector<geo_coordinate_t> shown(track.begin() + 1, track.end());
  if (state.range(0) != 0) scene.map->set_region(track.front(), 8000.0, 8000.0, false);
  for (int round = 0; round < 50; ++round) {  // every tile in view asked for and answered
    scene.map->grab();
    QTest::qWait(20);
    if (scene.map->loader().in_flight() == 0 && round > 3) break;
  }
  std::size_t fixes = 0;
  for (auto _ : state) {
    if (++fixes % 2 == 0) {
      shown.front().latitude += 1e-6;
    } else {
      shown.insert(shown.begin(), {shown.front().latitude + 4e-5, shown.front().longitude});
      shown.pop_back();
    }
    auto line = std::make_shared<map_overlay_t>();
    line->kind = map_overlay_t::kind_t::polyline;
    line->points = shown;
    auto dot = std::make_shared<map_overlay_t>();
    dot->kind = map_overlay_t::kind_t::circle;
    dot->centre = shown.front();
    dot->radius_m = 14.0;
    const auto old = scene.map->overlays();
    scene.map->add_overlays({dot, line});
    scene.map->remove_overlays(old);
    QCoreApplication::processEvents();
  }
  state.counters["track_points"] = static_cast<double>(shown.size());
}
BENCHMARK(BM_map_fix)
    ->ArgName("whole_track")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

// One full refresh of the main window: a change notice, the refresh of every row, the map's update
// with new overlays (the clock is moved past the overlay interval each time), and the repaint.
void BM_window_refresh(benchmark::State& state) {
  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  memory_kv_store_t store;
  config_connection_t cfg(store, console);
  connection_t hub(queue, console, links);
  QTemporaryDir dir;
  const QString url = write_synthetic_tiles(dir.path(), centre, 15, 16, 4);
  auto& map = *new tile_map_widget_t({{url, 17, "synthetic tiles"}, {}, {}}, dir.path() + "/cache");
  map_cfg_t map_cfg;
  link_meter_t meter(hub);
  main_window_t window(cfg, hub, map_cfg, map, queue, meter);
  window.resize(1920, 1080);
  window.show();
  const ContentView& view = window.content();
  // 10 000 track points: one GGA a second, 11 m apart.
  for (std::size_t i = 0; hub.gga.map_path.list().size() < track_points && i < 3 * track_points; ++i) {
    const double lat = 4807.0 + 0.006 * static_cast<double>(i % 2000);
    const double lon = 1131.0 + 0.5 * static_cast<double>(i / 2000);
    char body[128];
    std::snprintf(body, sizeof body, "$GPGGA,120000,%.4f,N,%010.4f,E,1,08,0.9,545.4,M,46.9,M,,", lat, lon);
    feed_line(hub.tcp_events(), with_checksum(body));
  }
  for (int i = 0; i < 10; ++i) {
    queue.advance(2.0);
    QCoreApplication::processEvents();
    QTest::qWait(5);
  }
  QImage image(1920, 1080, QImage::Format_RGB32);
  const bool paint = state.range(0) != 0;
  for (auto _ : state) {
    queue.advance(0.05);
    hub.notify();
    QCoreApplication::processEvents();
    if (paint) window.render(&image);
    benchmark::DoNotOptimize(image.bits());
  }
  state.counters["track_points"] = static_cast<double>(hub.gga.map_path.list().size());
  state.counters["refreshes"] = view.refreshes();
  state.counters["good"] = static_cast<double>(hub.msg_good);
}
BENCHMARK(BM_window_refresh)
    ->ArgName("paint")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

// One paint of each view of the satellites of every system, after an hour of a four-system receiver:
// the history charts hold 3600 samples (span: range(0) minutes), the sky plot and the bars 34
// satellites on 47 signals. The charts repaint once a second, the plot and bars with every change.
void BM_sky_views_paint(benchmark::State& state) {
  test_queue_t queue;
  recording_console_t console;
  fake_links_t links;
  connection_t hub(queue, console, links);
  sim_engine_t sim({.gnss = *parse_gnss_list("gps,glo,gal,bds")});
  for (int second = 0; second < 3600; ++second) {
    feed(hub.tcp_events(), sim.next_epoch());
    queue.advance(1.0);
  }
  gnss_sky_panel panel(hub.sky);
  panel.history().set_minutes(static_cast<int>(state.range(0)));
  const std::pair<QWidget*, QSize> views[] = {
      {panel.history().charts(), {640, 420}}, {&panel.plot(), {400, 440}}, {&panel.bars(), {640, 250}}};
  for (const auto& [view, size] : views) view->resize(size);
  QImage image(640, 440, QImage::Format_RGB32);
  const auto view = static_cast<std::size_t>(state.range(1));
  for (auto _ : state) {
    views[view].first->render(&image);
    benchmark::DoNotOptimize(image.bits());
  }
  state.counters["samples"] = static_cast<double>(hub.sky.history().samples().size());
}
BENCHMARK(BM_sky_views_paint)
    ->ArgNames({"minutes", "view"})
    ->Args({1, 0})
    ->Args({10, 0})
    ->Args({60, 0})
    ->Args({10, 1})
    ->Args({10, 2})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  if (argc == 3 && std::strcmp(argv[1], "--map-screenshot") == 0) {
    map_scene_t scene(1200, 800);
    return scene.map->grab().save(argv[2], "PNG") ? 0 : 1;
  }
  if (argc == 5 && std::strcmp(argv[1], "--tiles") == 0) {
    const QString url = write_synthetic_tiles(argv[2], {std::atof(argv[3]), std::atof(argv[4])}, 12, 19, 6);
    std::printf("%s\n", url.toUtf8().constData());
    return 0;
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
