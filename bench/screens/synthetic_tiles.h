#pragma once

#include <QImage>
#include <QString>

#include "map/geo.h"

// Map tiles drawn here, for benchmarks and screenshots on a machine without a tile server: a
// light land colour, a street grid, parks and a river, laid out in world coordinates so that
// the tiles of every zoom level agree.
QImage synthetic_tile(int z, int x, int y);

// Writes the tiles around a coordinate as DIR/Z/X/Y.png for zoom levels from_z to to_z, `reach`
// tiles to each side of the centre tile. Returns the URL template to read them back.
QString write_synthetic_tiles(const QString& dir, geo_coordinate_t centre, int from_z, int to_z, int reach);
