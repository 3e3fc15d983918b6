#include <gtest/gtest.h>
#include <locale.h>
#include <string.h>

#include <memory>
#include <string>

#include "CFileTkk.h"
#include "TrackMemoryRecords.h"
#include "support/TrackFixtures.h"

namespace {

std::unique_ptr<CFileTkk> Empty(bool readOnly = false, bool dev = false) {
  return std::unique_ptr<CFileTkk>(static_cast<CFileTkk*>(IFileTkk::CreateMe(readOnly, dev)));
}

TEST(Attributes, WithoutVariantsEveryGetterHasItsDefault) {
  auto t = Empty();
  _STagInfoFileTKK info;
  memcpy(info.NamexSito, "Imola", 6);
  t->SetTagInfoFile("", info);
  int zone = 7, delta = 8;
  tm when = {};
  when.tm_mday = 9;
  EXPECT_EQ(t->GetTrackTypeCircuitKey(), 1);
  EXPECT_EQ(t->GetFondoStradaleKey(), 1);
  EXPECT_EQ(t->GetTrackLenght(), 0.0f);
  EXPECT_EQ(t->GetTrackLenghtKey(), 0u);
  EXPECT_FALSE(t->GetTrackTimeZone(zone, delta));
  EXPECT_EQ(zone, 7);
  EXPECT_EQ(t->GetTimeZone(), 0);
  EXPECT_TRUE(t->IsTrackChiuso());
  EXPECT_EQ(t->GetNomeXDevice(), "");
  EXPECT_EQ(t->GetNationCode(), "");
  EXPECT_EQ(t->GetCitta(), "");
  EXPECT_EQ(t->GetTrackComment(), "");
  EXPECT_EQ(t->GetTrackNameCompleto(), "Imola");
  EXPECT_EQ(t->GetTrackLogo(), nullptr);
  EXPECT_EQ(t->GetLarghezzaPista(), 0u);
  EXPECT_FALSE(t->HasShape());
  EXPECT_FALSE(t->IsUserCreatedNewTrack());
  t->GetDateTimeTMModifica(when);
  EXPECT_EQ(when.tm_mday, 9);
  t->SetNomeXDevice("x");
  t->SetTimezone(3);
  t->SetCitta("Imola");
  EXPECT_TRUE(t->GetTagsInfoVarianti().empty());
  // Fixed answers, on any track.
  EXPECT_TRUE(t->GetAuto() && t->GetKart() && t->GetMoto());
  EXPECT_FALSE(t->IsTrashed() || t->IsTrackObsoleta());
  EXPECT_EQ(t->GetStringaVarianti(), "");
}

TEST(Attributes, FullFieldsHaveNoTerminatorAndReadOn) {
  auto t = fixtures::MakeSmallTrack();  // nation "ITA", sub-nation "MB"
  t->SetNamexSito(std::string(300, 's'));
  EXPECT_EQ(std::string(t->GetTagInfoFile().NamexSito, 256), std::string(256, 's'));

  t->SetNomeXDevice(std::string(40, 'd'));
  // 28 bytes of name, then the nation code that follows the field.
  EXPECT_EQ(t->GetNomeXDevice(), std::string(28, 'd') + "ITA");
  EXPECT_EQ(t->GetTrackNameCompleto(), std::string(256, 's') + " " + std::string(28, 'd') + "ITA");

  t->SetNationCode("IT");
  EXPECT_EQ(std::string(t->GetTagInfo()->InfoFw.NationCode, 4), std::string("IT\0\0", 4));
  t->SetNationCode("ITALY");
  EXPECT_EQ(t->GetNationCode(), "ITALMB");  // reads on into the sub-nation code
  t->SetSubNationCode("MI");
  EXPECT_EQ(t->GetSubNationCode(), "MI");
}

TEST(Attributes, SiteNameFromTheInfoRecordOrTheArgument) {
  auto t = Empty();
  _STagInfoFileTKK info;
  memcpy(info.NamexSito, "Mugello", 8);
  t->SetTagInfoFile("", info);
  EXPECT_EQ(t->GetNamexSito(), "Mugello");
  t->SetTagInfoFile("Vallelunga", info);
  EXPECT_EQ(t->GetNamexSito(), "Vallelunga");
}

TEST(Attributes, PlusRecordsHoldContactsAndComment) {
  auto t = Empty();
  STagDatiPlus first;
  first.Comment = "first";
  t->AddTagDatiPlus(first);
  STagDatiPlus own;
  own.Nomignolo = "Ring";
  _STagIndexesVarianteTKK idx;
  idx.IdxDatiPlus = t->AddTagDatiPlus(own);
  _STagInfoVarianteTKK_fw fw;
  ASSERT_TRUE(t->AddTagInfoVariante("", "", fw, idx));
  t->SetCitta("Nürburg");  // never converted
  EXPECT_EQ(t->GetCitta(), "Nürburg");
  EXPECT_EQ(t->GetTrackNomignolo(), "Ring");
  // The comment is the first record's, not the main variant's.
  EXPECT_EQ(t->GetTrackComment(), "first");
  t->SetTrackComment("changed");
  EXPECT_EQ(t->GetTrackComment(), "changed");
}

TEST(Attributes, RoadSurfaceKey) {
  auto t = fixtures::MakeSmallTrack();
  EXPECT_EQ(t->GetFondoStradaleKey(), FONDO_PAVED);
  t->SetFondoStradaleKey(FONDO_ICE);
  EXPECT_EQ(t->GetFondoStradaleKey(), FONDO_ICE);
  EXPECT_EQ(t->GetTagsInfoVarianti().size(), 1u);
  EXPECT_EQ(t->OttieniStringaxFondoStradaleKey(), "Ice");

  // No variant: one is created with empty names and a list of just the key.
  auto e = Empty();
  e->SetFondoStradaleKey(FONDO_DIRT);
  ASSERT_EQ(e->GetTagsInfoVarianti().size(), 1u);
  EXPECT_EQ(e->GetTagInfo()->FondiStradali->Fondi, std::vector<_eTipoRoadSurfaceTkk>{FONDO_DIRT});
  EXPECT_EQ(e->GetNomeXDevice(), "");
  EXPECT_EQ(e->GetNomePista(), "");
}

TEST(Attributes, GoodTrackRules) {
  struct Case {
    bool readOnly, dev;
    uint8_t beacon;
    bool good;
  };
  const Case cases[] = {{false, false, 1, true}, {true, false, 4, true}, {true, true, 1, false},
                        {true, false, 0, false}, {true, false, 5, false}};
  for (const Case& c : cases) {
    auto t = Empty(c.readOnly, c.dev);
    _STagInfoVarianteTKK_fw fw;
    fw.InfoBeacons.TipoBeaconInUso = c.beacon;
    ASSERT_TRUE(t->AddTagInfoVariante("", "", fw, _STagIndexesVarianteTKK()));
    t->GetTagInfo()->InfoFw.InfoBeacons.TipoBeaconInUso = c.beacon;
    EXPECT_EQ(t->IsGood(), c.good) << int(c.beacon);
  }
}

TEST(Attributes, DatesTimeZoneAndAngleOfTheMainVariant) {
  auto t = fixtures::MakeSmallTrack();
  tm when = {};
  when.tm_year = 124;
  when.tm_mon = 2;
  when.tm_mday = 5;
  when.tm_hour = 12;
  t->AggiornaDataModifica(when);
  tm back;
  t->GetDateTimeTMModifica(back);
  EXPECT_EQ(back.tm_year, 124);
  EXPECT_EQ(back.tm_mday, 5);
  EXPECT_EQ(back.tm_hour, 12);
  int zone = 0, delta = 0;
  ASSERT_TRUE(t->GetTrackTimeZone(zone, delta));
  EXPECT_EQ(zone, 50);  // a new variant's zone is not determined
  t->SetTimezone(-5);
  t->SetDeltaMin(30);
  EXPECT_EQ(t->GetTimeZone(), -5);
  EXPECT_EQ(t->GetDeltaMin(), 30);
  t->SetTrackAnglePlot(12.5f);
  EXPECT_EQ(t->GetTrackAnglePlot(), 12.5f);
  t->SetTrackTypeCircuitKey(TRACCIATO_RALLY);
  EXPECT_FALSE(t->IsTrackChiuso());
  EXPECT_EQ(t->OttieniStringaxTrackTypeCircuitKey(), "Rally");
  EXPECT_TRUE(t->HasShape());
  t->RemoveShape();
  EXPECT_FALSE(t->HasShape());
}

}  // namespace

namespace {

// Names are UTF-8 in the records and in the local character set at the
// interface; nation codes are bytes, copied as they come.
TEST(Attributes, NamesAreConvertedCodesAreNot) {
  const std::string saved = setlocale(LC_CTYPE, nullptr);
  ASSERT_NE(setlocale(LC_CTYPE, "en_US.ISO-8859-1"), nullptr) << "test locale missing";
  auto t = fixtures::MakeSmallTrack();
  t->SetNomeXDevice("N\xFCrburg");
  t->SetNamexSito("Gro\xDF");
  t->SetNationCode("\xC4");
  EXPECT_STREQ(t->GetTagInfo()->InfoFw.NomeXDevice, "N\xC3\xBCrburg");
  EXPECT_STREQ(t->GetTagInfoFile().NamexSito, "Gro\xC3\x9F");
  EXPECT_STREQ(t->GetTagInfo()->InfoFw.NationCode, "\xC4");
  EXPECT_EQ(t->GetNomeXDevice(), "N\xFCrburg");
  EXPECT_EQ(t->GetTrackNameCompleto(), "Gro\xDF N\xFCrburg");
  setlocale(LC_CTYPE, saved.c_str());
}

}  // namespace
