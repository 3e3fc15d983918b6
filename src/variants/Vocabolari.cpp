// Texts of the keys stored in track files and the two rules that class a
// circuit type as closed or as open.
#include "variants/Vocabolari.h"

#include "CFileTkk.h"
#include "IVarianteTkk.h"

namespace vektkk {

const std::string TestoVuoto;

const char* NomeTipoBeacon(int type) {
  switch (type) {
    case BEACON_SCRUTINEERING: return "Scrutineering";
    case BEACON_MAGNETIC: return "Magnetic";
    case BEACON_OPTIC: return "Optic";
    case BEACON_USER: return "User";
    case BEACON_IN_USO: return "Last!!!!";
    default: return "Unexpected!!!!";
  }
}

}  // namespace vektkk

namespace {

struct Voce {
  unsigned int chiave;
  const char* testo;
};

const Voce kLunghezze[] = {
    {804672, "1/20 mi"},    {1609344, "1/10 mi"},  {1788160, "1/9 mi"},    {2011680, "1/8 mi"},
    {2299063, "1/7 mi"},    {2682240, "1/6 mi"},   {3218689, "1/5 mi"},    {4023361, "1/4 mi"},
    {4828033, "3/10 mi"},   {5029201, "5/16 mi"},  {5364481, "1/3 mi"},    {6035041, "3/8 mi"},
    {6437378, "4/10 mi"},   {8046722, "1/2 mi"},   {9656067, "6/10 mi"},   {10058403, "5/8 mi"},
    {11040103, "0.686 mi"}, {11265411, "7/10 mi"}, {12070083, "3/4 mi"},   {12874756, "8/10 mi"},
    {16093445, "1 mi"},     {32186890, "2 mi"},
};

const Voce kFondi[] = {
    {FONDO_PAVED, "Paved"}, {FONDO_DIRT, "Dirt"}, {FONDO_ICE, "Ice"},
    {FONDO_WATER, "Water"}, {FONDO_COMBO, "Combo"},
};

// Type 4 has no text of its own: it reads as an unknown type.
const Voce kTracciati[] = {
    {TRACCIATO_RACE_TRACK, "Race Track"}, {TRACCIATO_KART_TRACK, "Kart Track"},
    {TRACCIATO_OVAL, "Oval"},             {TRACCIATO_DRAG_STRIP, "Drag Strip"},
    {TRACCIATO_RALLY, "Rally"},           {TRACCIATO_HILL_CLIMB, "Hill Climb"},
    {TRACCIATO_MOTOCROSS, "Motocross"},   {TRACCIATO_OPEN_CIRCUIT, "Open Circuit"},
    {TRACCIATO_ROVAL, "ROval"},
};

template <size_t N>
const char* Cerca(const Voce (&tabella)[N], unsigned int chiave) {
  for (const Voce& v : tabella)
    if (v.chiave == chiave) return v.testo;
  return nullptr;
}

template <size_t N>
void Elenca(const Voce (&tabella)[N], std::vector<std::string>& list) {
  for (const Voce& v : tabella) list.push_back(v.testo);
}

}  // namespace

std::string IVarianteTkk::OttieniStringaxLunghezzaKeyy(_eTipoLunghezzaPista key) {
  const char* testo = Cerca(kLunghezze, key);
  return testo != nullptr ? testo : "custom";
}

std::string IVarianteTkk::OttieniStringaxFondoStradaleKeyy(_eTipoRoadSurfaceTkk key, bool strict) {
  const char* testo = Cerca(kFondi, static_cast<unsigned int>(key));
  if (testo != nullptr) return testo;
  return strict ? vektkk::TestoVuoto : kFondi[0].testo;
}

std::string IVarianteTkk::OttieniStringaxTrackTypeCircuitKeyy(_eTipoTracciatoTkk key, bool strict) {
  const char* testo = Cerca(kTracciati, static_cast<unsigned int>(key));
  if (testo != nullptr) return testo;
  return strict ? vektkk::TestoVuoto : kTracciati[0].testo;
}

void IVarianteTkk::GetElencoStringheFondoStradale(std::vector<std::string>& list) {
  Elenca(kFondi, list);
}

void IVarianteTkk::GetElencoStringheTrackType(std::vector<std::string>& list) {
  Elenca(kTracciati, list);
}

// Types 5, 6, 7 and 9 are not closed; every other type is.
bool IVarianteTkk::IsTrackChiusoo(_eTipoTracciatoTkk type) {
  const int t = static_cast<int>(type);
  if (t > 9) return true;
  return t != TRACCIATO_DRAG_STRIP && t != TRACCIATO_RALLY && t != TRACCIATO_HILL_CLIMB &&
         t != TRACCIATO_OPEN_CIRCUIT;
}

// Types 1, 2, 3 and 10 are not open; every other type is.
bool CFileTkk::IsOpenTrack(_eTipoTracciatoTkk type) const {
  const int t = static_cast<int>(type);
  if (t > 10) return true;
  return t != TRACCIATO_RACE_TRACK && t != TRACCIATO_KART_TRACK && t != TRACCIATO_OVAL &&
         t != TRACCIATO_ROVAL;
}
