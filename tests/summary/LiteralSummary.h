#ifndef VEKTKK_TESTS_SUMMARY_LITERALSUMMARY_H
#define VEKTKK_TESTS_SUMMARY_LITERALSUMMARY_H

// The summary's algorithms in their literal form, linear searches and all:
// the reference of the differential test and the benchmark's baseline.
#include <math.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "IFileRiassuntivo.h"
#include "summary/Riassunto.h"

namespace literal {

using Lista = std::vector<_SDatoRiassuntivo*>;
using vektkk::riassunto::STrovaNomeFile;

inline bool Same(const _SDatoRiassuntivo* a, const _SDatoRiassuntivo* b) { return memcmp(a, b, sizeof *a) == 0; }

inline std::vector<uint16_t> CrossIndex(const Lista& a, const Lista& b) {
  std::vector<uint16_t> out;
  for (const _SDatoRiassuntivo* r : a) {
    if (r == nullptr) continue;
    const auto it = std::find_if(b.begin(), b.end(), [r](const _SDatoRiassuntivo* e) { return e && Same(e, r); });
    out.push_back(it == b.end() ? 0xFFFF : static_cast<uint16_t>(it - b.begin()));
  }
  return out;
}

inline void Delete(Lista& list, const std::string& name) {
  for (auto it = std::find_if(list.begin(), list.end(), STrovaNomeFile(name)); it != list.end();
       it = std::find_if(list.begin(), list.end(), STrovaNomeFile(name))) {
    delete *it;
    list.erase(it);
  }
}

// (list, file name) pairs in the order they are appended.
inline std::vector<std::pair<int, std::string>> Compare(const Lista& here, const Lista& there, bool year) {
  std::vector<std::pair<int, std::string>> out;
  for (const _SDatoRiassuntivo* l : here) {
    if (l == nullptr) continue;
    const auto it = std::find_if(there.begin(), there.end(), STrovaNomeFile(l->GetNomeFile()));
    int list = 3;
    if (it != there.end() && Same(*it, l)) {
      list = 0;
    } else if (it != there.end()) {
      const uint32_t dL = l->Date.Valore, dR = (*it)->Date.Valore;
      const bool lNew = ((dL >> 26) & 31) > 14, rNew = ((dR >> 26) & 31) > 14;
      if (!year) list = dL > dR ? 1 : 2;
      else if (dL > dR) list = lNew ? 2 : 1;
      else list = dL < dR && rNew ? 1 : 2;
    }
    out.emplace_back(list, l->GetNomeFile());
  }
  for (const _SDatoRiassuntivo* r : there)
    if (r != nullptr && std::none_of(here.begin(), here.end(), STrovaNomeFile(r->GetNomeFile())))
      out.emplace_back(4, r->GetNomeFile());
  return out;
}

inline std::vector<int> Haversine(const Lista& list, double lat, double lon, int maxDist) {
  const double k = 0.017453292519943295, R = 6372797.560856;
  std::vector<int> out;
  for (size_t i = 0; i < list.size(); ++i) {
    if (list[i] == nullptr) continue;
    const double rLat = list[i]->RifLat / 10000000.0, rLon = list[i]->RIfLon / 10000000.0;
    const double s1 = sin((lat - rLat) * k * 0.5), s2 = sin((lon - rLon) * k * 0.5);
    const double a = s1 * s1 + s2 * s2 * (cos(lat * k) * cos(rLat * k));
    if (static_cast<double>(maxDist) > (asin(sqrt(a)) + asin(sqrt(a))) * R) out.push_back(static_cast<int>(i));
  }
  return out;
}

}  // namespace literal

#endif  // VEKTKK_TESTS_SUMMARY_LITERALSUMMARY_H
