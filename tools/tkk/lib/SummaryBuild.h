#ifndef VEKTKK_TOOLS_TKK_SUMMARYBUILD_H
#define VEKTKK_TOOLS_TKK_SUMMARYBUILD_H

#include <stddef.h>
#include <vektkk.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Export.h"

namespace tkk {

// A summary read from a binary summary file. The library answers an empty
// summary for a file it cannot use, which would pass for an empty
// catalogue; so a missing path, a folder and a file that is not a whole
// number of 128-byte records throw BadInput here. A file of zero bytes is a
// summary of no tracks.
std::unique_ptr<IFileRiassuntivo> OpenSummary(const std::string& path);

// The track files (".tkk") of a folder, in name order. Throws BadInput when
// `dir` is not a folder.
std::vector<std::string> TrackFilesIn(const std::string& dir);

// A track file that went into the summary: its records are
// [firstRecord, firstRecord + variants.size()).
struct SummarisedTrack {
  std::string path;
  size_t firstRecord = 0;
  std::vector<ExportedVariant> variants;  // for the catalogue page
};

struct SkippedTrack {
  std::string path;
  std::string reason;  // one line
};

struct SummaryBuild {
  std::unique_ptr<IFileRiassuntivo> summary;
  std::vector<SummarisedTrack> tracks;
  std::vector<SkippedTrack> skipped;
};

// Every track file of `dir`, in name order, added to a new summary variant
// by variant. A file that does not read, or that the library does not hold
// good (it would add nothing for it), is skipped and listed. `progress` is
// called with (files done, files in all) after each file.
using Progress = std::function<void(size_t done, size_t total)>;
SummaryBuild BuildSummary(const std::string& dir, const Progress& progress = Progress());

// The files of a summary set, in the order WriteSummarySet writes them:
// summary.bin (the records in the order they were added), summary.txt (the
// text listing, by nation and name) and the four sorted sets with their
// cross-indexes.
const std::vector<std::string>& SummarySetFiles();
// Writes them into `dir`. The library writes silently; a file that is not
// there afterwards throws BadInput. An empty summary throws BadInput too:
// the library makes no sorted set of nothing.
void WriteSummarySet(IFileRiassuntivo& summary, const std::string& dir);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_SUMMARYBUILD_H
