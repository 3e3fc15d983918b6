// Building and editing a track in memory: the Add operations, attributes of
// the main variant, beacon sets, lengths, checks and the conversion to a
// maker's track.
#include <gtest/gtest.h>
#include <locale.h>
#include <math.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "CDistanceCalculator.h"
#include "CFileTkk.h"
#include "Coordinate.h"
#include "GuidTkk.h"
#include "TrackMemoryRecords.h"
#include "support/EvtLogRecorder.h"
#include "support/TrackFixtures.h"

namespace {

using fixtures::Bytes;
using Fw = _STagInfoVarianteTKK_fw;
using Idx = _STagIndexesVarianteTKK;
using Texts = std::vector<std::string>;

std::unique_ptr<CFileTkk> Empty(bool readOnly = false, bool dev = false) {
  return std::unique_ptr<CFileTkk>(static_cast<CFileTkk*>(IFileTkk::CreateMe(readOnly, dev)));
}
// Indexes naming nothing but `field`.
Idx With(uint16_t Idx::*field, uint16_t value) {
  Idx idx;
  idx.*field = value;
  return idx;
}
_SDatoCoordinateBeacon Line(int32_t lat, int32_t lon, uint32_t width = 0, int32_t alt = 0) {
  _SDatoCoordinateBeacon l;
  l.LatI = lat, l.LonI = lon, l.AltI = alt, l.LarghezzaPista = width;
  return l;
}
// The events recorded since the last reset, one "SEVERITY message" each.
Texts Reports() {
  Texts out;
  for (const evtrec::Event& e : evtrec::Events()) out.push_back(e.severity + " " + e.Message());
  return out;
}

class TrackEdit : public ::testing::Test {
 protected:
  void SetUp() override { evtrec::Reset(true); }
  void TearDown() override { evtrec::Reset(false); }
  fixtures::TempDir dir_;
};

// Shapes are kept below 8000 points: from 8000 on every second point is
// kept, from 16000 every third, and so on.
TEST_F(TrackEdit, ShapesAreThinnedBelow8000Points) {
  const size_t cases[][3] = {{1, 1, 1}, {7999, 7999, 1}, {8000, 4000, 2}, {15999, 8000, 2}, {16000, 5334, 3}, {24000, 6000, 4}};  // in, kept, stride
  for (const auto& c : cases) {
    std::vector<_t_s_lla_i> points(c[0]);
    for (size_t i = 0; i < c[0]; ++i) points[i].LatI = static_cast<int32_t>(i);
    auto t = Empty();
    ASSERT_TRUE(t->AddTagInfoVariante("", "", Fw(), With(&Idx::IdxPunti, t->AddTagDatiPuntiTracciato(points))));
    const auto& kept = t->GetTagInfo()->Punti->Punti;
    ASSERT_EQ(kept.size(), c[1]) << c[0];
    for (size_t k = 0; k < kept.size(); ++k) ASSERT_EQ(kept[k].LatI, static_cast<int32_t>(k * c[2]));
  }
}

TEST_F(TrackEdit, AddOperationsReturnIndexesThatVariantsMustUse) {
  auto t = Empty();  // empty lists are refused; the braces call in order
  EXPECT_EQ((std::vector<unsigned>{t->AddDatiFondoStradale({}), t->AddTagDatiPuntiTracciato({}), t->AddTagDatiLogo({}, "a"),
                                   t->AddDatiFondoStradale({FONDO_ICE}), t->AddTagDatiPuntiTracciato({{1, 2, 3}}),
                                   t->AddDatiFondoStradale({FONDO_DIRT, FONDO_WATER}), t->AddTagDatiLogo({1, 2}, "a.png"),
                                   t->AddTagDatiPlus(STagDatiPlus()), t->AddTagDatiPlus(STagDatiPlus())}),
            (std::vector<unsigned>{0xFFFF, 0xFFFF, 0xFFFF, 0, 0, 1, 0, 0, 1}));
  for (auto field : {&Idx::IdxFondiStradali, &Idx::IdxPunti, &Idx::IdxLogo, &Idx::IdxDatiPlus})  // one past the last entry
    EXPECT_FALSE(t->AddTagInfoVariante("", "", Fw(), With(field, field == &Idx::IdxPunti || field == &Idx::IdxLogo ? 1 : 2)));
  EXPECT_TRUE(t->GetTagsInfoVarianti().empty() && evtrec::Events().empty());
  // A user's track always uses the user's beacons; a missing GUID is made
  // with the track's flags, a given one is kept.
  const bool cases[][3] = {{false, false, true}, {true, false, false}, {false, true, true}};  // read only, dev, user's beacons
  for (const auto& c : cases) {
    auto u = Empty(c[0], c[1]);
    Fw fw;
    fw.InfoBeacons.TipoBeaconInUso = BEACON_OPTIC;
    ASSERT_TRUE(u->AddTagInfoVariante("GP", "Monza", fw, Idx()));
    tm when;
    bool isVek = !c[0], isDev = !c[1];
    IGuidTkk::GetDaGuidTkk(u->GetGuidVariante(0), when, isVek, isDev);
    fw.Guid.Valore = 0x1234;
    ASSERT_TRUE(u->AddTagInfoVariante("", "", fw, Idx()));
    EXPECT_EQ(std::make_tuple(u->GetTagInfo()->InfoFw.InfoBeacons.TipoBeaconInUso + 0, isVek, isDev, uint64_t{u->GetGuidVariante(1).Valore}),
              std::make_tuple(c[2] ? BEACON_USER : BEACON_OPTIC, c[0], c[1], uint64_t{0x1234}));
  }
  // The main variant linked to the first shape drops its other indexes; the
  // links stay as they were. With nothing to link there is no effect.
  auto s = fixtures::MakeSmallTrack();
  s->AddTagDatiPuntiTracciato({{7, 7, 7}});
  STagsInfoVariante* main = s->GetTagInfo();
  main->Indici.IdxPunti = 1, main->Punti = nullptr;
  s->AssegnaPtrPunti();
  EXPECT_EQ(main->Indici.IdxPunti + main->Indici.IdxFondiStradali, 0xFFFF);
  EXPECT_TRUE(main->Punti->Punti.size() == 3u && main->FondiStradali != nullptr);
  Empty()->AssegnaPtrPunti();
}

// Names are UTF-8 in the records and in the local character set at the
// interface, cut to their fields; nation codes are bytes, copied as they
// come. A full field has no terminator: reading it runs on into the next.
TEST_F(TrackEdit, NamesAreConvertedAndCutToTheirFields) {
  const std::string saved = setlocale(LC_CTYPE, nullptr);
  ASSERT_NE(setlocale(LC_CTYPE, "en_US.ISO-8859-1"), nullptr) << "test locale missing";
  auto t = Empty();
  Fw fw;
  EXPECT_EQ(std::string(fw.NomeXDevice, 28), std::string(28, '\0'));  // a new record's name is empty
  memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
  ASSERT_TRUE(t->AddTagInfoVariante(std::string(300, 'p'), std::string(40, 'd'), fw, Idx()));
  ASSERT_TRUE(t->AddTagInfoVariante("\xE8", "", fw, Idx()));
  EXPECT_EQ(std::make_pair(std::string(t->GetTagInfo()->InfoSw.NomePista, 256), t->GetNomeXDevice()), std::make_pair(std::string(256, 'p'), std::string(28, 'd') + "ITA"));
  EXPECT_EQ(std::string(t->GetTagInfoVariante(1)->InfoSw.NomePista, 4) + std::string(t->GetTagInfoVariante(1)->InfoFw.NomeXDevice, 28),
            std::string("\xC3\xA8\0\0", 4) + std::string(28, '\0'));
  t->SetNamexSito(std::string(300, 's'));
  EXPECT_EQ(t->GetTrackNameCompleto(), std::string(256, 's') + " " + std::string(28, 'd') + "ITA");
  t->SetNationCode("ITALY");
  EXPECT_EQ(t->GetNationCode(), "ITALMB");
  t->SetNationCode("\xC4"), t->SetSubNationCode("MI");
  EXPECT_EQ(std::string(t->GetTagInfo()->InfoFw.NationCode, 8), std::string("\xC4\0\0\0MI\0\0", 8));
  t->SetNomeXDevice("N\xFCrburg"), t->SetNamexSito("Gro\xDF");
  EXPECT_EQ(std::make_pair(std::string(t->GetTagInfo()->InfoFw.NomeXDevice), t->GetTrackNameCompleto()), std::make_pair(std::string("N\xC3\xBCrburg"), std::string("Gro\xDF N\xFCrburg")));
  _STagInfoFileTKK info;
  memcpy(info.NamexSito, "Gro\xC3\x9F", 5);
  t->SetTagInfoFile("", info);  // the record's name, unless one is given
  const std::string recorded = t->GetNamexSito();
  t->SetTagInfoFile("Imola", info);
  EXPECT_EQ(recorded + "/" + t->GetTagInfoFile().NamexSito, "Gro\xDF/Imola");
  setlocale(LC_CTYPE, saved.c_str());
}

TEST_F(TrackEdit, AttributesOfTheMainVariant) {
  auto e = Empty();  // without a variant: defaults, and setters change nothing
  int zone = 7, delta = 8;
  tm when = {}, back = {};
  e->SetTimezone(3), e->SetCitta("Imola"), e->GetDateTimeTMModifica(when);
  EXPECT_FALSE(e->GetTrackTimeZone(zone, delta) || e->HasShape() || e->IsTrashed() || e->IsTrackObsoleta());
  EXPECT_EQ(zone + e->GetTimeZone() + e->GetDeltaMin() + when.tm_mday, 7);
  EXPECT_EQ(e->GetNationCode() + e->GetSubNationCode() + e->GetTrackComment() + e->GetStringaVarianti(), "");
  EXPECT_TRUE(e->GetAuto() && e->GetKart() && e->GetMoto() && e->GetTagsInfoVarianti().empty());

  auto t = fixtures::MakeSmallTrack();
  when.tm_year = 124, when.tm_mday = 5;
  t->AggiornaDataModifica(when), t->GetDateTimeTMModifica(back);
  ASSERT_TRUE(t->GetTrackTimeZone(zone, delta));
  EXPECT_EQ(back.tm_year * 100 + back.tm_mday + zone * 1000000, 50012405);  // a new variant's zone is not determined
  t->SetTimezone(-5), t->SetDeltaMin(30), t->SetTrackAnglePlot(12.5f), t->SetTrackTypeCircuitKey(TRACCIATO_RALLY);
  EXPECT_EQ(std::make_pair(t->GetTimeZone() * 100 + t->GetDeltaMin(), t->GetTrackAnglePlot()), std::make_pair(-470, 12.5f));
  EXPECT_EQ(t->OttieniStringaxTrackTypeCircuitKey() + (t->IsTrackChiuso() ? " closed" : "") + (t->HasShape() ? " shape" : ""), "Rally shape");
  t->RemoveShape();  // the points go, the list stays
  EXPECT_FALSE(t->HasShape() || t->GetTagInfo()->Punti == nullptr);
  // The road-surface key replaces the first entry of the main list; without
  // a variant one is made with a list of just the key.
  t->SetFondoStradaleKey(FONDO_ICE);
  EXPECT_EQ(t->OttieniStringaxFondoStradaleKey() + std::to_string(t->GetTagInfo()->FondiStradali->Fondi.size()), "Ice1");
  e->SetFondoStradaleKey(FONDO_DIRT);
  ASSERT_EQ(e->GetTagsInfoVarianti().size(), 1u);
  EXPECT_EQ(std::make_pair(e->GetTagInfo()->FondiStradali->Fondi, e->GetNomeXDevice() + e->GetNomePista()), std::make_pair(std::vector<_eTipoRoadSurfaceTkk>{FONDO_DIRT}, std::string()));
  // The city is the main variant's record's, the comment the first record's.
  STagDatiPlus first, own;
  first.Comment = "first", own.Nomignolo = "Ring";
  e = Empty(), e->AddTagDatiPlus(first);
  ASSERT_TRUE(e->AddTagInfoVariante("", "", Fw(), With(&Idx::IdxDatiPlus, e->AddTagDatiPlus(own))));
  e->SetCitta("Nürburg");
  EXPECT_EQ(e->GetCitta() + e->GetTrackNomignolo() + e->GetTrackComment(), "NürburgRingfirst");
  EXPECT_EQ((e->SetTrackComment("changed"), e->GetTrackComment()), "changed");
}

TEST_F(TrackEdit, GoodTracksUseLineTypes1To4AndAreNotBothMakersAndDevelopment) {
  const int cases[][4] = {{0, 0, 1, 1}, {1, 0, 4, 1}, {1, 1, 1, 0}, {1, 0, 0, 0}, {1, 0, 5, 0}};  // vek, dev, type, good
  for (const auto& c : cases) {
    auto t = Empty(c[0], c[1]);
    ASSERT_TRUE(t->AddTagInfoVariante("", "", Fw(), Idx()));
    t->GetTagInfo()->InfoFw.InfoBeacons.TipoBeaconInUso = static_cast<uint8_t>(c[2]);
    EXPECT_EQ(t->IsGood(), c[3] == 1) << c[2];
  }
}

// Objects opened read only or without logos change nothing and say so;
// without logos no image is loaded either.
TEST_F(TrackEdit, ObjectsOpenedReadOnlyOrWithoutLogosRefuseChanges) {
  const std::string name = "0k3f9zq1", badge = dir_.path() + "badge.png";
  fixtures::MakeSmallTrack()->SalvaFileInPath(dir_.path(), &name);
  fixtures::WriteAll(badge, {1, 2, 3});
  for (const bool senzaLogo : {false, true}) {
    std::unique_ptr<CFileTkk> t(static_cast<CFileTkk*>(IFileTkk::CreateMeUponFile(dir_.path() + name + ".tkk", !senzaLogo, senzaLogo)));
    ASSERT_TRUE(t->IsGood());
    evtrec::Reset(true);
    // A refused Add answers the index of the last entry (the read lists
    // hold one each), except logos and variants.
    EXPECT_EQ(t->AddDatiFondoStradale({FONDO_ICE}) + t->AddTagDatiPuntiTracciato({{1, 1, 1}}), 0);
    EXPECT_EQ(t->AddTagDatiPlus(STagDatiPlus()) & t->AddTagDatiLogo({1, 2, 3}, "a.png"), 0xFFFF);
    EXPECT_FALSE(t->AddTagInfoVariante("", "", Fw(), Idx()));
    EXPECT_EQ(t->SalvaFileInPath(dir_.path(), &name) + t->SalvaFileInPath(dir_.path(), nullptr) + t->SalvaFileInPathLogoEsterno(dir_.path(), name), "");
    Bytes buffer = {42};
    EXPECT_EQ(t->SaveTrackFileLogoBuffer(buffer, badge), senzaLogo ? 0u : 3u);
    EXPECT_EQ(buffer, (senzaLogo ? Bytes{42} : Bytes{1, 2, 3}));
    t->SetTrackLogo(badge);  // a read-only object still takes a logo in memory
    EXPECT_EQ(t->GetTrackLogoBuffer() == nullptr, senzaLogo);
    Texts reports(8, "ALERT Excluded, hence skipping!");
    if (senzaLogo) reports.push_back("NOTICE Forced no logo hence read only");
    EXPECT_EQ(Reports(), reports);
    EXPECT_EQ(evtrec::Events().front().priority + evtrec::Events().back().priority, senzaLogo ? 6 : 2);
    EXPECT_EQ(t->GetTagsInfoVarianti().size(), 1u);
    EXPECT_EQ(dir_.Entries(), (Texts{name + ".tkk", "badge.png"}));
  }
}

TEST_F(TrackEdit, SettingALogoLoadsTheImage) {
  const Bytes image = {9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 1};
  const std::string badge = dir_.path() + "badge.png";
  fixtures::WriteAll(badge, image);
  auto t = fixtures::MakeSmallTrack();
  t->AddTagDatiLogo({1}, "other.png");  // the new logo will be the second
  t->SetTrackLogo(badge);
  const STagsInfoVariante* main = t->GetTagInfo();
  ASSERT_NE(main->Logo, nullptr);
  // The indexes become one 32-bit zero, whatever the position: a missing
  // image empties the logo and unsets them.
  EXPECT_EQ(std::make_tuple(main->Logo->Dati, main->Logo->NomeFile, main->Indici.IdxLogo + main->Indici.IdxDatiPlus), std::make_tuple(image, "badge.png", 0));
  t->SetTrackLogo(dir_.path() + "missing.png");
  EXPECT_EQ(std::make_tuple(main->Logo, main->Logo->Dati, main->Logo->NomeFile, main->Indici.IdxLogo & main->Indici.IdxDatiPlus),
            std::make_tuple(t->GetTrackLogoBuffer(), Bytes{}, "", 0xFFFF));
  auto none = Empty();
  none->SetTrackLogo(badge);
  EXPECT_EQ(none->GetTrackLogoBuffer(), nullptr);
}

TEST_F(TrackEdit, BeaconSets) {
  _SInfoBeacons b;
  EXPECT_EQ(b.TipoBeaconInUso, BEACON_SCRUTINEERING);
  EXPECT_FALSE(Line(0, 0, 12).isUsed());  // a width alone does not make a line
  EXPECT_TRUE(Line(1, 0).isUsed() && Line(0, 1).isUsed() && Line(0, 0, 0, 1).isUsed());
  // The count stops at the first unused line; there is no line 6, no set 7.
  for (unsigned i : {0u, 1u, 3u, 6u}) b.SetLineeSplitLLH(i, Line(1, 1), BEACON_OPTIC);
  b.SetLineeSplitLLH(2, Line(1, 1), static_cast<_eTipoBeaconDaUsare>(7));
  EXPECT_EQ(b.GetNumeroSplit(BEACON_OPTIC), 2u);
  b.SetLineeSplitLLH(2, Line(1, 1), BEACON_OPTIC);
  EXPECT_EQ(b.GetNumeroSplit(BEACON_OPTIC), 4u);
  b.ClearLineaSplitLLH(1, BEACON_OPTIC);
  EXPECT_EQ(b.GetNumeroSplit(BEACON_OPTIC), 1u);
  // Each set's width is its finish line's; type 5 is the type in use.
  const _SDatoCoordinateBeacon* lines = nullptr;
  for (uint8_t type = BEACON_SCRUTINEERING; type <= BEACON_USER; ++type) {
    b.SetLarghezzaPista(10u + type, static_cast<_eTipoBeaconDaUsare>(type));
    b.TipoBeaconInUso = type;
    b.GetLineeSplitLLH(lines, BEACON_IN_USO);
    EXPECT_EQ(std::make_tuple(b.LineeBeacon[type - 1][0].LarghezzaPista, b.GetLarghezzaPista(BEACON_IN_USO), lines), std::make_tuple(10u + type, 10u + type, +b.LineeBeacon[type - 1]));
  }
  for (int inUse : {0, 5}) {
    b.TipoBeaconInUso = static_cast<uint8_t>(inUse);
    EXPECT_TRUE(b.GetLineeSplitLLH(lines, BEACON_IN_USO) + b.GetLarghezzaPista(BEACON_IN_USO) == 0 && lines == nullptr) << inUse;
  }
  // Moving the set in use to another type copies its finish line six times.
  auto t = fixtures::MakeSmallTrack();
  _SInfoBeacons& own = t->GetTagInfo()->InfoFw.InfoBeacons;
  own.TipoBeaconInUso = BEACON_SCRUTINEERING;
  for (unsigned i = 0; i < 3; ++i) t->SetLineeSplitLLH(i, Line(10 + i, 20, 15 - i), BEACON_IN_USO);
  EXPECT_EQ(t->GetLarghezzaPista(), 15u);
  EXPECT_TRUE(t->TrasformaSetDiBeacon(BEACON_OPTIC));
  for (const auto& l : own.LineeBeacon[2]) EXPECT_EQ(l.LatI * 100 + l.LarghezzaPista, 1015u);
  EXPECT_EQ(own.GetNumeroSplit(BEACON_IN_USO) * 10 + own.TipoBeaconInUso, 31u);  // the set in use is unchanged
  const bool raceTrack = t->CanUseBeaconTypeMagnetic();
  t->SetTrackTypeCircuitKey(TRACCIATO_KART_TRACK);
  EXPECT_TRUE(!raceTrack && t->CanUseBeaconTypeMagnetic());
}

TEST_F(TrackEdit, LengthKeyIsTheStandardLengthBelow) {
  const std::pair<double, unsigned> cases[] = {{0.0, 0}, {-3.0, 0}, {50.0, 23}, {80.4672, 23}, {80.5, 804672}, {160.9344, 804672}, {160.94, 1609344},
                                               {1609.30, 12874756}, {1609.35, 16093445}, {5000.0, 32186890}, {1e9, 32186890}};
  for (const auto& c : cases) EXPECT_EQ(CDistanceCalculator::GetLunghezzaFrazionaria(c.first), c.second) << c.first;
  // Setting key and length together: a known key gives its whole metres;
  // another key does not count, the length does.
  const double rows[][4] = {{12070083, 999.0, 12070083, 1207.0}, {16093445, NAN, 16093445, 1609.0}, {12345, 777.5, 0, 777.5},
                            {0, 12.25, 0, 12.25}, {NAN, 3.5, 0, 3.5}, {12345, NAN, 0, 0.0}, {NAN, NAN, 0, 0.0}};  // key, metres, stored key, stored metres
  for (const auto& r : rows) {
    Fw fw;
    fw.TipoLunghezza = 42, fw.Lunghezza = 42.0f;
    const auto key = static_cast<_eTipoLunghezzaPista>(std::isnan(r[0]) ? 0u : static_cast<unsigned>(r[0]));
    const float metres = static_cast<float>(r[1]);
    fw.ImpostaLunghezzaPista(std::isnan(r[0]) ? nullptr : &key, std::isnan(r[1]) ? nullptr : &metres);
    EXPECT_EQ(std::make_pair(static_cast<double>(fw.TipoLunghezza), static_cast<double>(fw.Lunghezza)), std::make_pair(r[2], r[3])) << r[0];
  }
}

TEST_F(TrackEdit, AssigningTheLengthReportsEachChangeOnce) {
  auto t = fixtures::MakeSmallTrack();  // device name "Monza GP"
  t->SetTrackTypeCircuitKey(TRACCIATO_OVAL);
  const auto halfMile = LUNGHEZZA_1_2_MI;
  t->SetTrackLenght(&halfMile, nullptr);
  ASSERT_EQ(t->GetTrackLenght(), 804.0f);
  EXPECT_TRUE(t->AssignTrackLength());
  EXPECT_EQ(std::make_pair(unsigned{t->GetTrackLenghtKey()}, t->GetTrackLenght()), std::make_pair(0u, 0.0f));  // the shape adds nothing to the length
  const std::string length = "INFO for track 'Monza GP' changed length for track from 804.00 m to 0.00 m";
  EXPECT_EQ(Reports(), (Texts{"INFO for track 'Monza GP' changed fractionary length for track from 1/2 mi to custom", length}));
  EXPECT_EQ(evtrec::Events()[0].priority, 6);
  EXPECT_TRUE(t->AssignTrackLength() && evtrec::Events().size() == 2);
  // Other circuit types lose their key without a word.
  t->SetTrackTypeCircuitKey(TRACCIATO_RACE_TRACK), t->SetTrackLenght(&halfMile, nullptr), evtrec::Reset(true), t->AssignTrackLength();
  EXPECT_EQ(Reports(), Texts{length});
}

TEST_F(TrackEdit, DevelopmentTrackConvertsToAMakersCopy) {
  auto dev = Empty(false, true);
  Fw fw;
  memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
  fw.InfoBeacons.LineeBeacon[3][0] = Line(456200000, 92800000, 12), fw.InfoBeacons.LineeBeacon[3][1] = Line(456201000, 92800000, 12);
  ASSERT_TRUE(dev->AddTagInfoVariante("GP", "Monza", fw, Idx()));
  EXPECT_TRUE(dev->IsUserCreatedNewTrack());
  const Fw source = dev->GetTagInfo()->InfoFw;
  EXPECT_FALSE(dev->TrasformaPistaUtenteInVek(dir_.path(), BEACON_OPTIC) || !evtrec::Events().empty());  // false also on success
  const auto files = dir_.Entries();
  ASSERT_EQ(files.size(), 1u);
  std::unique_ptr<IFileTkk> vek(IFileTkk::CreateMeUponFile(dir_.path() + files[0], false, false));
  ASSERT_TRUE(vek->IsGood() && vek->IsVekTrack() && !vek->IsUserCreatedNewTrack() && vek->GetTagsInfoVarianti().size() == 1);
  EXPECT_EQ(vek->GetNomePista() + "/" + vek->GetNomeXDevice(), "GP/Monza");
  // The source's record but for the optic set (six copies of the finish
  // line) and the maker bit of the GUID; the source itself is unchanged.
  Fw expected = source;
  for (auto& l : expected.InfoBeacons.LineeBeacon[2]) l = source.InfoBeacons.LineeBeacon[3][0];
  expected.Guid.Byte[5] ^= 0x80;
  EXPECT_TRUE(memcmp(&vek->GetTagInfo()->InfoFw, &expected, sizeof expected) == 0 && IGuidTkk::IsVek(vek->GetTagInfo()->InfoFw.Guid));
  EXPECT_EQ(memcmp(&dev->GetTagInfo()->InfoFw, &source, sizeof source), 0);
  dev->TrasformaPistaInVek();  // a toggle of bit 47
  EXPECT_EQ(uint64_t{dev->GetTagInfo()->InfoFw.Guid.Valore}, source.Guid.Valore ^ (1ull << 47));

  EXPECT_FALSE(Empty(false, true)->TrasformaPistaUtenteInVek(dir_.path(), BEACON_OPTIC));  // nothing to convert
  auto maker = fixtures::MakeSmallTrack();
  EXPECT_FALSE(maker->TrasformaPistaUtenteInVek(dir_.path(), BEACON_OPTIC));
  EXPECT_EQ(std::make_pair(Reports(), dir_.Entries()), std::make_pair(Texts{"ERROR La pista e' gia' Vek"}, files));
  // A maker's track is never a user's, whatever its GUID says.
  maker = Empty(true, false);
  fw.Guid.Valore = 1ull << 47;
  EXPECT_TRUE(maker->AddTagInfoVariante("", "", fw, Idx()) && !maker->IsUserCreatedNewTrack());
}

constexpr double kRefLat = 45.62, kRefLon = 9.28;

// A line due north of the reference point, `metres` away along the meridian.
_SDatoCoordinateBeacon North(double metres) {
  return Line(ConvertiLatLonAs32(kRefLat + metres / 6372797.560856 * 180.0 / M_PI), ConvertiLatLonAs32(kRefLon));
}

class TrackChecks : public TrackEdit {
 protected:
  void SetUp() override {
    TrackEdit::SetUp();
    t_->SetBaricentro(kRefLat, kRefLon);
  }
  _SInfoBeacons& Beacons() { return t_->GetTagInfo()->InfoFw.InfoBeacons; }
  std::unique_ptr<CFileTkk> t_ = fixtures::MakeSmallTrack();  // "Monza GP", type 4 in use
  std::string msg_ = "untouched";
};

TEST_F(TrackChecks, ReferencePointIsRoundedToTheNearestStep) {
  const std::pair<double, double> cases[][2] = {{{45.6, 9.28}, {456000000, 92800000}}, {{-0.00000005, 0.00000005}, {-1, 1}}, {{-33.5, -70.25}, {-335000000, -702500000}}};
  for (const auto& c : cases) {
    t_->SetBaricentro(c[0].first, c[0].second);
    EXPECT_EQ(std::make_pair(1.0 * t_->GetTagInfo()->InfoFw.LatRif, 1.0 * t_->GetTagInfo()->InfoFw.LonRif), c[1]);
  }
}

TEST_F(TrackChecks, LinesMustLieWithin1000MetresOfTheReferencePoint) {
  auto e = Empty();  // no variant, or no line at all: nothing to check
  EXPECT_TRUE(e->BaricentroCoerente(msg_) && e->AreCoherentBeacons(msg_) && e->AreEqualBeacons(BEACON_OPTIC, msg_) &&
              e->IsVekTrackWithCorrectBeaconType(msg_) && t_->BaricentroCoerente(msg_));
  EXPECT_EQ(msg_, "");
  t_->SetLineeSplitLLH(0, North(999.5), BEACON_IN_USO), t_->SetLineeSplitLLH(1, North(999.5), BEACON_IN_USO);
  EXPECT_TRUE(t_->BaricentroCoerente(msg_));
  t_->SetLineeSplitLLH(1, North(1000.5), BEACON_IN_USO);
  EXPECT_FALSE(t_->BaricentroCoerente(msg_));
  EXPECT_EQ(msg_, "split n.1 is far from average point for track Monza GP distance = 1000 ref distance = 1000");
  t_->SetLineeSplitLLH(0, North(2500.2), BEACON_IN_USO);
  EXPECT_FALSE(t_->BaricentroCoerente(msg_));
  EXPECT_EQ(msg_, "lap is far from average point for track Monza GP distance = 2500 ref distance = 1000");
}

// In the United States every line lies west of Greenwich.
TEST_F(TrackChecks, UnitedStatesLinesLieWest) {
  t_->SetLineeSplitLLH(0, Line(456200000, 0), BEACON_IN_USO), t_->SetLineeSplitLLH(1, Line(456200000, 1), BEACON_IN_USO);
  const std::pair<const char*, const char*> cases[] = {{"USA", "split n.1"}, {"US", "split n.1"}, {"ITA", ""}, {"U", ""}};
  for (const auto& c : cases) {
    t_->SetNationCode(c.first);
    EXPECT_EQ(t_->AreCoherentBeacons(msg_), !*c.second) << c.first;
    EXPECT_EQ(msg_, *c.second ? c.second + std::string(" has not coherent coordinate") : "");
  }
  t_->SetNationCode("USA"), t_->SetLineeSplitLLH(0, Line(456200000, 1), BEACON_IN_USO);
  EXPECT_FALSE(t_->AreCoherentBeacons(msg_));
  EXPECT_EQ(msg_, "lap has not coherent coordinate");
}

TEST_F(TrackChecks, EqualBeaconsCompareCountsThenPositions) {
  EXPECT_TRUE(t_->AreEqualBeacons(BEACON_OPTIC, msg_));  // both empty
  for (unsigned i = 0; i < 3; ++i) Beacons().SetLineeSplitLLH(i, North(i + 1.0), BEACON_USER);
  for (unsigned i = 0; i < 2; ++i) Beacons().SetLineeSplitLLH(i, North(i + 1.0), BEACON_OPTIC);
  EXPECT_FALSE(t_->AreEqualBeacons(BEACON_OPTIC, msg_));
  EXPECT_EQ(msg_, "we have 3 beacons in set User and 2 beacons in set Optic");
  const _SDatoCoordinateBeacon three = North(3.0);
  Beacons().SetLineeSplitLLH(2, Line(three.LatI, three.LonI, 7, 99), BEACON_OPTIC);  // height and width do not count
  EXPECT_TRUE(t_->AreEqualBeacons(BEACON_OPTIC, msg_));
  EXPECT_EQ(msg_, "");
  const _SDatoCoordinateBeacon u0 = Beacons().LineeBeacon[3][0], u1 = Beacons().LineeBeacon[3][1];
  const auto at = [](const _SDatoCoordinateBeacon& l) { return std::to_string(l.LatI) + ";" + std::to_string(l.LonI); };
  _SDatoCoordinateBeacon moved = u1;
  moved.LonI += 5;
  Beacons().SetLineeSplitLLH(1, moved, BEACON_OPTIC);
  EXPECT_FALSE(t_->AreEqualBeacons(BEACON_OPTIC, msg_));
  EXPECT_EQ(msg_, "we have  different split n. 1(" + at(u1) + ") in set User and coordinates " + at(moved) + " in set Optic");
  moved.LonI = u0.LonI;  // the latitude alone differs
  Beacons().SetLineeSplitLLH(0, moved, BEACON_OPTIC);
  EXPECT_FALSE(t_->AreEqualBeacons(BEACON_OPTIC, msg_));
  EXPECT_EQ(msg_, "we have  different lap (" + at(u0) + ") in set User and coordinates " + at(moved) + " in set Optic");
}

// Scrutineering lines, and magnetic ones on a kart track, pass without a
// word; any other type fails either way, with a report of which case it was.
TEST_F(TrackChecks, BeaconTypeMustSuitTheCircuit) {
  const std::string same = "ERROR beacons are same for track Monza GP ";
  const struct Case {
    int type;
    _eTipoTracciatoTkk circuit;
    std::string msg, report;
  } cases[] = {
      {BEACON_SCRUTINEERING, TRACCIATO_RACE_TRACK, "untouched", ""},
      {BEACON_MAGNETIC, TRACCIATO_KART_TRACK, "untouched", ""},
      {BEACON_MAGNETIC, TRACCIATO_RACE_TRACK, "Track Monza GP has beacon type Magnetic and circuit type 1", same},
      {BEACON_IN_USO, TRACCIATO_KART_TRACK, "Track Monza GP has beacon type Last!!!! and circuit type 2", same},
      {BEACON_OPTIC, TRACCIATO_KART_TRACK, "Track Monza GP has beacon type Optic and circuit type 2", same},
      {BEACON_USER, TRACCIATO_KART_TRACK, "we have 1 beacons in set User and 0 beacons in set Scrutineering", "ERROR beacons are different for track Monza GP "},
  };
  Beacons().SetLineeSplitLLH(0, North(1.0), BEACON_USER);
  for (const Case& c : cases) {
    evtrec::Reset(true), msg_ = "untouched", t_->SetTrackTypeCircuitKey(c.circuit);
    Beacons().TipoBeaconInUso = static_cast<uint8_t>(c.type);
    EXPECT_EQ(t_->IsVekTrackWithCorrectBeaconType(msg_), c.report.empty()) << c.type;
    EXPECT_EQ(msg_, c.msg);
    EXPECT_EQ(Reports(), c.report.empty() ? Texts{} : Texts{c.report});
  }
}

}  // namespace
