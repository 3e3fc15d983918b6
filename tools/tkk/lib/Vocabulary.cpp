#include "Vocabulary.h"

#include <ctype.h>

#include "BadInput.h"

namespace tkk {

namespace {

bool SameText(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (tolower(static_cast<unsigned char>(a[i])) != tolower(static_cast<unsigned char>(b[i]))) {
      return false;
    }
  }
  return true;
}

}  // namespace

_eTipoTracciatoTkk ParseTrackType(const std::string& text) {
  for (int key = 1; key <= 10; ++key) {
    const auto type = static_cast<_eTipoTracciatoTkk>(key);
    const std::string name = IVarianteTkk::OttieniStringaxTrackTypeCircuitKeyy(type, true);
    if (name.empty()) continue;
    if (SameText(name, text) || text == std::to_string(key)) return type;
  }
  throw BadInput("unknown circuit type '" + text + "'");
}

_eTipoRoadSurfaceTkk ParseSurface(const std::string& text) {
  for (int key = 1; key <= 16; key *= 2) {
    const auto surface = static_cast<_eTipoRoadSurfaceTkk>(key);
    if (SameText(IVarianteTkk::OttieniStringaxFondoStradaleKeyy(surface, true), text) ||
        text == std::to_string(key)) {
      return surface;
    }
  }
  throw BadInput("unknown road surface '" + text + "'");
}

std::string CheckCode(const std::string& code, const char* what) {
  bool ok = code.size() <= 4;
  for (char c : code) ok = ok && isalnum(static_cast<unsigned char>(c));
  if (!ok) throw BadInput(std::string(what) + " code '" + code + "' is not 1 to 4 letters or digits");
  return code;
}

_eTipoLunghezzaPista StandardLengthKey(double metres, _eTipoTracciatoTkk type) {
  if (type != TRACCIATO_OVAL) return LUNGHEZZA_CUSTOM;
  const auto key = static_cast<_eTipoLunghezzaPista>(CDistanceCalculator::GetLunghezzaFrazionaria(metres));
  // Short lengths get the size of the key table instead of a key.
  return IVarianteTkk::OttieniStringaxLunghezzaKeyy(key) == "custom" ? LUNGHEZZA_CUSTOM : key;
}

}  // namespace tkk
