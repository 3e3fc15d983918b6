#include "Catalogue.h"

#include <string.h>

#include <algorithm>
#include <pugixml.hpp>
#include <sstream>

#include "Render.h"
#include "TrackReader.h"
#include "XmlText.h"

namespace tkk {

namespace {

const char* const kHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Track catalogue</title>
<style>
  body { margin: 0; background: #f6f5ef; color: #222;
         font: 15px/1.45 "DejaVu Sans", Arial, sans-serif; }
  header { padding: 28px 40px 12px; }
  h1 { margin: 0 0 4px; font-size: 28px; }
  header p { margin: 0; color: #666; }
  table { border-collapse: separate; border-spacing: 0 10px; margin: 0 28px 40px; }
  th { text-align: left; font-weight: normal; color: #777; font-size: 13px; padding: 0 14px; }
  td { background: #fff; padding: 10px 14px; vertical-align: middle; }
  td:first-child { border-radius: 10px 0 0 10px; }
  td:last-child { border-radius: 0 10px 10px 0; }
  tr.variant { box-shadow: 0 1px 3px rgba(0, 0, 0, 0.12); }
  td.outline svg { display: block; width: 230px; height: 181px; border-radius: 6px;
                   overflow: hidden; }
  .name { font-size: 18px; font-weight: bold; }
  .site, .file { color: #666; font-size: 13px; }
  .file { font-family: "DejaVu Sans Mono", monospace; }
  .nation { display: inline-block; min-width: 2.4em; text-align: center; padding: 2px 6px;
            border-radius: 4px; background: #3a3a3a; color: #fff; font-weight: bold; }
  .number { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
  a { color: #b04000; }
</style>
</head>
)";

pugi::xml_node Add(pugi::xml_node parent, const char* element, const char* cssClass = nullptr,
                   const std::string& text = std::string()) {
  pugi::xml_node node = parent.append_child(element);
  if (cssClass) node.append_attribute("class") = cssClass;
  if (!text.empty()) node.text().set(text.c_str());
  return node;
}

// The variant's map picture, trimmed to its map, as an element of the page.
void AddOutline(pugi::xml_node cell, const ExportedVariant& v) {
  pugi::xml_document picture;
  if (v.geometry.outline.size() < 2 || !picture.load_string(RenderSvg(v).c_str())) {
    Add(cell, "span", "site", "no outline");
    return;
  }
  pugi::xml_node svg = cell.append_copy(picture.child("svg"));
  svg.attribute("viewBox").set_value(MapViewBox().c_str());
  svg.attribute("width").set_value("230");
  svg.attribute("height").set_value("181");
  svg.append_attribute("role") = "img";
  svg.append_attribute("aria-label") = ("outline of " + VariantLabel(v)).c_str();
}

void AddRow(pugi::xml_node body, const CatalogueRow& row) {
  const _SDatoRiassuntivo& r = *row.record;
  const ExportedVariant& v = *row.variant;
  const std::string fileName = FixedText(r.FileName, sizeof r.FileName);
  pugi::xml_node tr = Add(body, "tr", "variant");
  tr.append_attribute("id") = (fileName + "-" + std::to_string(r.VariantIdx)).c_str();
  AddOutline(Add(tr, "td", "outline"), v);

  // The site as a heading; the layout, the type and the name on the logger
  // (cut to 28 bytes) under it when they say something more.
  pugi::xml_node names = Add(tr, "td");
  const std::string title = v.site.empty() ? VariantLabel(v) : v.site;
  Add(Add(names, "div"), "span", "name", title);
  std::string about = v.track.empty() || v.track == title ? v.type : v.track + " · " + v.type;
  const std::string device = FixedText(r.Name, sizeof r.Name);
  if (device != title && device != v.track) about += " · on the logger: " + device;
  Add(Add(names, "div"), "span", "site", about);
  Add(Add(names, "div"), "span", "file",
      fileName + ".tkk · variant " + std::to_string(r.VariantIdx));

  const std::string nation = FixedText(r.Country, sizeof r.Country);
  Add(Add(tr, "td"), "span", nation.empty() ? nullptr : "nation", nation.empty() ? "–" : nation);
  const std::string state = FixedText(r.State, sizeof r.State);
  Add(tr, "td", nullptr, state.empty() ? "–" : state);
  Add(tr, "td", "number", Decimal(r.Length / 1000.0, 3) + " km");
  Add(tr, "td", "number",
      Decimal(ConvertiLatLonADouble(r.RifLat), 5) + ", " +
          Decimal(ConvertiLatLonADouble(r.RIfLon), 5));
  pugi::xml_node link = Add(Add(tr, "td"), "a", nullptr, "GeoJSON");
  link.append_attribute("href") = row.geojson.c_str();
  link.append_attribute("download") = "";
}

bool ByNationAndName(const CatalogueRow& a, const CatalogueRow& b) {
  const int nation = strncmp(a.record->Country, b.record->Country, sizeof a.record->Country);
  if (nation != 0) return nation < 0;
  const int site = a.variant->site.compare(b.variant->site);
  if (site != 0) return site < 0;
  return a.record->VariantIdx < b.record->VariantIdx;
}

}  // namespace

std::string CataloguePage(std::vector<CatalogueRow> rows, size_t trackFiles) {
  std::stable_sort(rows.begin(), rows.end(), ByNationAndName);
  pugi::xml_document doc;
  pugi::xml_node body = doc.append_child("body");
  pugi::xml_node header = Add(body, "header");
  Add(header, "h1", nullptr, "Track catalogue");
  Add(header, "p", nullptr,
      std::to_string(rows.size()) + (rows.size() == 1 ? " variant of " : " variants of ") +
          std::to_string(trackFiles) + (trackFiles == 1 ? " track file" : " track files") +
          ", as summary.bin holds them. Each GeoJSON opens in any map viewer or GIS.");
  pugi::xml_node table = Add(body, "table");
  pugi::xml_node head = Add(Add(table, "thead"), "tr");
  for (const char* title :
       {"Outline", "Track", "Nation", "State", "Length", "Reference point", "Map"}) {
    Add(head, "th", nullptr, title);
  }
  pugi::xml_node tbody = Add(table, "tbody");
  for (const CatalogueRow& row : rows) AddRow(tbody, row);

  // HTML, not XML: no declaration, and no element written as <x/>, which an
  // HTML parser would read as an opening tag only.
  std::ostringstream page;
  page << kHead;
  doc.save(page, "  ",
           pugi::format_indent | pugi::format_no_declaration | pugi::format_no_empty_element_tags,
           pugi::encoding_utf8);
  page << "</html>\n";
  return page.str();
}

}  // namespace tkk
