#ifndef VEKTKK_SRC_TRACKFILE_TEXTFIELDS_H
#define VEKTKK_SRC_TRACKFILE_TEXTFIELDS_H

#include <stddef.h>
#include <string.h>

#include <algorithm>
#include <string>

namespace vektkk {

// Fills a fixed text field of a record: zero-fills it and copies at most its
// size from `testo`. A text that fills the field has no terminator.
inline void CopiaCampo(char* campo, size_t dimensione, const std::string& testo) {
  memset(campo, 0, dimensione);
  memcpy(campo, testo.data(), std::min(dimensione, testo.size()));
}

}  // namespace vektkk

#endif  // VEKTKK_SRC_TRACKFILE_TEXTFIELDS_H
