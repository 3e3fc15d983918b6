#ifndef VEKTKK_COORDINATE_H
#define VEKTKK_COORDINATE_H

#include <stddef.h>
#include <stdint.h>

#include "VekTkkExport.h"

// Positions are stored as signed 32-bit fixed point, never as floating point:
// latitude and longitude in steps of 1e-7 degree, altitude in millimetres.
// A value converted to double and back is bit-identical. No range is checked.

// Number of stored steps per degree of latitude or longitude (1e7).
extern VEKTKK_API const double c_fattore_conversione;

// Stored latitude or longitude to degrees (a true division by 1e7).
VEKTKK_API double ConvertiLatLonADouble(const int& value);
// Stored altitude to metres (a true division by 1000).
VEKTKK_API double ConvertiAltADouble(const int& value);
// Degrees to a stored latitude or longitude, rounding half away from zero.
// The result for a value beyond about +-214.7 degrees is undefined.
VEKTKK_API int ConvertiLatLonAs32(const double& degrees);

#pragma pack(push, 1)
// One point of a track's shape, 12 bytes little-endian in files.
struct _t_s_lla_i {
  int32_t LatI;  // 1e-7 degree
  int32_t LonI;  // 1e-7 degree
  int32_t AltI;  // millimetre
};
#pragma pack(pop)

static_assert(sizeof(_t_s_lla_i) == 12, "a shape point is 12 bytes");
static_assert(offsetof(_t_s_lla_i, LonI) == 4, "LonI follows LatI");
static_assert(offsetof(_t_s_lla_i, AltI) == 8, "AltI follows LonI");

#endif  // VEKTKK_COORDINATE_H
