// Orderings, building and editing, nearest searches and comparison rules,
// one table per rule.
#include <gtest/gtest.h>

#include <tuple>

#include "TrackMemoryRecords.h"
#include "summary/Riassunto.h"
#include "summary/SummaryTestUtil.h"

using namespace sumtest;
namespace rs = vektkk::riassunto;

namespace {

// The five lists of a comparison as (list, file name) pairs, list by list.
using Pairs = std::vector<std::pair<int, std::string>>;
const std::string& NameOf(const std::string& name) { return name; }
const std::string& NameOf(const SPistaEstesa& track) { return track.NomeFileTkk; }
template <typename Result>
Pairs Flat(const Result& c) {
  Pairs out;
  int l = 0;
  for (const auto* list : {&c.PisteUguali, &c.PisteQuiPiuRecenti, &c.PisteAltrovePiuRecenti, &c.PisteSoloQui,
                           &c.PisteSoloAltrove}) {
    for (const auto& track : *list) out.emplace_back(l, NameOf(track));
    ++l;
  }
  return out;
}

_SDatoRiassuntivo Full(const char* name, const char* country, const char* state, int32_t lat = 0) {
  _SDatoRiassuntivo r = Rec(name, country, lat);
  memcpy(r.State, state, strnlen(state, 4));
  return r;
}

TEST(SummaryOrderings, EachRule) {
  const std::string full28(28, 'N');
  struct Case {
    const char* what;
    rs::Ordine order;
    _SDatoRiassuntivo first, second;
  } const cases[] = {
      {"empty country first", rs::Ordine::AlfabeticoConNazione, Rec("Zeta", ""), Rec("Alfa", "AUT")},
      {"same country, by name", rs::Ordine::AlfabeticoConNazione, Rec("Alfa", "ITA"), Rec("Beta", "ITA")},
      {"country into state", rs::Ordine::AlfabeticoConNazione, Full("Z", "ITAL", "A"), Full("A", "ITAL", "B")},
      {"country into latitude", rs::Ordine::AlfabeticoConNazione, Full("Z", "ITAL", "ABCD", 1), Full("A", "ITAL", "ABCD", 2)},
      {"name into country", rs::Ordine::AlfabeticoSenzaNazione, Full(full28.c_str(), "A", ""),
       Full(full28.c_str(), "B", "")},
      {"bytes above 127 after ASCII", rs::Ordine::AlfabeticoSenzaNazione, Rec("zz"), Rec("\xC3\x89tretat")},
      {"shorter name first", rs::Ordine::AlfabeticoSenzaNazione, Rec("Monza"), Rec("Monza Junior")},
      {"negative latitude first", rs::Ordine::LatLon, Rec("", "", -1, 9), Rec("", "", 1, -9)},
      {"then longitude", rs::Ordine::LatLon, Rec("", "", 5, -3), Rec("", "", 5, 2)},
      {"GUID high word first", rs::Ordine::Guid, Rec("", "", 0, 0, 0x1FFFFFFFFull), Rec("", "", 0, 0, 0x200000000ull)},
      {"then GUID low word", rs::Ordine::Guid, Rec("", "", 0, 0, 0x300000001ull), Rec("", "", 0, 0, 0x300000002ull)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_TRUE(rs::Precede(c.order, c.first, c.second));
    EXPECT_FALSE(rs::Precede(c.order, c.second, c.first));
    _SDatoRiassuntivo a = c.first, b = c.second;
    EXPECT_EQ(rs::Ordina({&b, &a, nullptr}, c.order), (std::vector<uint32_t>{1, 0, 2}));
  }
  // Strings without a zero byte up to the end of the record stop there.
  _SDatoRiassuntivo ff;
  memset(static_cast<void*>(&ff), 0xFF, sizeof ff);
  const _SDatoRiassuntivo gg = ff;
  for (rs::Ordine o : {rs::Ordine::AlfabeticoConNazione, rs::Ordine::AlfabeticoSenzaNazione})
    EXPECT_FALSE(rs::Precede(o, ff, gg) || rs::Precede(o, gg, ff));
}

TEST(SummaryEdit, AddVarianteTkkCopiesTheVariant) {
  fixtures::TempDir dir;
  const std::string nome = "0k3f9zq1";
  ASSERT_EQ(fixtures::MakeRandomTrack(11)->SalvaFileInPath(dir.path(), &nome), nome);
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMeUponFile(dir.path() + nome + ".tkk", true, true));
  std::unique_ptr<IFileTkk> bad(IFileTkk::CreateMeUponFile(dir.path() + "missing.tkk", true, true));
  CFileTkk& file = dynamic_cast<CFileTkk&>(*track);
  const short n = static_cast<short>(file.GetTagsInfoVarianti().size());
  CFileRiassuntivo s;
  for (short i = -1; i <= n; ++i) s.AddVarianteTkk(track.get(), i);  // -1 and n are no variants
  s.AddVarianteTkk(nullptr, 0);
  s.AddVarianteTkk(bad.get(), 0);
  ASSERT_EQ(s.GetNumRiassuntivi(), n);
  for (short i = 0; i < n; ++i) {
    const _STagInfoVarianteTKK_fw& fw = file.GetTagInfoVariante(i)->InfoFw;
    const _SDatoRiassuntivo& r = *s.Lista()[static_cast<size_t>(i)];
    EXPECT_EQ(memcmp(r.Name, fw.NomeXDevice, 28) | memcmp(r.Country, fw.NationCode, 4) |
                  memcmp(r.State, fw.SubNationCode, 4) | memcmp(&r.RifLat, &fw.LatRif, 12), 0);
    EXPECT_EQ(std::make_tuple(r.Length, unsigned{r.BeaconNumber}, int{r.BeaconType}, r.VariantIdx, r.GetNomeFile(),
                              r.Guid.Valore, r.Date.Valore, r.OffsetFw, r.OffsetPti),
              std::make_tuple(fw.Lunghezza, fw.InfoBeacons.GetNumeroSplit(BEACON_IN_USO),
                              int{fw.InfoBeacons.TipoBeaconInUso}, i, nome, fw.Guid.Valore, fw.DataModifica.Valore,
                              file.GetOffsetDatiFw(i), file.GetOffsetPti(i)));
  }
}

// A name shorter than 8 characters stands for 8 zero bytes. Removals in a
// row are applied together, keeping the order of the records left.
TEST(SummaryEdit, DeleteAndFindByFileName) {
  const _SDatoRiassuntivo a = Rec(""), b = Rec("", "", 0, 0, 0, "bbbbbbbb"), zero = Rec("", "", 0, 0, 0, "");
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"aaaaaaaa"}, "b0"}, {{"aaaaaaaa.tkk"}, "b0"}, {{"abc"}, "abaa"}, {{""}, "abaa"}, {{"cccccccc"}, "ab0aa"},
      {{"bbbbbbbb", "aaaaaaaa"}, "0"}, {{"aaaaaaaa", "x", "", "bbbbbbbb"}, ""}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.first[0] + " ... " + c.first.back());
    std::unique_ptr<CFileRiassuntivo> s = Summary({&a, &b, &zero, &a, &a});
    EXPECT_EQ(s->IsThisFileTkkHere(c.first[0]), c.first[0] != "cccccccc");
    int n = 5;
    for (const std::string& name : c.first) {
      n = s->DelFileTkk(name);
      EXPECT_FALSE(s->IsThisFileTkkHere(name));
    }
    EXPECT_EQ(n, static_cast<int>(c.second.size()));
    std::vector<const _SDatoRiassuntivo*> left;
    s->GetDatiRiassuntivi(left);
    std::string files;
    for (const _SDatoRiassuntivo* r : left) files += r->FileName[0] != 0 ? r->FileName[0] : '0';
    EXPECT_EQ(files, c.second);
  }
  CFileRiassuntivo empty;
  EXPECT_EQ(empty.DelFileTkk("aaaaaaaa") + empty.IsThisFileTkkHere("aaaaaaaa"), 0);
}

