#include "platform/IStrConv.h"

#include <errno.h>
#include <iconv.h>
#include <langinfo.h>
#include <locale.h>
#include <string.h>

#include <vector>

namespace {

const char kUtf8[] = "UTF-8";

// True when texts of the current locale need no conversion: the "C" or
// "POSIX" locale, or a UTF-8 codeset.
bool PassThrough(const char** codeset) {
  const char* name = setlocale(LC_CTYPE, nullptr);
  if (name == nullptr || strcmp(name, "C") == 0 || strcmp(name, "POSIX") == 0) return true;
  *codeset = nl_langinfo(CODESET);
  return *codeset == nullptr || (*codeset)[0] == '\0' || strcasecmp(*codeset, "UTF-8") == 0 ||
         strcasecmp(*codeset, "UTF8") == 0;
}

// Converts the whole text or nothing: on any failure the input comes back
// unchanged.
std::string Convert(const std::string& text, const char* to, const char* from) {
  if (text.empty()) return text;
  iconv_t cd = iconv_open(to, from);
  if (cd == reinterpret_cast<iconv_t>(-1)) return text;

  std::vector<char> out(text.size() * 4 + 16);
  std::vector<char> in(text.begin(), text.end());
  char* inPtr = in.data();
  size_t inLeft = in.size();
  char* outPtr = out.data();
  size_t outLeft = out.size();
  bool ok = true;
  while (inLeft > 0) {
    if (iconv(cd, &inPtr, &inLeft, &outPtr, &outLeft) != static_cast<size_t>(-1)) continue;
    if (errno != E2BIG) {
      ok = false;
      break;
    }
    const size_t used = static_cast<size_t>(outPtr - out.data());
    out.resize(out.size() * 2);
    outPtr = out.data() + used;
    outLeft = out.size() - used;
  }
  if (ok && iconv(cd, nullptr, nullptr, &outPtr, &outLeft) == static_cast<size_t>(-1)) ok = false;
  iconv_close(cd);
  if (!ok) return text;
  return std::string(out.data(), static_cast<size_t>(outPtr - out.data()));
}

}  // namespace

std::string IStrConv::convert_stringa_to_utf8(const std::string& local) {
  const char* codeset = nullptr;
  if (PassThrough(&codeset)) return local;
  return Convert(local, kUtf8, codeset);
}

std::string IStrConv::convert_utf8_to_stringa(const std::string& utf8) {
  const char* codeset = nullptr;
  if (PassThrough(&codeset)) return utf8;
  return Convert(utf8, codeset, kUtf8);
}
