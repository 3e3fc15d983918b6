#include "GuidTkk.h"

#include <stdlib.h>
#include <unistd.h>

#include <mutex>
#include <set>

#include "DataOraTkk.h"
#include "tkkFlat.h"

namespace {

constexpr uint64_t kRandomBits = 0xFFFFull;        // bits 0-15
constexpr uint64_t kTypeBit = 1ull << 47;
constexpr useconds_t kCollisionBackoffUs = 25000;  // 25 ms

// GUIDs issued under the current key (second and flags), shared by every
// thread of the process. Created on first use, destroyed at exit; never more
// than 65,536 values. The lock guards only the key and the set: it is taken
// for one lookup and insertion, never while reading the clock, drawing a
// number, sleeping or reporting, so it cannot wait on anything of the host's.
struct Issued {
  std::mutex lock;
  std::set<uint64_t> values;
  uint64_t lastKey = 0;

  // True when `guid` was not issued under its key before; it is now.
  bool Take(uint64_t guid, uint64_t key) {
    std::lock_guard<std::mutex> guard(lock);
    if (key != lastKey) {
      // A new second or other flags: what was issued before is forgotten.
      lastKey = key;
      values.clear();
      values.insert(guid);
      return true;
    }
    return values.insert(guid).second;
  }
};

Issued& IssuedGuids() {
  static Issued issued;
  return issued;
}

_UGuidTkk MakeGuid(bool isVek, bool isDev) {
  _UGuidTkk guid;
  tm now;
  (void)IDataOraTkk::GetDataOraUTC(now);
  tkkGenerateGuid(guid.Byte, isVek, isDev, &now, static_cast<unsigned int>(rand()));
  return guid;
}

}  // namespace

_UGuidTkk IGuidTkk::GetGuidTkk(bool isVek, bool isDev) {
  Issued& issued = IssuedGuids();
  for (;;) {
    const _UGuidTkk guid = MakeGuid(isVek, isDev);
    if (issued.Take(guid.Valore, guid.Valore & ~kRandomBits)) return guid;
    // Same second, same flags, same random number: wait and draw again, until
    // the second changes if every random number of this one is taken.
    usleep(kCollisionBackoffUs);
  }
}

bool IGuidTkk::GetDaGuidTkk(const _UGuidTkk& guid, tm& t, bool& isVek, bool& isDev) {
  unsigned char vek = 0;
  unsigned char dev = 0;
  tkkDecodeGuid(guid.Byte, &vek, &dev, &t);
  isVek = vek != 0;
  isDev = dev != 0;
  return true;
}

bool IGuidTkk::IsVek(const _UGuidTkk& guid) { return (guid.Valore & kTypeBit) == 0; }

// Tests the type flag, not the development flag of bit 48: hosts use it as
// "not the maker's type", and the answer is kept so.
bool IGuidTkk::IsDev(const _UGuidTkk& guid) { return (guid.Valore & kTypeBit) != 0; }

void IGuidTkk::RandomSeed() {}
