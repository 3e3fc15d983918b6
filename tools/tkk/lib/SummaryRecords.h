#ifndef VEKTKK_TOOLS_TKK_SUMMARYRECORDS_H
#define VEKTKK_TOOLS_TKK_SUMMARYRECORDS_H

#include <vektkk.h>

#include <nlohmann/json.hpp>

namespace tkk {

// One summary record as the tool shows it: {"position", "fileName",
// "variant", "name", "nation", "state", "lat", "lon", "lengthM", "beacons",
// "beaconType", "guid", "date"}. Texts stop at their first zero byte.
nlohmann::json RecordJson(const _SDatoRiassuntivo& record, int position);

// Every record of a summary, in its order (`tkk summary list --json`).
nlohmann::json ListSummary(IFileRiassuntivo& summary);

// The records as a table, one line each, and a last line with the count.
std::string ListText(const nlohmann::json& records);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_SUMMARYRECORDS_H