TEST(SummaryEdit, GuidAndVariantFinders) {
  _SDatoRiassuntivo r = Rec("", "", 0, 0, 0x0000123456789ABCull);
  r.VariantIdx = -1;
  _UGuidTkk other = r.Guid;
  other.Valore ^= 1ull << 40;  // high word differs
  EXPECT_TRUE(rs::STrovaGuidTkk(r.Guid)(&r) && rs::STrovaIdxVariante(-1)(&r));  // the index sign-extended
  EXPECT_FALSE(rs::STrovaGuidTkk(other)(&r) || rs::STrovaIdxVariante(0xFFFF)(&r));
  EXPECT_FALSE(rs::STrovaGuidTkk(r.Guid)(nullptr) || rs::STrovaIdxVariante(0)(nullptr));
}

// A record at the query point is 0 m away: a maxDist of 0 leaves it out.
// Results are appended to what the vector holds.
TEST(SummaryNearest, StrictThresholdAppendedResultsAndPlanarRule) {
  const _SDatoRiassuntivo at = Rec("", "", 456200000, 92800000);
  std::unique_ptr<CFileRiassuntivo> s = Summary({nullptr, &at});
  const std::pair<int, std::vector<int>> cases[] = {{1, {7, 1}}, {0, {7}}, {-5, {7}}, {20000000, {7, 1}}};
  for (const auto& c : cases) {
    std::vector<int> out{7};
    EXPECT_EQ(s->getNearestTracksByHeaversine(45.62, 9.28, c.first, out), static_cast<int>(c.second.size()));
    EXPECT_EQ(out, c.second) << c.first;
  }
  // The planar search takes raw values times 1e7 as degrees: the record at
  // 1e-7 degree is "nearest" to latitude 1e7; ties go to the lower position;
  // without a record the answer is the list's size.
  const _SDatoRiassuntivo raw1 = Rec("", "", 1, 0);
  EXPECT_EQ(Summary({&at, &raw1})->GetDatoRiassuntivoNearest(1e7, 0), 1);
  EXPECT_EQ(Summary({nullptr, &at, &at})->GetDatoRiassuntivoNearest(0, 0), 1);
  EXPECT_EQ(Summary({nullptr})->GetDatoRiassuntivoNearest(0, 0), 1);
}

