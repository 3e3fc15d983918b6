#ifndef VEKTKK_TESTS_SUMMARY_SUMMARYTESTUTIL_H
#define VEKTKK_TESTS_SUMMARY_SUMMARYTESTUTIL_H

#include <stdint.h>
#include <string.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "IFileRiassuntivo.h"
#include "summary/CFileRiassuntivo.h"
#include "support/TrackFixtures.h"

namespace sumtest {

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

}  // namespace sumtest

#endif  // VEKTKK_TESTS_SUMMARY_SUMMARYTESTUTIL_H
