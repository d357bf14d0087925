#pragma once

#include <QString>

#include "map/annotations.h"
#include "session/track_store.h"

class QIODevice;

// The session's track for other programs: GPX 1.1 (a track of one segment with each point's time,
// elevation, fix, satellites and HDOP where known, the markers as waypoints) and GeoJSON (the track
// as one LineString, the markers as Points). When the store dropped its oldest points, both say so.
// Markers are taken as a decoder lists them, newest first, and written oldest first.
bool write_gpx(QIODevice& out, const track_store_t& track, const annotations_t& markers);
bool write_geojson(QIODevice& out, const track_store_t& track, const annotations_t& markers);

// Writes the file as its extension asks: ".geojson" or ".json" GeoJSON, anything else GPX. An
// empty text when it was written, else why not.
QString export_track(const QString& path, const track_store_t& track, const annotations_t& markers);
