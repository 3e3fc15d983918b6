#ifndef VEKTKK_TESTS_SUMMARY_LITERALSUMMARY_H
#define VEKTKK_TESTS_SUMMARY_LITERALSUMMARY_H

// The summary's algorithms in their literal form, linear
// searches and all: the reference of the differential test and the
// benchmark's baseline.
#include <float.h>
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

inline bool Same(const _SDatoRiassuntivo* a, const _SDatoRiassuntivo* b) {
  return memcmp(a, b, sizeof *a) == 0;
}

inline std::vector<uint16_t> CrossIndex(const Lista& a, const Lista& b) {
  std::vector<uint16_t> out;
  for (const _SDatoRiassuntivo* r : a) {
    if (r == nullptr) continue;
    uint16_t pos = 0, found = 0xFFFF;
    for (const _SDatoRiassuntivo* e : b) {
      if (e != nullptr && Same(e, r)) {
        found = pos;
        break;
      }
      ++pos;
    }
    out.push_back(found);
  }
  return out;
}

inline void Delete(Lista& list, const std::string& name) {
  const vektkk::riassunto::STrovaNomeFile key(name);
  for (;;) {
    auto it = std::find_if(list.begin(), list.end(), key);
    if (it == list.end()) return;
    delete *it;
    list.erase(it);
  }
}

// (list, file name) pairs in the order they are appended.
inline std::vector<std::pair<int, std::string>> Compare(const Lista& here, const Lista& there, bool year) {
  std::vector<std::pair<int, std::string>> out;
  for (const _SDatoRiassuntivo* l : here) {
    if (l == nullptr) continue;
    const std::string name = l->GetNomeFile();
    auto it = std::find_if(there.begin(), there.end(), vektkk::riassunto::STrovaNomeFile(name));
    int list;
    if (it == there.end()) {
      list = 3;
    } else if (Same(*it, l)) {
      list = 0;
    } else {
      const uint32_t dL = l->Date.Valore, dR = (*it)->Date.Valore;
      const bool lNew = ((dL >> 26) & 31) > 14, rNew = (((*it)->Date.Valore >> 26) & 31) > 14;
      if (!year) list = dL > dR ? 1 : 2;
      else if (dL > dR) list = lNew ? 2 : 1;
      else if (dL < dR) list = rNew ? 1 : 2;
      else list = 2;
    }
    out.emplace_back(list, name);
  }
  for (const _SDatoRiassuntivo* r : there)
    if (r != nullptr && std::find_if(here.begin(), here.end(), vektkk::riassunto::STrovaNomeFile(r->GetNomeFile())) == here.end())
      out.emplace_back(4, r->GetNomeFile());
  return out;
}

inline int Nearest(const Lista& list, double lat, double lon) {
  int best = static_cast<int>(list.size());
  double bestDist = DBL_MAX;
  for (size_t i = 0; i < list.size(); ++i) {
    if (list[i] == nullptr) continue;
    const double dLat = lat + static_cast<double>(list[i]->RifLat) * (-10000000.0);
    const double dLon = lon + static_cast<double>(list[i]->RIfLon) * (-10000000.0);
    const double d = sqrt(dLat * dLat + dLon * dLon);
    if (bestDist > d) {
      bestDist = d;
      best = static_cast<int>(i);
    }
  }
  return best;
}

inline std::vector<int> Haversine(const Lista& list, double lat, double lon, int maxDist) {
  const double k = 0.017453292519943295, R = 6372797.560856;
  std::vector<int> out;
  for (size_t i = 0; i < list.size(); ++i) {
    if (list[i] == nullptr) continue;
    const double rLat = list[i]->RifLat / 10000000.0, rLon = list[i]->RIfLon / 10000000.0;
    const double s1 = sin((lat - rLat) * k * 0.5), s2 = sin((lon - rLon) * k * 0.5);
    const double c1 = cos(lat * k), c2 = cos(rLat * k);
    const double a = s1 * s1 + s2 * s2 * (c1 * c2);
    const double d = (asin(sqrt(a)) + asin(sqrt(a))) * R;
    if (static_cast<double>(maxDist) > d) out.push_back(static_cast<int>(i));
  }
  return out;
}

}  // namespace literal

#endif  // VEKTKK_TESTS_SUMMARY_LITERALSUMMARY_H
