#ifndef VEKTKK_SRC_TRACKFILE_TEXTFIELDS_H
#define VEKTKK_SRC_TRACKFILE_TEXTFIELDS_H

#include <stddef.h>
#include <string.h>

#include <algorithm>
#include <string>

#include "platform/IStrConv.h"

namespace vektkk {

// Fills a fixed text field of a record: zero-fills it and copies at most its
// size from `testo`. A text that fills the field has no terminator.
inline void CopiaCampo(char* campo, size_t dimensione, const std::string& testo) {
  memset(campo, 0, dimensione);
  memcpy(campo, testo.data(), std::min(dimensione, testo.size()));
}

// The text of a field up to its first zero byte. A field filled to the last
// byte reads on into the fields after it, as far as `fineRecord` (the end
// of the record that holds it) and no further.
inline std::string LeggiCampo(const char* campo, const void* fineRecord) {
  const size_t massimo = static_cast<size_t>(static_cast<const char*>(fineRecord) - campo);
  return std::string(campo, strnlen(campo, massimo));
}

// A field read as text of the local character set.
inline std::string LeggiCampoLocale(const char* campo, const void* fineRecord) {
  return IStrConv::convert_utf8_to_stringa(LeggiCampo(campo, fineRecord));
}

template <typename Record>
const void* FineDi(const Record& record) {
  return reinterpret_cast<const char*>(&record) + sizeof record;
}

}  // namespace vektkk

#endif  // VEKTKK_SRC_TRACKFILE_TEXTFIELDS_H
