#ifndef VEKTKK_SRC_VARIANTS_VOCABOLARI_H
#define VEKTKK_SRC_VARIANTS_VOCABOLARI_H

#include <string>

namespace vektkk {

// The empty text that lookups answer when they find nothing.
extern const std::string TestoVuoto;

// Name of a beacon type: "Scrutineering", "Magnetic", "Optic", "User",
// "Last!!!!" for 5 (the type in use), "Unexpected!!!!" for any other.
const char* NomeTipoBeacon(int type);

}  // namespace vektkk

#endif  // VEKTKK_SRC_VARIANTS_VOCABOLARI_H
