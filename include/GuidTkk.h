#ifndef VEKTKK_GUIDTKK_H
#define VEKTKK_GUIDTKK_H

#include <stdint.h>
#include <time.h>

#include "VekTkkExport.h"

#pragma pack(push, 1)
// The 8-byte GUID of a track variant, read as one little-endian 64-bit value:
//   bits  0-15 random number (low 16 bits of one rand() result)
//   bits 16-46 creation time in UTC, packed as _SDataOraTkk packs it
//   bit  47    type flag: 0 = the maker's own track type, 1 = any other track
//   bit  48    development flag
//   bits 49-63 zero
// A zero GUID means "no GUID".
union VEKTKK_API _UGuidTkk {
  unsigned char Byte[8];
  uint64_t Valore;

  _UGuidTkk() : Valore(0) {}
};
#pragma pack(pop)

static_assert(sizeof(_UGuidTkk) == 8, "a track GUID is 8 bytes");

// Makes and decodes track GUIDs. No data; all static.
class VEKTKK_API IGuidTkk {
 public:
  // A new GUID for the current UTC second and the two flags. Two calls in the
  // same second with the same flags never return the same value: on a
  // repeated random number the call sleeps 25 ms and draws again. Only GUIDs
  // of the current second and flags are remembered.
  // Safe from any number of threads at once: the GUIDs are unique across all
  // of them. The process-wide memory of issued GUIDs is guarded by a private
  // leaf lock, held only to look a value up and insert it, never across a
  // call out (clock, rand(), usleep(), the event log), so it cannot deadlock
  // with any lock of the host's. Hosts that serialise their calls may go on.
  static _UGuidTkk GetGuidTkk(bool isVek, bool isDev);
  // Decodes a GUID: writes only year, month, day, hour, minute and second of
  // `t`, and both flags. Always true.
  static bool GetDaGuidTkk(const _UGuidTkk& guid, tm& t, bool& isVek, bool& isDev);
  // True when the type flag (bit 47) is clear.
  static bool IsVek(const _UGuidTkk& guid);
  // True when the type flag (bit 47) is set, that is exactly when IsVek is
  // false. The development flag of bit 48 is read only by GetDaGuidTkk.
  static bool IsDev(const _UGuidTkk& guid);
  // Does nothing: the library never seeds rand(); the host may.
  static void RandomSeed();
};

#endif  // VEKTKK_GUIDTKK_H
