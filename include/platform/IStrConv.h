#ifndef VEKTKK_PLATFORM_ISTRCONV_H
#define VEKTKK_PLATFORM_ISTRCONV_H

#include <string>

#include "../VekTkkExport.h"

// Text conversion between the local character set and UTF-8, the encoding of
// every text stored in track files. The local character set is the LC_CTYPE
// codeset of the calling process. In the "C"/"POSIX" locale, or when the
// codeset is UTF-8, texts pass through unchanged. A text that cannot be
// converted is returned unchanged, so nothing is ever lost. Thread-safe.
//
// Provided by a small platform library of its own (libvekstrconv) so that a
// device can link its own implementation instead.
class VEKTKK_API IStrConv {
 public:
  static std::string convert_stringa_to_utf8(const std::string& local);
  static std::string convert_utf8_to_stringa(const std::string& utf8);
};

#endif  // VEKTKK_PLATFORM_ISTRCONV_H
