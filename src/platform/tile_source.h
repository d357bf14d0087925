#pragma once

#include <QString>

// A slippy-map tile server: a URL template with {z}, {x} and {y}, the deepest zoom level it
// serves, and the attribution its terms ask for.
struct tile_source_t {
  QString url_template;
  int max_zoom = 19;
  QString attribution;
};

// The sources of the two map types; the hybrid type draws labels over the imagery.
struct tile_sources_t {
  tile_source_t standard;
  tile_source_t imagery;
  tile_source_t labels;
};

// OpenStreetMap's standard tiles, and Sentinel-2 cloudless imagery (CC BY 4.0) with OpenStreetMap
// labels, both from servers whose terms allow an interactive desktop viewer with attribution.
// Each template can be replaced in the settings ("map/standard", "map/imagery", "map/labels").
tile_sources_t default_tile_sources();
tile_sources_t configured_tile_sources();

QString tile_url(const QString& url_template, int z, int x, int y);
