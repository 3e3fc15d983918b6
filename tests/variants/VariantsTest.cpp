#include <gtest/gtest.h>
#include <string.h>

#include <sstream>
#include <tuple>

#include "CFileTkk.h"
#include "CVarianteTkk.h"
#include "TrackMemoryRecords.h"
#include "support/EvtLogRecorder.h"
#include "support/TrackFixtures.h"

namespace {

using std::make_tuple;
using std::string;

// Views over every variant of a three-variant file read back each variant's
// own names, keys, beacons and time zone, and their owner's file questions;
// changes go to the view's own record. The nation code and the contacts need
// an additional-text record; a view over a record not in the track's list
// answers -1 from GetIdxVariante. (A view over no record is the track's own
// without a variant, tests/trackfile.)
TEST(CVarianteTkk, EachViewAnswersForItsOwnRecordAndAStrayOneHasNoIndex) {
  // Variant i (1 to 3) has type i, zone i + 4, 15 i minutes, surface 2^i and
  // a finish line at latitude 100 i.
  const std::pair<string, string> kNames[] = {{"GP", "Monza GP"}, {"Junior", "Monza Jr"}, {"", "Monza Oval"}};
  fixtures::TempDir dir;
  std::unique_ptr<CFileTkk> t(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, false)));
  t->SetNamexSito("Autodromo");
  for (int i = 1; i <= 3; ++i) {
    _STagInfoVarianteTKK_fw fw;
    fw.TipoTracciato = i, fw.TimeZone = i + 4, fw.DeltaMin = 15 * i;
    fw.InfoBeacons.LineeBeacon[3][0].LatI = 100 * i;
    _STagIndexesVarianteTKK idx;
    idx.IdxFondiStradali = t->AddDatiFondoStradale({static_cast<_eTipoRoadSurfaceTkk>(1 << i)});
    ASSERT_TRUE(t->AddTagInfoVariante(kNames[i - 1].first, kNames[i - 1].second, fw, idx));
  }
  const string name = t->SalvaFileInPath(dir.path(), nullptr);
  t.reset(static_cast<CFileTkk*>(IFileTkk::CreateMeUponFile(dir.path() + name + ".tkk", false, false)));
  ASSERT_EQ(t->GetVariantiTrack().size(), 3u);
  for (short i = 0; i < 3; ++i) {
    const auto& [pista, device] = kNames[i];
    IVarianteTkk* v = t->GetVariantiTrack()[static_cast<size_t>(i)];
    int z = 0, d = 0;
    const _SDatoCoordinateBeacon* lines = nullptr;
    ASSERT_TRUE(v->GetTrackTimeZone(z, d) && v->GetLineeSplitLLH(lines, BEACON_IN_USO) == 1u);
    EXPECT_EQ(make_tuple(v->GetTagInfo(), v->GetIdxVariante(), v->GetNomePista(), v->GetNomeXDevice(),
                         v->GetTrackNameCompleto(), static_cast<int>(v->GetTrackTypeCircuitKey()),
                         static_cast<int>(v->GetFondoStradaleKey()), z, d, lines[0].LatI),
              make_tuple(t->GetTagInfoVariante(i), i, pista, device,
                         "Autodromo" + (pista.empty() ? "" : " " + pista), i + 1, 2 << i, i + 5, 15 * i + 15,
                         100 * i + 100));
    // No additional-text record after a read: no nation code through a view.
    EXPECT_EQ(
        make_tuple(v->GetNationCode(), v->GetNamexSito(), v->GetGuidNomeFile(), v->GetNomeFileDaFileSystem(),
                   v->IsGood(), v->IsUserCreatedNewTrack(),
                   v->IsVekTrack() || v->GetTrackIsReadOnly() || v->IsDevTrack() || v->IsTrackObsoleta() ||
                       v->IsTrashed() || !(v->GetAuto() && v->GetKart() && v->GetMoto())),
        make_tuple(string(), string("Autodromo"), name, name, true, true, false));
  }
  STagDatiPlus plus;
  plus.Citta = "Monza";
  _STagIndexesVarianteTKK idx;
  idx.IdxDatiPlus = t->AddTagDatiPlus(plus);
  _STagInfoVarianteTKK_fw fw;
  memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
  ASSERT_TRUE(t->AddTagInfoVariante("", "", fw, idx) &&
              t->AddTagInfoVariante("", "", fw, _STagIndexesVarianteTKK()));
  IVarianteTkk *plain = t->GetVariantiTrack()[1], *withPlus = t->GetVariantiTrack()[3];
  IVarianteTkk* noPlus = t->GetVariantiTrack()[4];  // its codes are read through the additional texts only
  withPlus->SetTrackURL("https://example.invalid");
  plain->SetTrackURL("ignored");
  plain->SetTrackLogo("ignored.png");  // no logo to name
  plain->SetNomeXDevice("Changed");
  plain->SetTrackTypeCircuitKey(static_cast<_eTipoTracciatoTkk>(4));  // unknown: read as the first type
  plain->SetFondoStradaleKey(static_cast<_eTipoRoadSurfaceTkk>(10));  // unknown: read as the first
  noPlus->SetTrackTypeCircuitKey(TRACCIATO_RALLY);
  EXPECT_EQ(make_tuple(plain->GetCitta() + plain->GetTrackURL() + noPlus->GetNationCode() +
                           noPlus->GetSubNationCode() + "|" + withPlus->GetNationCode() +
                           withPlus->GetSubNationCode() + withPlus->GetCitta() + withPlus->GetTrackURL(),
                       string(t->GetTagInfoVariante(1)->InfoFw.NomeXDevice),
                       plain->IsTrackChiuso() && !noPlus->IsTrackChiuso(),
                       plain->OttieniStringaxFondoStradaleKey() + plain->OttieniStringaxTrackTypeCircuitKey(),
                       t->GetTagInfoVariante(1)->FondiStradali->Fondi.size()),
            make_tuple(string("|ITAMBMonzahttps://example.invalid"), string("Changed"), true,
                       string("PavedRace Track"), size_t{1}));
  STagsInfoVariante stray(t.get());
  EXPECT_EQ(CVarianteTkk(&stray).GetIdxVariante() + CVarianteTkk(nullptr).GetIdxVariante(), -2);
}