// A date in 2030 or later never counts as newer, except in the extended
// comparison, which compares the date words alone.
TEST(SummaryCompare, Rules) {
  struct Case {
    const char* what;
    uint32_t here, there;  // dates; 0: the same record; 1: only Dummy differs
    int basic, extended;   // 0 equal, 1 newer here, 2 newer elsewhere
  } const cases[] = {
      {"identical", 0, 0, 0, 0},
      {"2031 against 2020", Year(2031), Year(2020), 2, 1},
      {"2020 against 2031", Year(2020), Year(2031), 1, 2},
      {"2030 against 2020", Year(2030), Year(2020), 2, 1},
      {"2020 against 2030", Year(2020), Year(2030), 1, 2},
      {"2029 against 2020", Year(2029), Year(2020), 1, 1},
      {"2020 against 2029", Year(2020), Year(2029), 2, 2},
      {"equal dates, Dummy differs", Year(2020), 1, 2, 2},
  };
  _SDatoRiassuntivo onlyHere = Rec("H", "", 0, 0, 0, "hhhhhhhh"), onlyThere = Rec("E", "FRA", 0, 0, 0, "eeeeeeee");
  memcpy(onlyThere.State, "BY", 2);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    _SDatoRiassuntivo l = Rec("T", "ITA", 0, 0, 0, "tttttttt", c.here), r = l;
    if (c.there == 1)
      r.Dummy[0] = 1;
    else if (c.there != 0)
      r.Date.Valore = c.there;
    std::unique_ptr<CFileRiassuntivo> here = Summary({&l, &onlyHere}), there = Summary({&onlyThere, &r});
    SConfrontoPiste basic;
    SConfrontoPisteEsteso ext;
    EXPECT_TRUE(here->ConfrontaConAltro(*there, basic) && here->ConfrontaConAltroEsteso(*there, ext));
    EXPECT_EQ(Flat(basic), (Pairs{{c.basic, "tttttttt"}, {3, "hhhhhhhh"}, {4, "eeeeeeee"}}));
    EXPECT_EQ(Flat(ext), (Pairs{{c.extended, "tttttttt"}, {3, "hhhhhhhh"}, {4, "eeeeeeee"}}));
    // Lists 1 to 4 carry this side's record, list 5 the other side's.
    const SPistaEstesa& mine = c.extended == 0 ? ext.PisteUguali[0] : c.extended == 1 ? ext.PisteQuiPiuRecenti[0]
                                                                                        : ext.PisteAltrovePiuRecenti[0];
    const SPistaEstesa& theirs = ext.PisteSoloAltrove[0];
    EXPECT_EQ(std::string(mine.Country) + mine.Name, "ITAT");
    EXPECT_EQ(std::string(theirs.Country) + "/" + theirs.State + "/" + theirs.Name, "FRA/BY/E");
  }
}

}  // namespace
