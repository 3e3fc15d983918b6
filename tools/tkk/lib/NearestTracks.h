#ifndef VEKTKK_TOOLS_TKK_NEARESTTRACKS_H
#define VEKTKK_TOOLS_TKK_NEARESTTRACKS_H

#include <limits.h>
#include <stddef.h>
#include <vektkk.h>

#include <nlohmann/json.hpp>
#include <string>

namespace tkk {

// A latitude or longitude typed by a user: a decimal number of degrees
// within [-limit, limit]. Throws BadInput, naming `what`, for anything else.
double ParseDegrees(const std::string& text, const char* what, double limit);

struct NearestQuery {
  double lat = 0.0;
  double lon = 0.0;
  int withinM = INT_MAX;  // the whole earth
  size_t limit = 5;
};

// The tracks within `withinM` metres of the point by the library's haversine
// search, nearest first (on a tie, the first in the summary), at most
// `limit`: each a summary record (RecordJson) with its "distanceM".
nlohmann::json NearestTracks(IFileRiassuntivo& summary, const NearestQuery& query);

std::string NearestText(const nlohmann::json& tracks);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_NEARESTTRACKS_H
