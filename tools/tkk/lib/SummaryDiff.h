#ifndef VEKTKK_TOOLS_TKK_SUMMARYDIFF_H
#define VEKTKK_TOOLS_TKK_SUMMARYDIFF_H

#include <vektkk.h>

#include <nlohmann/json.hpp>
#include <string>

namespace tkk {

// What changed from `older` to `newer`, one entry per variant of a track
// file: {"new", "removed", "newer", "older", "equal"}, each a list of
// {"fileName", "variant", "nation", "state", "name"} in file-name order.
// "newer": the record changed and the new summary's is the more recent;
// "older": it changed and the new summary's is not the more recent (same
// date, an older one, or a date from 2030 on, which the library never counts
// as newer).
//
// The verdicts are the library's comparison, made variant index by variant
// index: the library matches a record with the first record of the same
// file on the other side, which for the second layout of a track would be
// the other side's main layout.
nlohmann::json DiffSummaries(IFileRiassuntivo& older, IFileRiassuntivo& newer);

// One line per entry that is not equal, then the count of equal ones.
std::string DiffText(const nlohmann::json& diff);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_SUMMARYDIFF_H
