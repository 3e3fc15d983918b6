#ifndef VEKTKK_TOOLS_TKK_VOCABULARY_H
#define VEKTKK_TOOLS_TKK_VOCABULARY_H

#include <string>

#include <vektkk.h>

namespace tkk {

// A circuit type or road surface from the command line: its text as the
// library names it ("Kart Track", "dirt"; case does not matter) or its key.
// Throws BadInput for anything else.
_eTipoTracciatoTkk ParseTrackType(const std::string& text);
_eTipoRoadSurfaceTkk ParseSurface(const std::string& text);

// A nation or state code as files hold it: 1 to 4 letters or digits.
// Throws BadInput otherwise; an empty code is allowed.
std::string CheckCode(const std::string& code, const char* what);

// The standard length key that a new variant of this type gets: ovals are
// measured against the standard fractions of a mile, as the library does
// when it refreshes a length; every other circuit has a custom length (0).
_eTipoLunghezzaPista StandardLengthKey(double metres, _eTipoTracciatoTkk type);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_VOCABULARY_H
