#include "Command.h"

namespace tkk {

const std::vector<Command>& CommandTable() {
  static const std::vector<Command> table = {
      {"info", "Everything about a track file", AttachInfo},
      {"check", "Check track files: IsGood and the geometric checks (exit 1 on a failure)",
       AttachCheck},
      {"new", "Make track files from GeoJSON or GPX outlines", AttachNew},
      {"export", "Export a track as GeoJSON, GPX or KML", AttachExport},
      {"render", "Draw a variant of a track as an SVG map", AttachRender},
      {"summary", "Build a summary of a folder of track files, or list one", AttachSummary},
      {"nearest", "The tracks of a summary nearest a GPS position", AttachNearest},
      {"diff", "What changed between two summaries", AttachDiff},
      {"guid", "Make or decode track GUIDs and file names", AttachGuid},
  };
  return table;
}

}  // namespace tkk
