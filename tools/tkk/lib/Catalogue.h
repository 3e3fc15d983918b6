#ifndef VEKTKK_TOOLS_TKK_CATALOGUE_H
#define VEKTKK_TOOLS_TKK_CATALOGUE_H

#include <vektkk.h>

#include <string>
#include <vector>

#include "Export.h"

namespace tkk {

// One line of the catalogue: a summary record, the variant it was made from
// and where the track's GeoJSON export lies (relative to the page).
struct CatalogueRow {
  const _SDatoRiassuntivo* record = nullptr;
  const ExportedVariant* variant = nullptr;
  std::string geojson;
};

// The catalogue page (index.html): a table with one row per variant, by
// nation and site, each with its outline (RenderSvg's map, inline), nation,
// state, length, reference point and a link to its GeoJSON export. Plain
// HTML with inline SVG and one style sheet in the page: no script, nothing
// fetched from anywhere, so it opens from a folder, a USB stick or a mail.
// The body is built with pugixml, so names are escaped by construction.
std::string CataloguePage(std::vector<CatalogueRow> rows, size_t trackFiles);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_CATALOGUE_H
