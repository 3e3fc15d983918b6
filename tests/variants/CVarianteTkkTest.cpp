#include <gtest/gtest.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "CFileTkk.h"
#include "CVarianteTkk.h"
#include "TrackMemoryRecords.h"
#include "support/TrackFixtures.h"

namespace {

struct VariantData {
  const char* pista;
  const char* device;
  const char* nation;
  _eTipoTracciatoTkk type;
  int zone;
  int32_t lat;
};

const VariantData kVariants[] = {
    {"GP", "Monza GP", "ITA", TRACCIATO_RACE_TRACK, 1, 100},
    {"Junior", "Monza Jr", "ITB", TRACCIATO_KART_TRACK, 2, 200},
    {"", "Monza Oval", "ITC", TRACCIATO_OVAL, 3, 300},
};

// A three-variant track saved and read back; the second variant alone has
// an additional-text record (only while building: they are never saved).
std::unique_ptr<CFileTkk> ThreeVariants(const fixtures::TempDir& dir) {
  std::unique_ptr<CFileTkk> t(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, false)));
  t->SetNamexSito("Autodromo");
  for (const VariantData& s : kVariants) {
    _STagInfoVarianteTKK_fw fw;
    memset(fw.NationCode, 0, 8);
    memcpy(fw.NationCode, s.nation, 3);
    fw.TipoTracciato = s.type;
    fw.TimeZone = s.zone;
    fw.InfoBeacons.LineeBeacon[3][0].LatI = s.lat;
    _STagIndexesVarianteTKK idx;
    idx.IdxFondiStradali = t->AddDatiFondoStradale({static_cast<_eTipoRoadSurfaceTkk>(1 << s.zone)});
    EXPECT_TRUE(t->AddTagInfoVariante(s.pista, s.device, fw, idx));
  }
  // A generated name says "user's track, not development" like the object.
  const std::string name = t->SalvaFileInPath(dir.path(), nullptr);
  return std::unique_ptr<CFileTkk>(
      static_cast<CFileTkk*>(IFileTkk::CreateMeUponFile(dir.path() + name + ".tkk", false, false)));
}

TEST(CVarianteTkk, EachViewAnswersForItsOwnVariant) {
  fixtures::TempDir dir;
  auto t = ThreeVariants(dir);
  const std::vector<IVarianteTkk*>& views = t->GetVariantiTrack();
  ASSERT_EQ(views.size(), 3u);
  for (short i = 0; i < 3; ++i) {
    const VariantData& s = kVariants[i];
    IVarianteTkk* v = views[static_cast<size_t>(i)];
    SCOPED_TRACE(s.device);
    EXPECT_EQ(v->GetTagInfo(), t->GetTagInfoVariante(i));
    EXPECT_EQ(v->GetIdxVariante(), i);
    EXPECT_EQ(v->GetNomePista(), s.pista);
    EXPECT_EQ(v->GetNomeXDevice(), s.device);
    EXPECT_EQ(v->GetTrackNameCompleto(), std::string("Autodromo") + (*s.pista ? " " : "") + s.pista);
    EXPECT_EQ(v->GetTrackTypeCircuitKey(), s.type);
    EXPECT_EQ(v->GetFondoStradaleKey(), 1 << s.zone);
    int zone = 0, delta = -1;
    EXPECT_TRUE(v->GetTrackTimeZone(zone, delta));
    EXPECT_EQ(zone, s.zone);
    EXPECT_EQ(delta, 0);
    const _SDatoCoordinateBeacon* lines = nullptr;
    EXPECT_EQ(v->GetLineeSplitLLH(lines, BEACON_IN_USO), 1u);
    EXPECT_EQ(lines[0].LatI, s.lat);
    // No additional-text record after a read: no nation code through a view.
    EXPECT_EQ(v->GetNationCode(), "");
    // File-level answers are the same for every view.
    EXPECT_EQ(v->GetNamexSito(), "Autodromo");
    EXPECT_EQ(v->GetGuidNomeFile(), t->GetGuidNomeFile());
    EXPECT_EQ(v->GetNomeFileDaFileSystem(), t->GetGuidNomeFile());
    EXPECT_TRUE(v->IsGood());
    EXPECT_FALSE(v->IsVekTrack() || v->GetTrackIsReadOnly() || v->IsDevTrack());
    EXPECT_TRUE(v->IsUserCreatedNewTrack());
  }
  EXPECT_EQ(t->GetNationCode(), "ITA");  // the file answers without the condition
  EXPECT_EQ(t->GetTrackNameCompleto(), "Autodromo Monza GP");
}

