// Orderings, building and editing, nearest searches and comparison rules
// one table per rule.
#include <gtest/gtest.h>

#include <algorithm>

#include "TrackMemoryRecords.h"
#include "summary/Riassunto.h"
#include "summary/SummaryTestUtil.h"

using namespace sumtest;
using vektkk::riassunto::Ordine;

namespace {

_SDatoRiassuntivo Full(const char* name, const char* country, const char* state) {
  _SDatoRiassuntivo r = Rec("", country);
  memcpy(r.Name, name, strnlen(name, 28));
  memcpy(r.State, state, strnlen(state, 4));
  return r;
}

TEST(SummaryOrderings, EachRule) {
  const std::string full28(28, 'N');
  struct Case {
    const char* what;
    Ordine order;
    _SDatoRiassuntivo first, second;
  } const cases[] = {
      {"empty country first", Ordine::AlfabeticoConNazione, Rec("Zeta", ""), Rec("Alfa", "AUT")},
      {"same country, by name", Ordine::AlfabeticoConNazione, Rec("Alfa", "ITA"), Rec("Beta", "ITA")},
      {"country into state", Ordine::AlfabeticoConNazione, Full("Z", "ITAL", "A"), Full("A", "ITAL", "B")},
      {"name into country", Ordine::AlfabeticoSenzaNazione, Full(full28.c_str(), "A", ""),
       Full(full28.c_str(), "B", "")},
      {"bytes above 127 after ASCII", Ordine::AlfabeticoSenzaNazione, Rec("zz"), Rec("\xC3\x89tretat")},
      {"shorter name first", Ordine::AlfabeticoSenzaNazione, Rec("Monza"), Rec("Monza Junior")},
      {"negative latitude first", Ordine::LatLon, Rec("", "", -1, 9), Rec("", "", 1, -9)},
      {"then longitude", Ordine::LatLon, Rec("", "", 5, -3), Rec("", "", 5, 2)},
      {"GUID high word first", Ordine::Guid, Rec("", "", 0, 0, 0x00000001FFFFFFFFull),
       Rec("", "", 0, 0, 0x0000000200000000ull)},
      {"then GUID low word", Ordine::Guid, Rec("", "", 0, 0, 0x0000000300000001ull),
       Rec("", "", 0, 0, 0x0000000300000002ull)},
  };
  for (const Case& c : cases) {
    EXPECT_TRUE(vektkk::riassunto::Precede(c.order, c.first, c.second)) << c.what;
    EXPECT_FALSE(vektkk::riassunto::Precede(c.order, c.second, c.first)) << c.what;
    _SDatoRiassuntivo a = c.first, b = c.second;
    EXPECT_EQ(vektkk::riassunto::Ordina({&b, &a, nullptr}, c.order),
              (std::vector<uint32_t>{1, 0, 2}))
        << c.what;
  }
}

TEST(SummaryEdit, AddVarianteTkkCopiesTheVariant) {
  fixtures::TempDir dir;
  const std::string nome = "0k3f9zq1";
  ASSERT_EQ(fixtures::MakeRandomTrack(11)->SalvaFileInPath(dir.path(), &nome), nome);
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMeUponFile(dir.path() + nome + ".tkk", true, true));
  CFileTkk& file = dynamic_cast<CFileTkk&>(*track);
  const short n = static_cast<short>(file.GetTagsInfoVarianti().size());
  CFileRiassuntivo s;
  for (short i = -1; i <= n; ++i) s.AddVarianteTkk(track.get(), i);
  s.AddVarianteTkk(nullptr, 0);
  std::unique_ptr<IFileTkk> bad(IFileTkk::CreateMeUponFile(dir.path() + "missing.tkk", true, true));
  s.AddVarianteTkk(bad.get(), 0);
  ASSERT_EQ(s.GetNumRiassuntivi(), n);
  for (short i = 0; i < n; ++i) {
    const _SDatoRiassuntivo& r = *s.Lista()[static_cast<size_t>(i)];
    const _STagInfoVarianteTKK_fw& fw = file.GetTagInfoVariante(i)->InfoFw;
    _SDatoRiassuntivo want;
    memcpy(want.Name, fw.NomeXDevice, 28);
    memcpy(want.Country, fw.NationCode, 4);
    memcpy(want.State, fw.SubNationCode, 4);
    memcpy(&want.RifLat, &fw.LatRif, 12);
    want.Length = fw.Lunghezza;
    want.BeaconNumber = static_cast<uint8_t>(fw.InfoBeacons.GetNumeroSplit(BEACON_IN_USO));
    want.BeaconType = fw.InfoBeacons.TipoBeaconInUso;
    want.VariantIdx = i;
    memcpy(want.FileName, nome.data(), 8);
    want.Guid = fw.Guid;
    want.Date = fw.DataModifica;
    want.OffsetFw = file.GetOffsetDatiFw(i);
    want.OffsetPti = file.GetOffsetPti(i);
    EXPECT_EQ(BytesOf({&r}), BytesOf({&want})) << i;
  }
}

