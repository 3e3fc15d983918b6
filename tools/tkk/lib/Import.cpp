#include "Import.h"

#include <math.h>
#include <sys/stat.h>

#include <fstream>
#include <sstream>

#include "BadInput.h"

namespace tkk {

namespace {

std::string ReadWholeFile(const std::string& path) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0) throw BadInput(path + ": no such file");
  if (S_ISDIR(st.st_mode)) throw BadInput(path + ": is a directory, not a file");
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  if (!in || !(text << in.rdbuf())) {
    if (st.st_size == 0) throw BadInput(path + ": empty file");
    throw BadInput(path + ": cannot be read");
  }
  return text.str();
}

}  // namespace

void ValidateLayout(const Layout& layout, const std::string& where) {
  if (layout.points.size() < 2) throw BadInput(where + ": an outline needs at least two points");
  for (size_t i = 0; i < layout.points.size(); ++i) {
    const GeoPoint& p = layout.points[i];
    const std::string point = where + ", point " + std::to_string(i + 1);
    if (!isfinite(p.lat) || fabs(p.lat) > 90.0) throw BadInput(point + ": latitude out of range");
    if (!isfinite(p.lon) || fabs(p.lon) > 180.0) throw BadInput(point + ": longitude out of range");
    if (!isfinite(p.alt)) throw BadInput(point + ": altitude is not a number");
    // Stored in millimetres in 32 bits: beyond, the conversion would wrap
    // differently on 32- and 64-bit processors.
    if (fabs(p.alt) > 2147483.647) throw BadInput(point + ": altitude out of range");
  }
}

Circuit ReadCircuit(const std::string& path) {
  const std::string text = ReadWholeFile(path);
  const size_t first = text.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
  if (first == std::string::npos) throw BadInput(path + ": empty file");
  if (text[first] == '{') return ParseGeoJson(text, path);
  if (text[first] == '<') return ParseGpx(text, path);
  throw BadInput(path + ": neither GeoJSON nor GPX");
}

}  // namespace tkk
