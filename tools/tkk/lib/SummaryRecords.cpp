#include "SummaryRecords.h"

#include "Identifiers.h"
#include "TextTable.h"
#include "TrackReader.h"
#include "XmlText.h"

namespace tkk {

nlohmann::json RecordJson(const _SDatoRiassuntivo& r, int position) {
  return {{"position", position},
          {"fileName", FixedText(r.FileName, sizeof r.FileName)},
          {"variant", r.VariantIdx},
          {"name", FixedText(r.Name, sizeof r.Name)},
          {"nation", FixedText(r.Country, sizeof r.Country)},
          {"state", FixedText(r.State, sizeof r.State)},
          {"lat", ConvertiLatLonADouble(r.RifLat)},
          {"lon", ConvertiLatLonADouble(r.RIfLon)},
          {"lengthM", r.Length},
          {"beacons", r.BeaconNumber},
          {"beaconType", r.BeaconType},
          {"guid", GuidText(r.Guid)},
          {"date", DateText(r.Date)}};
}

nlohmann::json ListSummary(IFileRiassuntivo& summary) {
  nlohmann::json records = nlohmann::json::array();
  std::vector<const _SDatoRiassuntivo*> all;
  summary.GetDatiRiassuntivi(all);
  for (size_t i = 0; i < all.size(); ++i) {
    if (all[i] != nullptr) records.push_back(RecordJson(*all[i], static_cast<int>(i)));
  }
  return records;
}

std::string ListText(const nlohmann::json& records) {
  std::vector<std::vector<std::string>> rows = {
      {"#", "file", "var", "name", "nation", "state", "lat", "lon", "length", "date"}};
  for (const auto& r : records) {
    rows.push_back({std::to_string(r["position"].get<int>()), r["fileName"],
                    std::to_string(r["variant"].get<int>()), r["name"], r["nation"], r["state"],
                    Decimal(r["lat"], 5), Decimal(r["lon"], 5),
                    Decimal(r["lengthM"].get<double>() / 1000.0, 3) + " km", r["date"]});
  }
  return TextTable(rows, {true, false, true, false, false, false, true, true, true, false}) +
         std::to_string(records.size()) + (records.size() == 1 ? " variant\n" : " variants\n");
}

}  // namespace tkk