TEST(CVarianteTkk, ChangesGoToTheViewsRecord) {
  fixtures::TempDir dir;
  auto t = ThreeVariants(dir);
  IVarianteTkk* second = t->GetVariantiTrack()[1];
  second->SetNomeXDevice("Changed");
  second->SetTrackTypeCircuitKey(TRACCIATO_RALLY);
  second->SetFondoStradaleKey(FONDO_COMBO);
  EXPECT_STREQ(t->GetTagInfoVariante(1)->InfoFw.NomeXDevice, "Changed");
  EXPECT_FALSE(second->IsTrackChiuso());
  EXPECT_EQ(second->OttieniStringaxFondoStradaleKey(), "Combo");
  EXPECT_EQ(t->GetTagInfoVariante(1)->FondiStradali->Fondi.size(), 1u);  // replaced, not added
  EXPECT_EQ(t->GetTagsInfoVarianti().size(), 3u);

  // Dates: a view writes its own record but reads the main variant's.
  tm when = {};
  when.tm_year = 125;
  when.tm_mday = 9;
  second->AggiornaDataModifica(when);
  tm back = {};
  second->GetDateTimeTMModifica(back);
  EXPECT_EQ(back.tm_year, 115);
  t->GetVariantiTrack()[0]->AggiornaDataModifica(when);
  second->GetDateTimeTMModifica(back);
  EXPECT_EQ(back.tm_year, 125);
}

TEST(CVarianteTkk, PlusRecordGatesNationCodeAndContacts) {
  std::unique_ptr<CFileTkk> t(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, false)));
  STagDatiPlus plus;
  plus.Citta = "Monza";
  _STagIndexesVarianteTKK idx;
  idx.IdxDatiPlus = t->AddTagDatiPlus(plus);
  _STagInfoVarianteTKK_fw fw;
  memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
  ASSERT_TRUE(t->AddTagInfoVariante("", "", fw, _STagIndexesVarianteTKK()));
  ASSERT_TRUE(t->AddTagInfoVariante("", "", fw, idx));
  IVarianteTkk* plain = t->GetVariantiTrack()[0];
  IVarianteTkk* withPlus = t->GetVariantiTrack()[1];
  EXPECT_EQ(plain->GetNationCode(), "");
  EXPECT_EQ(withPlus->GetNationCode(), "ITA");
  EXPECT_EQ(withPlus->GetSubNationCode(), "MB");
  EXPECT_EQ(withPlus->GetCitta(), "Monza");
  withPlus->SetTrackURL("https://example.invalid");
  EXPECT_EQ(withPlus->GetTrackURL(), "https://example.invalid");
  plain->SetTrackURL("ignored");
  EXPECT_EQ(plain->GetTrackURL(), "");
  EXPECT_EQ(plain->GetTrackComment(), "");
}

TEST(CVarianteTkk, StrayAndNullRecordsAnswerDefaults) {
  auto t = fixtures::MakeSmallTrack();
  STagsInfoVariante stray(t.get());
  EXPECT_EQ(CVarianteTkk(&stray).GetIdxVariante(), -1);

  CVarianteTkk none(nullptr);
  int zone = 7, delta = 7;
  const _SDatoCoordinateBeacon* lines = &stray.InfoFw.InfoBeacons.LineeBeacon[0][0];
  EXPECT_EQ(none.GetIdxVariante(), -1);
  EXPECT_TRUE(none.IsTrackChiuso());
  EXPECT_FALSE(none.GetTrackTimeZone(zone, delta));
  EXPECT_EQ(zone, 7);
  EXPECT_EQ(none.GetTrackLenght(), 0.0f);
  EXPECT_EQ(none.GetNomePista(), "");
  EXPECT_FALSE(none.IsVekTrack() || none.IsGood() || none.IsDevTrack());
  EXPECT_EQ(none.GetLineeSplitLLH(lines, BEACON_IN_USO), 0u);
  EXPECT_EQ(lines, nullptr);
  EXPECT_EQ(none.GetTrackLogo(), nullptr);
  EXPECT_EQ(none.GetTrackNomignolo(), "");
}

TEST(CVarianteTkk, ViewsFollowTheVariantList) {
  fixtures::TempDir dir;
  auto t = ThreeVariants(dir);
  // Adding a variant keeps the views handed out and appends one.
  IVarianteTkk* first = t->GetVariantiTrack()[0];
  _STagInfoVarianteTKK_fw fw;
  memset(fw.NationCode, 0, 8);
  ASSERT_TRUE(t->AddTagInfoVariante("New", "", fw, _STagIndexesVarianteTKK()));
  ASSERT_EQ(t->GetVariantiTrack().size(), 4u);
  EXPECT_EQ(t->GetVariantiTrack()[0], first);
  EXPECT_EQ(t->GetVariantiTrack()[3]->GetNomePista(), "New");
  // A failed read leaves no variant and no view.
  EXPECT_FALSE(t->LeggiFile(dir.path() + "missing.tkk", false));
  EXPECT_TRUE(t->GetVariantiTrack().empty());
}

}  // namespace
