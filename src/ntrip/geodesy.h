#pragma once

#include "map/geo.h"

// A WGS 84 position: latitude and longitude in degrees (north and east positive), height in metres
// above the ellipsoid.
struct geodetic_t {
  geo_coordinate_t coordinate;
  double height_m = 0.0;
};

// The geodetic position of an earth-centred point, in metres.
geodetic_t geodetic_from_ecef(double x_m, double y_m, double z_m);

// The great-circle distance in metres between two coordinates on a sphere of the earth's mean
// radius: within 0.5 % of the ellipsoid's, plenty for choosing the nearest base station.
double surface_distance_m(geo_coordinate_t a, geo_coordinate_t b);
