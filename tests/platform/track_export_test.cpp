#include "platform/track_export.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include "link/connection.h"
#include "link/offline_links.h"
#include "nmea/sentence.h"
#include "support/link_feed.h"
#include "support/recording_console.h"
#include "support/test_queue.h"

namespace {

// A track of three epochs across the antimeridian, with date and time, and two markers; the store
// holds two points, so one was dropped.
struct export_test : ::testing::Test {
  export_test() {
    for (const char* lon : {"17959.990", "18000.000", "17959.995"}) {
      const auto time = "12000" + std::to_string(seconds++);
      feed_line(hub.tcp_events(), with_checksum("$GPRMC," + time + ",A,4807.038,N," + lon + ",E,0,0,231126,,,A"));
      feed_line(hub.tcp_events(), with_checksum("$GPGSA,A,3,04,05,,,,,,,,,,,2.5,1.3,2.1"));
      feed_line(hub.tcp_events(), with_checksum("$GPGGA," + time + ",4807.038,N," + lon + ",E,1,08,0.9,-12.5,M,,,,"));
      track.sample();
    }
    for (const double lon : {179.5, 180.0}) markers.add_annotation(make_annotation("m", {48.0, lon}, spare));
  }

  QByteArray written(bool (*write)(QIODevice&, const track_store_t&, const annotations_t&)) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(write(buffer, track, markers));
    return buffer.data();
  }

  int seconds = 0;
  test_queue_t queue;
  recording_console_t console;
  offline_links_t links;
  connection_t hub{queue, console, links};
  track_store_t track{hub, 2};
  annotations_t markers;
  annotation_ref_t spare;
};

TEST_F(export_test, gpx_passes_the_schema_and_reads_back) {
  const auto gpx = written(write_gpx);
  QTemporaryDir dir;
  const auto path = dir.filePath("t.gpx");
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(gpx) == gpx.size());
  file.close();
  if (QStandardPaths::findExecutable("xmllint").isEmpty()) {
    ADD_FAILURE() << "xmllint (libxml2-utils) is missing";
  } else {
    QProcess xmllint;
    xmllint.start("xmllint", {"--noout", "--schema", KORVID_SOURCE_DIR "/tests/data/gpx.xsd", path});
    ASSERT_TRUE(xmllint.waitForFinished(10000));
    EXPECT_EQ(xmllint.exitCode(), 0) << xmllint.readAllStandardError().toStdString();
  }

  QStringList seen;
  QXmlStreamReader xml(gpx);
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) continue;
    const auto name = xml.name().toString();
    if (name == "trkpt" || name == "wpt")
      seen << name + " " + xml.attributes().value("lat").toString() + " " + xml.attributes().value("lon").toString();
    else if (name == "time" || name == "fix" || name == "sat" || name == "hdop" || name == "ele" || name == "desc")
      seen << name + " " + xml.readElementText();
  }
  EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
  EXPECT_EQ(seen, (QStringList{"desc The 1 oldest points were dropped: the track keeps the newest 2.",
                               "wpt 48.00000000 179.50000000", "wpt 48.00000000 -180.00000000",
                               "trkpt 48.11730000 -180.00000000", "ele -12.50", "time 2026-11-23T12:00:01.000Z",
                               "fix 3d", "sat 8", "hdop 0.9", "trkpt 48.11730000 179.99991667", "ele -12.50",
                               "time 2026-11-23T12:00:02.000Z", "fix 3d", "sat 8", "hdop 0.9"}))
      << seen.join("\n").toStdString();
}

TEST_F(export_test, geojson_reads_back_as_a_line_and_points) {
  QJsonParseError error{};
  const auto document = QJsonDocument::fromJson(written(write_geojson), &error);
  ASSERT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
  const auto features = document.object()["features"].toArray();
  ASSERT_EQ(features.size(), 3);
  const auto line = features[0].toObject();
  EXPECT_EQ(line["geometry"].toObject()["type"].toString(), "LineString");
  const auto coordinates = line["geometry"].toObject()["coordinates"].toArray();
  ASSERT_EQ(coordinates.size(), 2);
  EXPECT_EQ(coordinates[0].toArray(), (QJsonArray{180.0, 48.1173, -12.5}));
  EXPECT_EQ(line["properties"].toObject()["dropped"].toInt(), 1);
  EXPECT_EQ(line["properties"].toObject()["coordTimes"].toArray()[1].toString(), "2026-11-23T12:00:02.000Z");
  EXPECT_EQ(features[2].toObject()["geometry"].toObject()["coordinates"].toArray(), (QJsonArray{180.0, 48.0}));
  EXPECT_EQ(features[1].toObject()["properties"].toObject()["name"].toString(), "m");
}

TEST_F(export_test, the_file_kind_follows_the_extension_and_a_bad_path_says_why) {
  QTemporaryDir dir;
  EXPECT_EQ(export_track(dir.filePath("t.GeoJSON"), track, markers), "");
  EXPECT_EQ(export_track(dir.filePath("t.gpx"), track, markers), "");
  QFile geojson(dir.filePath("t.GeoJSON")), gpx(dir.filePath("t.gpx"));
  ASSERT_TRUE(geojson.open(QIODevice::ReadOnly) && gpx.open(QIODevice::ReadOnly));
  EXPECT_TRUE(geojson.readAll().startsWith("{"));
  EXPECT_TRUE(gpx.readAll().startsWith("<?xml"));
  EXPECT_NE(export_track(dir.filePath("missing/t.gpx"), track, markers), "");
}

}  // namespace