TEST(Vocabolari, KeysTheirTextsAndClosedOrOpenTypes) {
  const std::pair<unsigned, const char*> lengths[] = {
      {804672, "1/20 mi"},    {1609344, "1/10 mi"},  {1788160, "1/9 mi"},  {2011680, "1/8 mi"},
      {2299063, "1/7 mi"},    {2682240, "1/6 mi"},   {3218689, "1/5 mi"},  {4023361, "1/4 mi"},
      {4828033, "3/10 mi"},   {5029201, "5/16 mi"},  {5364481, "1/3 mi"},  {6035041, "3/8 mi"},
      {6437378, "4/10 mi"},   {8046722, "1/2 mi"},   {9656067, "6/10 mi"}, {10058403, "5/8 mi"},
      {11040103, "0.686 mi"}, {11265411, "7/10 mi"}, {12070083, "3/4 mi"}, {12874756, "8/10 mi"},
      {16093445, "1 mi"},     {32186890, "2 mi"},    {23, "custom"}};
  for (const auto& [key, text] : lengths)
    EXPECT_EQ(IVarianteTkk::OttieniStringaxLunghezzaKeyy(static_cast<_eTipoLunghezzaPista>(key)), text);
  // Key, surface, type, and whether each is known: non-strict lookups give
  // the first text for an unknown key, strict ones "".
  // clang-format off
  const std::tuple<int, const char*, const char*, bool, bool> keys[] = {
      {2, "Dirt", "Kart Track", 1, 1}, {4, "Ice", "Race Track", 1, 0},
      {10, "Paved", "ROval", 0, 1}, {16, "Combo", "Race Track", 1, 0}};
  // clang-format on
  for (const auto& [key, surface, type, knownSurface, knownType] : keys) {
    SCOPED_TRACE(key);
    const auto s = static_cast<_eTipoRoadSurfaceTkk>(key);
    const auto k = static_cast<_eTipoTracciatoTkk>(key);
    EXPECT_EQ(IVarianteTkk::OttieniStringaxFondoStradaleKeyy(s, false), surface);
    EXPECT_EQ(IVarianteTkk::OttieniStringaxFondoStradaleKeyy(s, true), knownSurface ? surface : "");
    EXPECT_EQ(IVarianteTkk::OttieniStringaxTrackTypeCircuitKeyy(k, false), type);
    EXPECT_EQ(IVarianteTkk::OttieniStringaxTrackTypeCircuitKeyy(k, true), knownType ? type : "");
  }
  // The lists are appended to, never cleared.
  std::vector<string> types = {"mine"}, surfaces = {"mine"};
  IVarianteTkk::GetElencoStringheTrackType(types);
  IVarianteTkk::GetElencoStringheFondoStradale(surfaces);
  EXPECT_EQ(types, (std::vector<string>{"mine", "Race Track", "Kart Track", "Oval", "Drag Strip", "Rally",
                                        "Hill Climb", "Motocross", "Open Circuit", "ROval"}));
  EXPECT_EQ(surfaces, (std::vector<string>{"mine", "Paved", "Dirt", "Ice", "Water", "Combo"}));
  // The two rules are kept separately: 0, 4, 8 and above 10 are both closed and open.
  const char closed[] = "1111100010111", open[] = "1000111111011";
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMe(false, false));
  for (int t = 0; t <= 12; ++t) {
    EXPECT_EQ(IVarianteTkk::IsTrackChiusoo(static_cast<_eTipoTracciatoTkk>(t)), closed[t] == '1') << t;
    EXPECT_EQ(track->IsOpenTrack(static_cast<_eTipoTracciatoTkk>(t)), open[t] == '1') << t;
  }
}

