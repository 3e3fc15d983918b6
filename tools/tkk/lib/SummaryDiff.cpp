#include "SummaryDiff.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "BadInput.h"
#include "TextTable.h"
#include "TrackReader.h"

namespace tkk {

namespace {

using Records = std::vector<const _SDatoRiassuntivo*>;

std::map<int, Records> ByVariant(IFileRiassuntivo& summary) {
  Records all;
  summary.GetDatiRiassuntivi(all);
  std::map<int, Records> groups;
  for (const _SDatoRiassuntivo* r : all) {
    if (r != nullptr) groups[r->VariantIdx].push_back(r);
  }
  return groups;
}

// A summary of some records: the library makes summaries only from tracks
// and from files, so the records go through a binary summary file of their
// own for a moment.
std::unique_ptr<IFileRiassuntivo> SummaryOf(const Records& records) {
  const char* tmp = getenv("TMPDIR");
  std::string path = std::string(tmp && *tmp ? tmp : "/tmp") + "/tkk-diff-XXXXXX";
  const int fd = mkstemp(&path[0]);
  if (fd < 0) throw BadInput(path + ": cannot write (" + strerror(errno) + ")");
  bool written = true;
  for (const _SDatoRiassuntivo* r : records) {
    written = written && write(fd, r, sizeof *r) == static_cast<ssize_t>(sizeof *r);
  }
  close(fd);
  std::unique_ptr<IFileRiassuntivo> summary(IFileRiassuntivo::CreateMeUponFile(path));
  unlink(path.c_str());
  if (!written || summary->GetNumRiassuntivi() != static_cast<int>(records.size())) {
    throw BadInput(path + ": cannot write");
  }
  return summary;
}

nlohmann::json Entry(const Records& side, const std::string& fileName, int variant) {
  for (const _SDatoRiassuntivo* r : side) {
    if (r->GetNomeFile() == fileName) {
      return {{"fileName", FixedText(r->FileName, sizeof r->FileName)},
              {"variant", variant},
              {"nation", FixedText(r->Country, sizeof r->Country)},
              {"state", FixedText(r->State, sizeof r->State)},
              {"name", FixedText(r->Name, sizeof r->Name)}};
    }
  }
  return nullptr;
}

}  // namespace

nlohmann::json DiffSummaries(IFileRiassuntivo& older, IFileRiassuntivo& newer) {
  nlohmann::json diff = {{"new", nlohmann::json::array()},
                         {"removed", nlohmann::json::array()},
                         {"newer", nlohmann::json::array()},
                         {"older", nlohmann::json::array()},
                         {"equal", nlohmann::json::array()}};
  std::map<int, Records> before = ByVariant(older);
  std::map<int, Records> after = ByVariant(newer);
  std::set<int> variants;
  for (const auto& g : before) variants.insert(g.first);
  for (const auto& g : after) variants.insert(g.first);
  for (int v : variants) {
    const std::unique_ptr<IFileRiassuntivo> oldSide = SummaryOf(before[v]);
    const std::unique_ptr<IFileRiassuntivo> newSide = SummaryOf(after[v]);
    SConfrontoPiste result;
    newSide->ConfrontaConAltro(*oldSide, result);
    const auto add = [&](const char* key, const std::vector<std::string>& names,
                         const Records& side) {
      for (const std::string& name : names) diff[key].push_back(Entry(side, name, v));
    };
    add("new", result.PisteSoloQui, after[v]);
    add("removed", result.PisteSoloAltrove, before[v]);
    add("newer", result.PisteQuiPiuRecenti, after[v]);
    add("older", result.PisteAltrovePiuRecenti, after[v]);
    add("equal", result.PisteUguali, after[v]);
  }
  for (auto& list : diff) {
    std::stable_sort(
        list.begin(), list.end(), [](const nlohmann::json& a, const nlohmann::json& b) {
          return std::make_pair(a["fileName"].get<std::string>(), a["variant"].get<int>()) <
                 std::make_pair(b["fileName"].get<std::string>(), b["variant"].get<int>());
        });
  }
  return diff;
}

std::string DiffText(const nlohmann::json& diff) {
  const std::pair<const char*, const char*> kinds[] = {{"new", "new"},
                                                       {"removed", "removed"},
                                                       {"newer", "changed (newer)"},
                                                       {"older", "changed (not newer)"}};
  std::vector<std::vector<std::string>> rows;
  for (const auto& kind : kinds) {
    for (const auto& e : diff[kind.first]) {
      rows.push_back({kind.second, e["fileName"], std::to_string(e["variant"].get<int>()),
                      e["nation"], e["state"], e["name"]});
    }
  }
  const size_t equal = diff["equal"].size();
  return TextTable(rows, {false, false, true}) + std::to_string(equal) +
         (equal == 1 ? " variant equal\n" : " variants equal\n");
}

}  // namespace tkk
