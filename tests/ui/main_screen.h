#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QTemporaryDir>
#include <QTest>

#include "link/config_connection.h"
#include "link/memory_kv_store.h"
#include "map/map_view.h"
#include "platform/tile_map_widget.h"
#include "support/fake_device_position.h"
#include "support/tile_server.h"
#include "support/ui_test_app.h"
#include "ui/content_view.h"
#include "ui/main_window.h"
#include "view_hub.h"

// The window as the program builds it (settings, hub, map widget, map settings, window), with the
// hub on fake transports, the map on tiles served from 127.0.0.1 and the device where the test says.
struct main_screen_t {
  explicit main_screen_t(int width = 1000, int height = 760, std::optional<geo_coordinate_t> device_at = {})
      : device(new fake_device_position_t(device_at)),
        map(*new tile_map_widget_t({{tiles.url_template(), 19, "test tiles"}, {}, {}}, cache.path(),
                                   std::unique_ptr<device_position_t>(device))) {
    window.resize(width, height);
    window.show();
    settle();
  }

  // Runs the redraws, the deferred writes they posted and the map's animations to their end.
  void run() {
    for (int i = 0; i < 5; ++i) {
      settle();
      hub.queue.run_pending();
      EXPECT_TRUE(QTest::qWaitFor([this] { return !map.animating(); }, 2000)) << "the map animates for ever";
    }
    settle();
  }

  bool app_ = (ui_test_app(), true);
  memory_kv_store_t store;
  recording_console_t settings_console;
  config_connection_t cfg{store, settings_console};
  view_hub_t hub;
  tile_server_t tiles;
  QTemporaryDir cache;
  fake_device_position_t* device;  // owned by the map
  tile_map_widget_t& map;
  map_cfg_t map_cfg;
  main_window_t window{cfg, hub.hub, map_cfg, map, hub.queue, hub.meter};
  ContentView& view = window.content();
};
