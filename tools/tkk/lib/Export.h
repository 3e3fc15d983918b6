#ifndef VEKTKK_TOOLS_TKK_EXPORT_H
#define VEKTKK_TOOLS_TKK_EXPORT_H

#include <string>
#include <vector>

#include <vektkk.h>

#include "Geodesy.h"
#include "TrackReader.h"

namespace tkk {

enum class ExportFormat { kGeoJson, kGpx, kKml };

// One variant as the exports show it.
struct ExportedVariant {
  size_t index = 0;
  std::string site;
  std::string track;   // the variant's track name
  std::string device;  // the name on the logger
  std::string nation;
  std::string state;
  std::string type;
  double lengthM = 0.0;
  VariantGeometry geometry;
  std::vector<Segment> lineSegments;  // one per beacon line, across the track
};

std::vector<ExportedVariant> ExportModel(IFileTkk& track);

// The whole track in one document: per variant its outline (points as
// stored, not closed again), its reference point and its beacon lines as
// short segments across the track, with names and properties. Every XML is
// built with pugixml and so well-formed.
//  - GeoJSON: a FeatureCollection; property "role" is "outline",
//    "reference", "finish" or "split". `tkk new` reads the outlines back.
//  - GPX 1.1: outlines as tracks, reference points as waypoints, beacon
//    lines as routes of two points.
//  - KML 2.2: three folders (outlines, reference points, beacon lines).
std::string ExportTrack(IFileTkk& track, ExportFormat format);
std::string ExportGeoJson(const std::vector<ExportedVariant>& variants);
std::string ExportGpx(const std::vector<ExportedVariant>& variants);
std::string ExportKml(const std::vector<ExportedVariant>& variants);

// The label a variant goes by: its track name, else its device name, else
// the site name.
std::string VariantLabel(const ExportedVariant& v);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_EXPORT_H
