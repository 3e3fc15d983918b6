#ifndef VEKTKK_TESTS_SUMMARY_SUMMARYTESTUTIL_H
#define VEKTKK_TESTS_SUMMARY_SUMMARYTESTUTIL_H

#include <stdint.h>
#include <string.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "IFileRiassuntivo.h"
#include "summary/CFileRiassuntivo.h"
#include "support/TrackFixtures.h"

namespace sumtest {

using Lista = std::vector<_SDatoRiassuntivo*>;

// A record with the fields that the tests look at.
inline _SDatoRiassuntivo Rec(const char* name, const char* country = "", int32_t lat = 0, int32_t lon = 0,
                             uint64_t guid = 0, const char* file = "aaaaaaaa", uint32_t date = 0) {
  _SDatoRiassuntivo r;
  memcpy(r.Name, name, strnlen(name, sizeof r.Name));
  memcpy(r.Country, country, strnlen(country, sizeof r.Country));
  r.RifLat = lat;
  r.RIfLon = lon;
  r.Guid.Valore = guid;
  memcpy(r.FileName, file, strnlen(file, sizeof r.FileName));
  r.Date.Valore = date;
  return r;
}

// The packed date word of a year (January 1st, midnight).
inline uint32_t Year(int year) { return static_cast<uint32_t>(year - 2015) << 26; }

// A summary that owns copies of the records (null pointers stay null).
inline std::unique_ptr<CFileRiassuntivo> Summary(std::initializer_list<const _SDatoRiassuntivo*> records) {
  std::unique_ptr<CFileRiassuntivo> s(new CFileRiassuntivo);
  for (const _SDatoRiassuntivo* r : records) s->Lista().push_back(r != nullptr ? new _SDatoRiassuntivo(*r) : nullptr);
  return s;
}

inline fixtures::Bytes BytesOf(std::initializer_list<const _SDatoRiassuntivo*> records) {
  fixtures::Bytes out;
  for (const _SDatoRiassuntivo* r : records)
    out.insert(out.end(), reinterpret_cast<const unsigned char*>(r), reinterpret_cast<const unsigned char*>(r + 1));
  return out;
}

// The five lists of a comparison as (list, file name) pairs, list by list.
using Pairs = std::vector<std::pair<int, std::string>>;
inline const std::string& NameOf(const std::string& name) { return name; }
inline const std::string& NameOf(const SPistaEstesa& track) { return track.NomeFileTkk; }
template <typename Result>
Pairs Flat(const Result& c) {
  Pairs out;
  int l = 0;
  for (const auto* list : {&c.PisteUguali, &c.PisteQuiPiuRecenti, &c.PisteAltrovePiuRecenti, &c.PisteSoloQui,
                           &c.PisteSoloAltrove}) {
    for (const auto& track : *list) out.emplace_back(l, NameOf(track));
    ++l;
  }
  return out;
}

}  // namespace sumtest

#endif  // VEKTKK_TESTS_SUMMARY_SUMMARYTESTUTIL_H
