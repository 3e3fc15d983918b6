#ifndef VEKTKK_TOOLS_TKK_TRACKBUILDER_H
#define VEKTKK_TOOLS_TKK_TRACKBUILDER_H

#include <memory>
#include <string>
#include <vector>

#include <vektkk.h>

#include "Circuit.h"

namespace tkk {

// What `tkk new` sets beside the geometry. Empty texts fall back to what the
// map file gave.
struct NewTrackOptions {
  std::string name;
  std::string nation;
  std::string state;
  _eTipoTracciatoTkk type = TRACCIATO_RACE_TRACK;
  _eTipoRoadSurfaceTkk surface = FONDO_PAVED;
  unsigned int widthM = 12;  // of the finish line
  bool maker = false;        // a maker's (read-only) track
  bool dev = false;          // a development track
};

// A track file in memory with one variant per layout: the outline as shape,
// the reference point at its centroid, the finish line at its first point
// across the direction of travel, the haversine length of the closed outline
// with its standard-length key, the time zone of nation and state, a new
// GUID and today's date. Device names are the layout's name (else the
// circuit's), cut to the 28 bytes the logger shows without splitting a
// character.
std::unique_ptr<IFileTkk> BuildTrack(const Circuit& circuit, const NewTrackOptions& options);

// Saves each track under a new GUID file name in `dir` and returns the paths
// written. All or nothing: when one save fails, the files already written by
// this call are removed and BadInput is thrown.
std::vector<std::string> SaveTracks(const std::vector<std::unique_ptr<IFileTkk>>& tracks,
                                    const std::string& dir);

// `text` cut to at most `bytes` bytes of UTF-8 without splitting a character.
std::string CutUtf8(const std::string& text, size_t bytes);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_TRACKBUILDER_H
