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
  int ore = 0;  // read for Regola::Ore only
};

// In the order they are tested. The last five are known and refused all the
// same, as an unknown code is.
const Nazione kNazioni[] = {
    {"US", Regola::Usa},        {"FR", Regola::Ore, 1},     {"MC", Regola::Ore, 1},
    {"LU", Regola::Ore, 1},     {"CH", Regola::Ore, 1},     {"GB", Regola::Ore, 0},
    {"NL", Regola::Ore, 1},     {"ES", Regola::Ore, 1},     {"AT", Regola::Ore, 1},
    {"BE", Regola::Ore, 1},     {"CN", Regola::Ore, 8},     {"CO", Regola::Ore, -5},
    {"CZ", Regola::Ore, 1},     {"FI", Regola::Ore, 2},     {"DE", Regola::Ore, 1},
    {"IT", Regola::Ore, 1},     {"HR", Regola::Ore, 1},     {"NO", Regola::Ore, 1},
    {"PL", Regola::Ore, 1},     {"SE", Regola::Ore, 1},     {"JP", Regola::Ore, 9},
    {"SG", Regola::Ore, 8},     {"PR", Regola::Ore, -4},    {"AU", Regola::Australia},
    {"RU", Regola::Rifiutata},  {"DK", Regola::Rifiutata},  {"BR", Regola::Rifiutata},
    {"MX", Regola::Rifiutata},  {"IE", Regola::Ore, 0},     {"PT", Regola::Ore, 0},
    {"TH", Regola::Ore, 7},     {"AE", Regola::Ore, 4},     {"HU", Regola::Ore, 1},
    {"SK", Regola::Ore, 1},     {"TR", Regola::Ore, 2},     {"KR", Regola::Ore, 9},
    {"TW", Regola::Ore, 8},     {"MY", Regola::Ore, 8},     {"NZ", Regola::Rifiutata},
    {"ZA", Regola::Ore, 2},     {"CA", Regola::Canada},
};

constexpr int kOreNonScritte = 100;  // a state whose hours are left as they are

// US states have whole hours; Australian states may add minutes.
struct StatoUsa {
  const char* codice;
  int ore;
};

struct Stato {
  const char* codice;
  int ore;
  int minuti;
};

// In the order they are tested.
const StatoUsa kStatiUsa[] = {
    {"AL", -5},  {"AK", -9},  {"AZ", -7},  {"AR", -6},  {"CA", -8},
    {"CO", -7},  {"CT", -5},  {"DE", -5},  {"FL", -5},  {"GA", -5},
    {"HI", -10}, {"ID", kOreNonScritte}, {"IL", -6}, {"IN", kOreNonScritte},
    {"IA", -6},  {"KS", kOreNonScritte}, {"KY", kOreNonScritte}, {"LA", -6},
    {"ME", -5},  {"MD", -5},  {"MA", -5},  {"MI", kOreNonScritte}, {"MN", -6},
    {"MS", -6},  {"MO", -6},  {"MT", -7},  {"NE", kOreNonScritte},
    {"NV", kOreNonScritte}, {"NH", -5}, {"NJ", -5}, {"NM", -7}, {"NY", -5},
    {"NC", -5},  {"ND", -6},  {"OH", -5},  {"OK", -6},  {"OR", -8},
    {"PA", -5},  {"RI", -5},  {"SC", -5},  {"SD", kOreNonScritte},
    {"TN", kOreNonScritte}, {"TX", -6}, {"UT", -7}, {"VT", -5}, {"VA", -5},
    {"WA", -8},  {"WV", -5},  {"WI", -6},  {"WY", -7},
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
  const StatoUsa* s = Trova(kStatiUsa, state);
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
