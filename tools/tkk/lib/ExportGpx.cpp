#include "Export.h"
#include "XmlText.h"

namespace tkk {

namespace {

void SetPosition(pugi::xml_node node, const GeoPoint& p) {
  node.append_attribute("lat") = Decimal(p.lat, 7).c_str();
  node.append_attribute("lon") = Decimal(p.lon, 7).c_str();
  if (p.alt != 0.0) AddText(node, "ele", Decimal(p.alt, 3));
}

}  // namespace

std::string ExportGpx(const std::vector<ExportedVariant>& variants) {
  pugi::xml_document doc;
  pugi::xml_node gpx = doc.append_child("gpx");
  gpx.append_attribute("version") = "1.1";
  gpx.append_attribute("creator") = "tkk";
  gpx.append_attribute("xmlns") = "http://www.topografix.com/GPX/1/1";
  if (!variants.empty()) AddText(gpx.append_child("metadata"), "name", variants.front().site);

  // GPX wants waypoints, then routes, then tracks.
  for (const ExportedVariant& v : variants) {
    pugi::xml_node wpt = gpx.append_child("wpt");
    SetPosition(wpt, v.geometry.reference);
    AddText(wpt, "name", "Reference point of " + VariantLabel(v));
    AddText(wpt, "type", "reference");
  }
  for (const ExportedVariant& v : variants) {
    for (size_t i = 0; i < v.lineSegments.size(); ++i) {
      pugi::xml_node rte = gpx.append_child("rte");
      AddText(rte, "name", (i == 0 ? std::string("Finish line") : "Split " + std::to_string(i)) +
                               " of " + VariantLabel(v));
      AddText(rte, "type", i == 0 ? "finish" : "split");
      SetPosition(rte.append_child("rtept"), v.lineSegments[i].a);
      SetPosition(rte.append_child("rtept"), v.lineSegments[i].b);
    }
  }
  for (const ExportedVariant& v : variants) {
    pugi::xml_node trk = gpx.append_child("trk");
    AddText(trk, "name", v.track);
    AddText(trk, "desc", v.site + ", " + v.nation + (v.state.empty() ? "" : "/" + v.state) + ", " +
                             Decimal(v.lengthM, 0) + " m, " + v.type);
    AddText(trk, "type", "outline");
    pugi::xml_node seg = trk.append_child("trkseg");
    for (const GeoPoint& p : v.geometry.outline) SetPosition(seg.append_child("trkpt"), p);
  }
  return XmlText(doc);
}

}  // namespace tkk
