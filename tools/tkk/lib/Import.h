#ifndef VEKTKK_TOOLS_TKK_IMPORT_H
#define VEKTKK_TOOLS_TKK_IMPORT_H

#include <string>

#include "Circuit.h"

namespace tkk {

// Reads a circuit from a map file: GeoJSON (RFC 7946) or GPX 1.1, told apart
// by the first character of the document ('{' or '<'). Throws BadInput with
// a one-line message naming the file for anything it cannot use.
Circuit ReadCircuit(const std::string& path);

// GeoJSON: every LineString (also inside a MultiLineString, a Feature or a
// FeatureCollection) is one layout, in document order; features whose "role"
// property names something other than an outline (the reference points and
// beacon lines that the export writes) are skipped. A layout's name is its
// "name" (or "Name") property; the circuit's name is the "site" property of
// the first outline, else that outline's name. "nation" and "state"
// properties give the codes.
Circuit ParseGeoJson(const std::string& text, const std::string& source);

// GPX 1.1: every track is one layout (its segments joined); without tracks,
// every route is one. Names come from <name>; the circuit's name from the
// metadata's <name>, else the first layout's.
Circuit ParseGpx(const std::string& text, const std::string& source);

// Throws BadInput unless the layout has at least two points, every latitude
// is within +-90 and every longitude within +-180 degrees.
void ValidateLayout(const Layout& layout, const std::string& where);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_IMPORT_H
