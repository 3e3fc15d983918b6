#ifndef VEKTKK_TOOLS_TKK_REPORT_H
#define VEKTKK_TOOLS_TKK_REPORT_H

#include <string>

#include <nlohmann/json.hpp>
#include <vektkk.h>

#include "TrackReader.h"

namespace tkk {

// Everything about a track file, as `tkk info` shows it: site and file name
// (and what the name decodes to), every variant with its names, codes, type,
// surface, length, time zone, reference point, beacon sets and GUID, shape
// points, logos and IsGood.
nlohmann::json DescribeTrack(IFileTkk& track, const std::string& path,
                             const std::vector<LogoEntry>& logos);

// The record check (IsGood) and the three geometric checks of a track, each
// {"check", "passed", "message"}, and "passed" for the whole. The beacon-type
// check concerns the maker's tracks only: a user's track always uses its own
// set, so there it is reported as not applicable and passes.
nlohmann::json CheckTrack(IFileTkk& track, const std::string& path);

// The human-readable forms of both, a few aligned lines each.
std::string InfoText(const nlohmann::json& info);
std::string CheckText(const nlohmann::json& check);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_REPORT_H
