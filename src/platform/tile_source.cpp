#include "platform/tile_source.h"

#include <QSettings>

tile_sources_t default_tile_sources() {
  return {
      {"https://tile.openstreetmap.org/{z}/{x}/{y}.png", 19, QString::fromUtf8("\u00a9 OpenStreetMap contributors")},
      {"https://tiles.maps.eox.at/wmts/1.0.0/s2cloudless_3857/default/g/{z}/{y}/{x}.jpg", 15,
       QString::fromUtf8("Sentinel-2 cloudless by EOX IT Services GmbH (contains modified Copernicus Sentinel data 2016)")},
      {"https://tiles.maps.eox.at/wmts/1.0.0/overlay_bright_3857/default/g/{z}/{y}/{x}.png", 17,
       QString::fromUtf8("labels \u00a9 OpenStreetMap contributors, rendering EOX")},
  };
}

namespace {

// A template from the settings replaces the default only when it names all three coordinates.
void override_from(const QSettings& settings, const char* key, tile_source_t& source) {
  const QVariant v = settings.value(QString("map/") + key);
  if (v.typeId() != QMetaType::QString) return;
  const QString t = v.toString();
  if (!t.contains("{z}") || !t.contains("{x}") || !t.contains("{y}")) return;
  source.url_template = t;
  source.max_zoom = settings.value(QString("map/") + key + "_max_zoom", source.max_zoom).toInt();
  source.attribution = settings.value(QString("map/") + key + "_attribution", QString()).toString();
}

}  // namespace

tile_sources_t configured_tile_sources() {
  tile_sources_t sources = default_tile_sources();
  QSettings settings("Korvid", "korvid");
  override_from(settings, "standard", sources.standard);
  override_from(settings, "imagery", sources.imagery);
  override_from(settings, "labels", sources.labels);
  return sources;
}

QString tile_url(const QString& url_template, int z, int x, int y) {
  QString url = url_template;
  url.replace("{z}", QString::number(z));
  url.replace("{x}", QString::number(x));
  url.replace("{y}", QString::number(y));
  return url;
}
