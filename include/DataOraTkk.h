#ifndef VEKTKK_DATAORATKK_H
#define VEKTKK_DATAORATKK_H

#include <stdint.h>
#include <time.h>

#include "VekTkkExport.h"

#pragma pack(push, 1)

// A UTC date and time packed in one 32-bit word with one-second resolution,
// years 2015 to 2046. Fields are counted from the least significant bit;
// files store the word little-endian. Bit 31 is spare: the conversions never
// write it and no comparison looks at it.
struct VEKTKK_API _SDataOraTkk {
  uint32_t Secondi : 6;  // 0-59
  uint32_t Minuti : 6;   // 0-59
  uint32_t Ore : 5;      // 0-23
  uint32_t Giorno : 5;   // day of the month minus one
  uint32_t Mese : 4;     // 0 = January, as tm_mon
  uint32_t Anno : 5;     // years since 2015
  uint32_t Spare : 1;

  // Sets the six fields from `t`, each cut to its width (no range test, no
  // normalisation: 2047 packs as 2015, 2014 as 2046). The spare bit is kept.
  void CopiaDaTm(const tm& t);
  // Clears the whole `t` and fills it from the six fields; week day and year
  // day stay 0.
  void CopiaInTm(tm& t) const;

  // The comparisons are deliberately not one consistent ordering, and hosts
  // rely on each of them as it is:
  //  ==, != : all six fields equal / at least one differs;
  //  <, <=, >= : field by field, every field of the left side strictly
  //              smaller / smaller or equal / greater or equal;
  //  > : lexicographic on year, month, day; on the same day true only when
  //      hours and minutes are greater or equal and seconds strictly greater.
  bool operator<(const _SDataOraTkk& other) const;
  bool operator<=(const _SDataOraTkk& other) const;
  bool operator>(const _SDataOraTkk& other) const;
  bool operator>=(const _SDataOraTkk& other) const;
  bool operator==(const _SDataOraTkk& other) const;
  bool operator!=(const _SDataOraTkk& other) const;
};

// The packed date seen as a bit-field record or as one unsigned word.
union VEKTKK_API _UDataOraTkk {
  _SDataOraTkk DataOra;
  uint32_t Valore;

  // All bits zero: 2015-01-01 00:00:00.
  _UDataOraTkk() : Valore(0) {}
};

#pragma pack(pop)

static_assert(sizeof(_SDataOraTkk) == 4, "the packed date is one 32-bit word");
static_assert(sizeof(_UDataOraTkk) == 4, "the packed date is one 32-bit word");

// Current UTC time and conversions of the packed date. No data; all static.
class VEKTKK_API IDataOraTkk {
 public:
  // Current UTC time into `t` (cleared first). Returns true when the clock
  // looks set (a year after 2000); `t` is filled either way.
  static bool GetDataOraUTC(tm& t);
  // Unpacks `value` into `t` with CopiaInTm. Always true.
  static bool GetDaDataOraTkk(const _UDataOraTkk& value, tm& t);
  // The current UTC time packed; the spare bit is zero.
  static _UDataOraTkk GetDataOraTkk();
};

#endif  // VEKTKK_DATAORATKK_H
