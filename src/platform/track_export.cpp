#include "platform/track_export.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QTimeZone>
#include <QXmlStreamWriter>
#include <cmath>

namespace {

constexpr int degree_digits = 8;  // about a millimetre
constexpr int metre_digits = 2;
constexpr const char* gpx_namespace = "http://www.topografix.com/GPX/1/1";
constexpr const char* track_name = "Korvid track";

QString number(double value, int digits) {
  return QString::number(value, 'f', digits);
}

QString utc_text(double utc_s) {
  return QDateTime::fromMSecsSinceEpoch(std::llround(utc_s * 1000.0), QTimeZone::utc())
      .toString("yyyy-MM-dd'T'HH:mm:ss.zzz'Z'");
}

QString dropped_text(const track_store_t& track) {
  if (track.dropped() == 0) return {};
  return QString("The %1 oldest points were dropped: the track keeps the newest %2.")
      .arg(track.dropped())
      .arg(track.points().size());
}

// A latitude and longitude as GPX allows them: longitudes of 180 are written as -180.
std::pair<QString, QString> lat_lon(double lat, double lon) {
  if (lon >= 180.0) lon -= 360.0;
  return {number(lat, degree_digits), number(lon, degree_digits)};
}

template <class F>
void for_each_marker(const annotations_t& markers, F&& write) {
  const auto& list = markers.list();
  for (std::size_t i = list.size(); i-- > 0;)
    if (list[i] && std::isfinite(list[i]->coordinate.latitude) && std::isfinite(list[i]->coordinate.longitude))
      write(*list[i]);
}

}  // namespace

bool write_gpx(QIODevice& out, const track_store_t& track, const annotations_t& markers) {
  QXmlStreamWriter xml(&out);
  xml.setAutoFormatting(true);
  xml.writeStartDocument();
  xml.writeDefaultNamespace(gpx_namespace);
  xml.writeStartElement(gpx_namespace, "gpx");
  xml.writeAttribute("version", "1.1");
  xml.writeAttribute("creator", "Korvid");
  xml.writeStartElement("metadata");
  xml.writeTextElement("name", track_name);
  if (const auto dropped = dropped_text(track); !dropped.isEmpty()) xml.writeTextElement("desc", dropped);
  xml.writeEndElement();
  for_each_marker(markers, [&xml](const point_annotation_t& marker) {
    const auto [lat, lon] = lat_lon(marker.coordinate.latitude, marker.coordinate.longitude);
    xml.writeStartElement("wpt");
    xml.writeAttribute("lat", lat);
    xml.writeAttribute("lon", lon);
    xml.writeTextElement("name", QString::fromStdString(marker.title));
    xml.writeEndElement();
  });
  xml.writeStartElement("trk");
  xml.writeTextElement("name", track_name);
  xml.writeStartElement("trkseg");
  for (const auto& point : track.points()) {
    const auto [lat, lon] = lat_lon(point.lat, point.lon);
    xml.writeStartElement("trkpt");
    xml.writeAttribute("lat", lat);
    xml.writeAttribute("lon", lon);
    if (std::isfinite(point.ele_m)) xml.writeTextElement("ele", number(point.ele_m, metre_digits));
    if (point.utc_s >= 0) xml.writeTextElement("time", utc_text(point.utc_s));
    if (const auto fix = fix_kind_text(point.fix); !fix.empty())
      xml.writeTextElement("fix", QString::fromLatin1(fix.data(), static_cast<qsizetype>(fix.size())));
    if (point.sat > 0) xml.writeTextElement("sat", QString::number(point.sat));
    if (point.hdop > 0 && std::isfinite(point.hdop)) xml.writeTextElement("hdop", QString::number(point.hdop));
    xml.writeEndElement();
  }
  xml.writeEndElement();
  xml.writeEndElement();
  xml.writeEndElement();
  xml.writeEndDocument();
  return !xml.hasError();
}

bool write_geojson(QIODevice& out, const track_store_t& track, const annotations_t& markers) {
  QJsonArray coordinates;
  QJsonArray times;
  for (const auto& point : track.points()) {
    QJsonArray position{point.lon, point.lat};
    if (std::isfinite(point.ele_m)) position.append(point.ele_m);
    coordinates.append(position);
    times.append(point.utc_s >= 0 ? QJsonValue(utc_text(point.utc_s)) : QJsonValue());
  }
  QJsonObject properties{{"name", track_name}, {"coordTimes", times}};
  if (track.dropped() > 0) {
    properties["dropped"] = static_cast<double>(track.dropped());
    properties["desc"] = dropped_text(track);
  }
  QJsonArray features{QJsonObject{{"type", "Feature"},
                                  {"geometry", QJsonObject{{"type", "LineString"}, {"coordinates", coordinates}}},
                                  {"properties", properties}}};
  for_each_marker(markers, [&features](const point_annotation_t& marker) {
    features.append(QJsonObject{
        {"type", "Feature"},
        {"geometry", QJsonObject{{"type", "Point"},
                                 {"coordinates", QJsonArray{marker.coordinate.longitude, marker.coordinate.latitude}}}},
        {"properties", QJsonObject{{"name", QString::fromStdString(marker.title)}}}});
  });
  const QJsonObject collection{{"type", "FeatureCollection"}, {"features", features}};
  return out.write(QJsonDocument(collection).toJson(QJsonDocument::Compact)) >= 0;
}

QString export_track(const QString& path, const track_store_t& track, const annotations_t& markers) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return file.errorString();
  const bool geojson = path.endsWith(".geojson", Qt::CaseInsensitive) || path.endsWith(".json", Qt::CaseInsensitive);
  const bool written = geojson ? write_geojson(file, track, markers) : write_gpx(file, track, markers);
  if (!written || !file.commit()) return file.errorString();
  return {};
}