TEST(SummaryEdit, DeleteAndFindByFileName) {
  const _SDatoRiassuntivo a = Rec("", "", 0, 0, 0, "aaaaaaaa"), b = Rec("", "", 0, 0, 0, "bbbbbbbb"),
                          zero = Rec("", "", 0, 0, 0, "");
  struct Case {
    const char* name;
    bool here;
    int left;
  } const cases[] = {{"aaaaaaaa", true, 2}, {"aaaaaaaa.tkk", true, 2}, {"abc", true, 4},
                     {"cccccccc", false, 5}, {"", true, 4}};
  for (const Case& c : cases) {
    std::unique_ptr<CFileRiassuntivo> s = Summary({&a, &b, &zero, &a, &a});
    EXPECT_EQ(s->IsThisFileTkkHere(c.name), c.here) << c.name;
    EXPECT_EQ(s->DelFileTkk(c.name), c.left) << c.name;
    EXPECT_FALSE(s->IsThisFileTkkHere(c.name)) << c.name;
  }
  std::unique_ptr<CFileRiassuntivo> s = Summary({&a, &b, &zero, &a, &a});
  s->DelFileTkk("aaaaaaaa");
  EXPECT_EQ(BytesOf({s->Lista()[0], s->Lista()[1]}), BytesOf({&b, &zero}));
}

TEST(SummaryEdit, GuidAndVariantFinders) {
  _SDatoRiassuntivo r = Rec("", "", 0, 0, 0x0000123456789ABCull);
  r.VariantIdx = -1;
  _UGuidTkk g = r.Guid, other = r.Guid;
  other.Valore ^= 1ull << 40;  // high word differs
  EXPECT_TRUE(vektkk::riassunto::STrovaGuidTkk(g)(&r) && !vektkk::riassunto::STrovaGuidTkk(g)(nullptr));
  EXPECT_FALSE(vektkk::riassunto::STrovaGuidTkk(other)(&r));
  EXPECT_TRUE(vektkk::riassunto::STrovaIdxVariante(-1)(&r));  // sign-extended
  EXPECT_FALSE(vektkk::riassunto::STrovaIdxVariante(0xFFFF)(&r) || vektkk::riassunto::STrovaIdxVariante(0)(nullptr));
}

TEST(SummaryNearest, Strictness) {
  const _SDatoRiassuntivo at = Rec("", "", 456200000, 92800000), raw1 = Rec("", "", 1, 0);
  std::unique_ptr<CFileRiassuntivo> s = Summary({nullptr, &at});
  struct Case {
    int maxDist;
    std::vector<int> found;
  } const cases[] = {{1, {1}}, {0, {}}, {-5, {}}, {20000000, {1}}};
  for (const Case& c : cases) {
    std::vector<int> out{7};
    std::vector<int> want{7};
    want.insert(want.end(), c.found.begin(), c.found.end());
    EXPECT_EQ(s->getNearestTracksByHeaversine(45.62, 9.28, c.maxDist, out), static_cast<int>(want.size()));
    EXPECT_EQ(out, want) << c.maxDist;
  }
  std::vector<int> twice;
  s->getNearestTracksByHeaversine(45.62, 9.28, 10, twice);
  s->getNearestTracksByHeaversine(45.62, 9.28, 10, twice);
  EXPECT_EQ(twice, (std::vector<int>{1, 1}));

  CFileRiassuntivo empty;
  EXPECT_EQ(empty.GetDatoRiassuntivoNearest(1, 2), 0);
  EXPECT_EQ(empty.getNearestTracksByHeaversine(1, 2, 10, twice), 2);
  // The planar search takes raw values times 1e7 as degrees: the record at
  // 1e-7 degree is "nearest" to latitude 1e7; ties go to the lower position.
  EXPECT_EQ(Summary({&at, &raw1})->GetDatoRiassuntivoNearest(1e7, 0), 1);
  EXPECT_EQ(Summary({nullptr, &at, &at})->GetDatoRiassuntivoNearest(0, 0), 1);
  EXPECT_EQ(Summary({nullptr})->GetDatoRiassuntivoNearest(0, 0), 1);
}

