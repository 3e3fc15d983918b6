#ifndef VEKTKK_TOOLS_TKK_TRACKREADER_H
#define VEKTKK_TOOLS_TKK_TRACKREADER_H

#include <stddef.h>

#include <memory>
#include <string>
#include <vector>

#include <vektkk.h>

#include "Circuit.h"

namespace tkk {

// Opens a track file for reading only. Logos are not loaded, so that looking
// at a track never writes its logo image beside it. Throws BadInput for a
// missing path, a directory, and a file that is damaged (cut short, a bad
// checksum) or that the library cannot read.
std::unique_ptr<IFileTkk> OpenTrack(const std::string& path);

// The logos embedded in a track file, read from its atoms without writing
// anything.
struct LogoEntry {
  std::string name;
  size_t bytes = 0;
};
std::vector<LogoEntry> ListLogos(const std::string& path);

// A text field of a record up to its first zero byte, at most `size` bytes.
std::string FixedText(const char* field, size_t size);

// What the tool draws and exports of one variant.
struct BeaconLine {
  unsigned int index = 0;  // 0 the finish line, then the split lines
  GeoPoint at;
  unsigned int widthM = 0;  // of the set (entry 0)
};
struct VariantGeometry {
  std::vector<GeoPoint> outline;
  GeoPoint reference;
  std::vector<BeaconLine> lines;  // of the set in use
};
VariantGeometry GeometryOf(IVarianteTkk& variant);

GeoPoint ToGeo(int32_t latI, int32_t lonI, int32_t altMm);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_TRACKREADER_H
