#ifndef VEKTKK_GUIDNOMEFILE_H
#define VEKTKK_GUIDNOMEFILE_H

#include <time.h>

#include <string>

#include "VekTkkExport.h"

// Track files are named by 8 base-36 characters ("0123456789abcdefghij..."),
// the digits of a 41-bit value, most significant first:
//   bits  0-7  random number (low 8 bits of one rand() result)
//   bits  8-38 creation time in UTC, packed as _SDataOraTkk packs it
//   bit  39    development flag
//   bit  40    type flag: 0 = the maker's own track type, 1 = any other track
// No data; all static.
class VEKTKK_API IGuidNomeFile {
 public:
  // A new 8-character name for the current UTC second and the two flags, in
  // the local character set. The memory of issued names is kept only while
  // consecutive values share their second, flags and a zero random byte, so
  // in practice it is reset on almost every call: two calls within one second
  // may repeat a name, and callers that need a free name must check.
  // Safe from any number of threads at once. The process-wide memory of
  // issued names is guarded by a private leaf lock, held only to look a value
  // up and insert it, never across a call out (clock, rand(), usleep(), text
  // conversion), so it cannot deadlock with any lock of the host's.
  static std::string GetNomeFile(bool isVek, bool isDev);
  // Decodes the first 8 characters of `name` (anything after them, such as
  // ".tkk", is ignored). False, with nothing written, for a name shorter than
  // 8 characters or with a character outside the alphabet among the first 8.
  // On success writes only year, month, day, hour, minute and second of `t`,
  // and both flags.
  static bool GetDaNomeFile(const std::string& name, tm& t, bool& isVek, bool& isDev);
  // Does nothing: the library never seeds rand(); the host may.
  static void RandomSeed();
};

#endif  // VEKTKK_GUIDNOMEFILE_H
