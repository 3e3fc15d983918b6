#include "NearestTracks.h"

#include <math.h>
#include <stdlib.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "BadInput.h"
#include "Geodesy.h"
#include "SummaryRecords.h"
#include "TextTable.h"
#include "XmlText.h"

namespace tkk {

double ParseDegrees(const std::string& text, const char* what, double limit) {
  char* end = nullptr;
  const double value = strtod(text.c_str(), &end);
  if (text.empty() || end != text.c_str() + text.size() || !std::isfinite(value)) {
    throw BadInput(std::string(what) + " '" + text + "' is not a number of degrees");
  }
  if (fabs(value) > limit) {
    throw BadInput(std::string(what) + " " + text + " is out of range (-" + Decimal(limit, 0) +
                   " to " + Decimal(limit, 0) + ")");
  }
  return value;
}

nlohmann::json NearestTracks(IFileRiassuntivo& summary, const NearestQuery& query) {
  std::vector<int> found;
  summary.getNearestTracksByHeaversine(query.lat, query.lon, query.withinM, found);
  std::vector<std::pair<double, int>> byDistance;
  for (int position : found) {
    const _SDatoRiassuntivo* r = nullptr;
    if (!summary.GetDatoRiassuntivo(r, position) || r == nullptr) continue;
    const GeoPoint at{ConvertiLatLonADouble(r->RifLat), ConvertiLatLonADouble(r->RIfLon), 0.0};
    byDistance.emplace_back(HaversineM(GeoPoint{query.lat, query.lon, 0.0}, at), position);
  }
  std::sort(byDistance.begin(), byDistance.end());
  if (byDistance.size() > query.limit) byDistance.resize(query.limit);
  nlohmann::json tracks = nlohmann::json::array();
  for (const auto& hit : byDistance) {
    const _SDatoRiassuntivo* r = nullptr;
    summary.GetDatoRiassuntivo(r, hit.second);
    nlohmann::json track = RecordJson(*r, hit.second);
    track["distanceM"] = round(hit.first * 10.0) / 10.0;
    tracks.push_back(track);
  }
  return tracks;
}

std::string NearestText(const nlohmann::json& tracks) {
  if (tracks.empty()) return "no track within reach\n";
  std::vector<std::vector<std::string>> rows = {
      {"distance", "file", "var", "name", "nation", "state"}};
  for (const auto& t : tracks) {
    rows.push_back({Decimal(t["distanceM"], 0) + " m", t["fileName"],
                    std::to_string(t["variant"].get<int>()), t["name"], t["nation"], t["state"]});
  }
  return TextTable(rows, {true, false, true});
}

}  // namespace tkk
