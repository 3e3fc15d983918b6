#ifndef VEKTKK_TOOLS_TKK_RENDER_H
#define VEKTKK_TOOLS_TKK_RENDER_H

#include <string>

#include <vektkk.h>

#include "Export.h"

namespace tkk {

// An SVG picture of one variant: the outline in an azimuthal equidistant
// projection about the reference point (true shape and a true scale bar at
// any latitude, north up), the finish line and the split lines across the
// track, arrows in the direction of travel, and the name, nation and length
// written on it. Throws BadInput when the variant does not exist or has no
// outline.
std::string RenderSvg(IFileTkk& track, size_t variant);
std::string RenderSvg(const ExportedVariant& variant);

// The part of every picture RenderSvg draws that holds the map, between the
// title and the legend, as an SVG viewBox: a thumbnail shows only that.
std::string MapViewBox();

// A round length for a scale bar of about `metres`: 1, 2 or 5 times a power
// of ten, not above `metres`.
double ScaleBarLength(double metres);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_RENDER_H
