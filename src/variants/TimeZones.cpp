// Time zones derived from nation and state codes: fixed tables, no daylight
// saving, a deliberately small set of nations. Unknown codes are reported
// and leave the outputs as each operation says.
#include <string.h>

#include "IVarianteTkk.h"
#include "foundation/LogEvento.h"

namespace {

// Result of the nation table.
enum class Regola { Usa, Australia, Canada, Ore, Rifiutata };

struct Nazione {
  const char* codice;
  Regola regola;
  int ore;
};

// In the order they are tested. The last five are known and refused all the
// same, as an unknown code is.
const Nazione kNazioni[] = {
    {"US", Regola::Usa, 0},        {"FR", Regola::Ore, 1},  {"MC", Regola::Ore, 1},
    {"LU", Regola::Ore, 1},        {"CH", Regola::Ore, 1},  {"GB", Regola::Ore, 0},
    {"NL", Regola::Ore, 1},        {"ES", Regola::Ore, 1},  {"AT", Regola::Ore, 1},
    {"BE", Regola::Ore, 1},        {"CN", Regola::Ore, 8},  {"CO", Regola::Ore, -5},
    {"CZ", Regola::Ore, 1},        {"FI", Regola::Ore, 2},  {"DE", Regola::Ore, 1},
    {"IT", Regola::Ore, 1},        {"HR", Regola::Ore, 1},  {"NO", Regola::Ore, 1},
    {"PL", Regola::Ore, 1},        {"SE", Regola::Ore, 1},  {"JP", Regola::Ore, 9},
    {"SG", Regola::Ore, 8},        {"PR", Regola::Ore, -4}, {"AU", Regola::Australia, 0},
    {"RU", Regola::Rifiutata, 0},  {"DK", Regola::Rifiutata, 0}, {"BR", Regola::Rifiutata, 0},
    {"MX", Regola::Rifiutata, 0},  {"IE", Regola::Ore, 0},  {"PT", Regola::Ore, 0},
    {"TH", Regola::Ore, 7},        {"AE", Regola::Ore, 4},  {"HU", Regola::Ore, 1},
    {"SK", Regola::Ore, 1},        {"TR", Regola::Ore, 2},  {"KR", Regola::Ore, 9},
    {"TW", Regola::Ore, 8},        {"MY", Regola::Ore, 8},  {"NZ", Regola::Rifiutata, 0},
    {"ZA", Regola::Ore, 2},        {"CA", Regola::Canada, 0},
};

constexpr int kOreNonScritte = 100;  // a state whose hours are left as they are

struct Stato {
  const char* codice;
  int ore;
  int minuti;
};

// In the order they are tested.
const Stato kStatiUsa[] = {
    {"AL", -5, 0},  {"AK", -9, 0},  {"AZ", -7, 0},  {"AR", -6, 0},  {"CA", -8, 0},
    {"CO", -7, 0},  {"CT", -5, 0},  {"DE", -5, 0},  {"FL", -5, 0},  {"GA", -5, 0},
    {"HI", -10, 0}, {"ID", kOreNonScritte, 0}, {"IL", -6, 0}, {"IN", kOreNonScritte, 0},
    {"IA", -6, 0},  {"KS", kOreNonScritte, 0}, {"KY", kOreNonScritte, 0}, {"LA", -6, 0},
    {"ME", -5, 0},  {"MD", -5, 0},  {"MA", -5, 0},  {"MI", kOreNonScritte, 0}, {"MN", -6, 0},
    {"MS", -6, 0},  {"MO", -6, 0},  {"MT", -7, 0},  {"NE", kOreNonScritte, 0},
    {"NV", kOreNonScritte, 0}, {"NH", -5, 0}, {"NJ", -5, 0}, {"NM", -7, 0}, {"NY", -5, 0},
    {"NC", -5, 0},  {"ND", -6, 0},  {"OH", -5, 0},  {"OK", -6, 0},  {"OR", -8, 0},
    {"PA", -5, 0},  {"RI", -5, 0},  {"SC", -5, 0},  {"SD", kOreNonScritte, 0},
    {"TN", kOreNonScritte, 0}, {"TX", -6, 0}, {"UT", -7, 0}, {"VT", -5, 0}, {"VA", -5, 0},
    {"WA", -8, 0},  {"WV", -5, 0},  {"WI", -6, 0},  {"WY", -7, 0},
};

const Stato kStatiAustralia[] = {
    {"WA", 8, 0},   {"SA", 9, 30},  {"NT", 9, 30},  {"QLD", 10, 0},
    {"NSW", 10, 0}, {"ACT", 10, 0}, {"VIC", 10, 0}, {"TAS", 10, 0},
};

template <typename T, size_t N>
const T* Trova(const T (&tabella)[N], const std::string& codice) {
  for (const T& voce : tabella)
    if (codice == voce.codice) return &voce;
  return nullptr;
}

void RiportaCanada(const std::string& codice) {
  LogEvento(kError.Priorita, kError.Parola, "Timezone not managed in Canada for sub nation %s",
            codice.c_str());
}

}  // namespace

void IVarianteTkk::GetTimeZoneFromNation(const std::string& nation, const std::string& subNation,
                                         int& hours, int& minutes) {
  hours = 50;  // not determined, whatever follows
  const Nazione* n = Trova(kNazioni, nation);
  switch (n != nullptr ? n->regola : Regola::Rifiutata) {
    case Regola::Usa:
      GetUSTimeZoneFromState(subNation, hours, minutes);
      return;
    case Regola::Australia:
      GetAustraliaTimeZoneFromState(subNation, hours, minutes);
      return;
    case Regola::Canada:
      GetCanadaTimeZoneFromState(subNation, hours, minutes);
      return;
    case Regola::Ore:
      hours = n->ore;
      minutes = 0;
      return;
    case Regola::Rifiutata:
      LogEvento(kError.Priorita, kError.Parola, "Timezone not managed for nation %s", nation.c_str());
      return;
  }
}

void IVarianteTkk::GetUSTimeZoneFromState(const std::string& state, int& hours, int& minutes) {
  minutes = 0;
  const Stato* s = Trova(kStatiUsa, state);
  if (s == nullptr) {
    LogEvento(kError.Priorita, kError.Parola, "Timezone not managed in US for subNation %s",
              state.c_str());
    return;
  }
  if (s->ore != kOreNonScritte) hours = s->ore;
}

void IVarianteTkk::GetAustraliaTimeZoneFromState(const std::string& state, int& hours, int& minutes) {
  const Stato* s = Trova(kStatiAustralia, state);
  if (s == nullptr) {
    LogEvento(kError.Priorita, kError.Parola, "Timezone not managed in Australia for subNation %s",
              state.c_str());
    return;
  }
  hours = s->ore;
  minutes = s->minuti;
}

// Alberta gets its hours and is reported all the same; British Columbia,
// Ontario and Quebec are reported twice. Hosts see exactly these reports.
void IVarianteTkk::GetCanadaTimeZoneFromState(const std::string& province, int& hours, int& minutes) {
  if (province == "AB") {
    hours = -7;
    minutes = 0;
  } else if (province == "BC" || province == "ON" || province == "QC") {
    RiportaCanada(province);
  }
  RiportaCanada(province);
}