TEST(SummaryCompare, Rules) {
  enum { Same, HereNewer, ElsewhereNewer, OnlyHere, OnlyElsewhere };
  struct Case {
    const char* what;
    uint32_t here, there;  // dates; 0: the same record; 1: only Dummy differs
    int basic, extended;
  } const cases[] = {
      {"identical", 0, 0, Same, Same},
      {"2031 against 2020", Year(2031), Year(2020), ElsewhereNewer, HereNewer},
      {"2020 against 2031", Year(2020), Year(2031), HereNewer, ElsewhereNewer},
      {"2021 against 2020", Year(2021), Year(2020), HereNewer, HereNewer},
      {"2020 against 2021", Year(2020), Year(2021), ElsewhereNewer, ElsewhereNewer},
      {"equal dates, Dummy differs", Year(2020), 1, ElsewhereNewer, ElsewhereNewer},
  };
  for (const Case& c : cases) {
    _SDatoRiassuntivo l = Rec("T", "ITA", 0, 0, 0, "tttttttt", c.here), r = l;
    if (c.there == 1)
      r.Dummy[0] = 1;
    else if (c.there != 0)
      r.Date.Valore = c.there;
    const _SDatoRiassuntivo onlyHere = Rec("H", "", 0, 0, 0, "hhhhhhhh"),
                            onlyThere = Rec("E", "FRA", 0, 0, 0, "eeeeeeee");
    std::unique_ptr<CFileRiassuntivo> here = Summary({&l, &onlyHere}), there = Summary({&onlyThere, &r});
    SConfrontoPiste basic;
    SConfrontoPisteEsteso ext;
    for (int twice = 0; twice < 2; ++twice) {
      EXPECT_TRUE(here->ConfrontaConAltro(*there, basic));
      EXPECT_TRUE(here->ConfrontaConAltroEsteso(*there, ext));
    }
    const std::vector<std::string>* b[] = {&basic.PisteUguali, &basic.PisteQuiPiuRecenti,
                                           &basic.PisteAltrovePiuRecenti, &basic.PisteSoloQui,
                                           &basic.PisteSoloAltrove};
    const std::vector<SPistaEstesa>* e[] = {&ext.PisteUguali, &ext.PisteQuiPiuRecenti,
                                            &ext.PisteAltrovePiuRecenti, &ext.PisteSoloQui,
                                            &ext.PisteSoloAltrove};
    for (int list = 0; list < 5; ++list) {
      std::vector<std::string> want, names;
      if (list == c.basic) want = {"tttttttt", "tttttttt"};
      if (list == OnlyHere) want = {"hhhhhhhh", "hhhhhhhh"};
      if (list == OnlyElsewhere) want = {"eeeeeeee", "eeeeeeee"};
      EXPECT_EQ(*b[list], want) << c.what << " list " << list;
      if (list == c.extended) want = {"tttttttt", "tttttttt"};
      if (list == c.basic && list != c.extended) want.clear();
      for (const SPistaEstesa& p : *e[list]) names.push_back(p.NomeFileTkk);
      EXPECT_EQ(names, want) << c.what << " extended list " << list;
    }
    // Lists 1 to 4 carry this side's record, list 5 the other side's.
    EXPECT_EQ(std::string(e[c.extended]->front().Country, 3), "ITA");
    EXPECT_EQ(std::string(ext.PisteSoloAltrove.front().Country, 3), "FRA");
    EXPECT_EQ(ext.PisteSoloAltrove.front().Name[0], 'E');
  }
}

}  // namespace
