// Fuzz target for track-file names: the input, as a name, goes to
// IGuidNomeFile::GetDaNomeFile and, as a C string of exactly its own length,
// to tkkGetGuidFromNomeFile. A name both accept must give back its own
// first eight characters through tkkGetNomeFileFromGuid, and the two must
// agree.

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <memory>
#include <string>

#include "GuidNomeFile.h"
#include "tkkFlat.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string name(reinterpret_cast<const char*>(data), size);
  tm t;
  memset(&t, 0, sizeof t);
  bool isVek = false;
  bool isDev = false;
  const bool decoded = IGuidNomeFile::GetDaNomeFile(name, t, isVek, isDev);

  // A heap copy holding just the text up to its first zero and the
  // terminator, so that a read past the end is caught.
  const size_t length = strnlen(name.c_str(), size);
  std::unique_ptr<char[]> text(new char[length + 1]);
  memcpy(text.get(), name.data(), length);
  text[length] = '\0';
  unsigned char guid[8] = {0, 0, 0, 0, 0, 0, 0, 0};
  const bool parsed = tkkGetGuidFromNomeFile(guid, text.get()) != 0;
  if (parsed) {
    if (length < 8) abort();
    char back[9];
    tkkGetNomeFileFromGuid(back, guid);
    if (memcmp(back, text.get(), 8) != 0) abort();
    unsigned char vek = 0;
    unsigned char dev = 0;
    tm u;
    memset(&u, 0, sizeof u);
    tkkDecodeGuidNomeFile(guid, &vek, &dev, &u);
    if (decoded && ((vek != 0) != isVek || (dev != 0) != isDev || u.tm_year != t.tm_year ||
                    u.tm_mon != t.tm_mon || u.tm_mday != t.tm_mday || u.tm_hour != t.tm_hour ||
                    u.tm_min != t.tm_min || u.tm_sec != t.tm_sec))
      abort();
  }
  return 0;
}
