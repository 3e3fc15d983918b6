#include "Export.h"
#include "XmlText.h"

namespace tkk {

namespace {

std::string Coordinates(const std::vector<GeoPoint>& points) {
  std::string text;
  for (const GeoPoint& p : points) {
    if (!text.empty()) text += ' ';
    text += Decimal(p.lon, 7) + "," + Decimal(p.lat, 7) + "," + Decimal(p.alt, 3);
  }
  return text;
}

pugi::xml_node Placemark(pugi::xml_node folder, const std::string& name, const char* geometry,
                         const std::vector<GeoPoint>& points) {
  pugi::xml_node mark = folder.append_child("Placemark");
  AddText(mark, "name", name);
  AddText(mark.append_child(geometry), "coordinates", Coordinates(points));
  return mark;
}

void Data(pugi::xml_node mark, const char* name, const std::string& value) {
  pugi::xml_node data = mark.child("ExtendedData");
  if (!data) data = mark.insert_child_after("ExtendedData", mark.child("name"));
  pugi::xml_node item = data.append_child("Data");
  item.append_attribute("name") = name;
  AddText(item, "value", value);
}

}  // namespace

std::string ExportKml(const std::vector<ExportedVariant>& variants) {
  pugi::xml_document doc;
  pugi::xml_node kml = doc.append_child("kml");
  kml.append_attribute("xmlns") = "http://www.opengis.net/kml/2.2";
  pugi::xml_node document = kml.append_child("Document");
  AddText(document, "name", variants.empty() ? std::string() : variants.front().site);

  pugi::xml_node outlines = document.append_child("Folder");
  AddText(outlines, "name", "Outlines");
  pugi::xml_node references = document.append_child("Folder");
  AddText(references, "name", "Reference points");
  pugi::xml_node lines = document.append_child("Folder");
  AddText(lines, "name", "Beacon lines");

  for (const ExportedVariant& v : variants) {
    pugi::xml_node mark = Placemark(outlines, VariantLabel(v), "LineString", v.geometry.outline);
    Data(mark, "site", v.site);
    Data(mark, "device", v.device);
    Data(mark, "nation", v.nation);
    Data(mark, "state", v.state);
    Data(mark, "type", v.type);
    Data(mark, "length", Decimal(v.lengthM, 0));
    Placemark(references, "Reference point of " + VariantLabel(v), "Point", {v.geometry.reference});
    for (size_t i = 0; i < v.lineSegments.size(); ++i) {
      const std::string name =
          (i == 0 ? std::string("Finish line") : "Split " + std::to_string(i)) + " of " + VariantLabel(v);
      pugi::xml_node line = Placemark(lines, name, "LineString", {v.lineSegments[i].a, v.lineSegments[i].b});
      Data(line, "width", std::to_string(v.geometry.lines[i].widthM));
    }
  }
  return XmlText(doc);
}

}  // namespace tkk