constexpr int kUntouched = 77;  // what the outputs held before the call
constexpr int kNone = 50;       // the zone is not determined

std::vector<string> Split(const string& list) {
  std::vector<string> codes;
  std::istringstream in(list + ",");
  for (string code; std::getline(in, code, ',');) codes.push_back(code);
  return codes;
}

// Each row: nations and sub-nations (comma-separated; a trailing comma adds
// the empty code), the expected hours and minutes, the text that each report
// starts with (the code follows) and how many reports there are.
TEST(TimeZones, EveryNationAndState) {
  // clang-format off
  const std::tuple<const char*, const char*, int, int, const char*, int> rows[] = {
      {"GB,IE,PT", "XX", 0, 0, "", 0}, {"FI,TR,ZA", "XX", 2, 0, "", 0}, {"AE", "XX", 4, 0, "", 0},
      {"FR,MC,LU,CH,NL,ES,AT,BE,CZ,DE,IT,HR,NO,PL,SE,HU,SK", "XX", 1, 0, "", 0},
      {"TH", "XX", 7, 0, "", 0}, {"CN,SG,TW,MY", "XX", 8, 0, "", 0}, {"JP,KR", "XX", 9, 0, "", 0},
      {"PR", "XX", -4, 0, "", 0}, {"CO", "XX", -5, 0, "", 0},
      // Known to the table and refused all the same, like any unknown code.
      {"RU,DK,BR,MX,NZ,it,USA,", "", kNone, kUntouched, "Timezone not managed for nation ", 1},
      {"US", "AL,CT,DE,FL,GA,ME,MD,MA,NH,NJ,NY,NC,OH,PA,RI,SC,VT,VA,WV", -5, 0, "", 0},
      {"US", "AR,IL,IA,LA,MN,MS,MO,ND,OK,TX,WI", -6, 0, "", 0}, {"US", "AZ,CO,MT,NM,UT,WY", -7, 0, "", 0},
      {"US", "CA,OR,WA", -8, 0, "", 0}, {"US", "AK", -9, 0, "", 0}, {"US", "HI", -10, 0, "", 0},
      // Only the minutes are written for these nine: the hours stay undetermined.
      {"US", "ID,IN,KS,KY,MI,NE,NV,SD,TN", kNone, 0, "", 0},
      {"US", "DC,al", kNone, 0, "Timezone not managed in US for subNation ", 1},
      {"AU", "WA", 8, 0, "", 0}, {"AU", "SA,NT", 9, 30, "", 0}, {"AU", "QLD,NSW,ACT,VIC,TAS", 10, 0, "", 0},
      {"AU", "WAU", kNone, kUntouched, "Timezone not managed in Australia for subNation ", 1},
      // Alberta gets its zone and a report; three provinces are reported twice.
      {"CA", "AB", -7, 0, "Timezone not managed in Canada for sub nation ", 1},
      {"CA", "BC,ON,QC", kNone, kUntouched, "Timezone not managed in Canada for sub nation ", 2},
      {"CA", "NS", kNone, kUntouched, "Timezone not managed in Canada for sub nation ", 1}};
  // clang-format on
  for (const auto& [nations, states, hours, minutes, report, reports] : rows)
    for (const string& nation : Split(nations))
      for (const string& state : Split(states)) {
        SCOPED_TRACE(nation + "/" + state);
        evtrec::Reset(true);
        int h = kUntouched, m = kUntouched;
        IVarianteTkk::GetTimeZoneFromNation(nation, state, h, m);
        EXPECT_EQ(make_tuple(h, m), make_tuple(hours, minutes));
        EXPECT_EQ(evtrec::Reports(), std::vector<string>(static_cast<size_t>(reports),
                                                         "ERROR " + (report + (*states ? state : nation))));
      }
  evtrec::Reset(false);
}

}  // namespace
