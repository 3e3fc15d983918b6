#include <gtest/gtest.h>
#include <string.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "CFileTkk.h"
#include "GuidNomeFile.h"
#include "TrackMemoryRecords.h"
#include "support/EvtLogRecorder.h"
#include "support/FakeClock.h"
#include "support/PlatformFaults.h"
#include "support/TrackFixtures.h"

namespace {

using fixtures::Bytes;

template <typename T>
Bytes BytesOf(const T& record) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(&record);
  return Bytes(p, p + sizeof record);
}

class SaveTest : public ::testing::Test {
 protected:
  void SetUp() override { evtrec::Reset(true); }
  void TearDown() override {
    evtrec::Reset(false);
    faults::FailEncoderCreation(false);
  }

  std::unique_ptr<CFileTkk> Open(const std::string& name) {
    return std::unique_ptr<CFileTkk>(
        static_cast<CFileTkk*>(IFileTkk::CreateMeUponFile(dir_.path() + name + ".tkk", false, false)));
  }

  fixtures::TempDir dir_;
};

// What was built is what is read back: every record byte for byte, the
// lists in order, the links to the same positions.
void ExpectSameTrack(CFileTkk& saved, CFileTkk& read, const std::string& dir) {
  EXPECT_EQ(BytesOf(read.GetTagInfoFile()), BytesOf(saved.GetTagInfoFile()));
  ASSERT_EQ(read.GetTagsInfoVarianti().size(), saved.GetTagsInfoVarianti().size());
  for (size_t i = 0; i < saved.GetTagsInfoVarianti().size(); ++i) {
    const STagsInfoVariante& a = *saved.GetTagsInfoVarianti()[i];
    const STagsInfoVariante& b = *read.GetTagsInfoVarianti()[i];
    EXPECT_EQ(BytesOf(b.InfoFw), BytesOf(a.InfoFw)) << "variant " << i;
    EXPECT_EQ(BytesOf(b.InfoSw), BytesOf(a.InfoSw)) << "variant " << i;
    EXPECT_EQ(BytesOf(b.Indici), BytesOf(a.Indici)) << "variant " << i;
    ASSERT_EQ(b.Punti != nullptr, a.Punti != nullptr);
    if (a.Punti) {
      ASSERT_EQ(b.Punti->Punti.size(), a.Punti->Punti.size());
      EXPECT_EQ(memcmp(b.Punti->Punti.data(), a.Punti->Punti.data(), a.Punti->Punti.size() * 12), 0);
    }
    ASSERT_EQ(b.FondiStradali != nullptr, a.FondiStradali != nullptr);
    if (a.FondiStradali) {
      EXPECT_EQ(b.FondiStradali->Fondi, a.FondiStradali->Fondi);
    }
    ASSERT_EQ(b.Logo != nullptr, a.Logo != nullptr);
    if (a.Logo) {
      EXPECT_EQ(b.Logo->Dati, a.Logo->Dati);
      const std::string base = a.Logo->NomeFile.substr(a.Logo->NomeFile.find_last_of('/') + 1);
      EXPECT_EQ(b.Logo->NomeFile, dir + base);
    }
    EXPECT_EQ(b.DatiPlus, nullptr);  // additional texts are never written
  }
}

TEST_F(SaveTest, RandomTracksComeBackByteForByte) {
  for (uint32_t seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE(seed);
    auto track = fixtures::MakeRandomTrack(seed);
    const std::string name = "r" + std::string(7 - std::to_string(seed).size(), '0') + std::to_string(seed);
    ASSERT_EQ(track->SalvaFileInPath(dir_.path(), &name), name);
    EXPECT_EQ(std::string(track->GetTagInfoFile().GuidNomeFile, 8), name);
    auto read = Open(name);
    ASSERT_TRUE(read->IsGood());
    ExpectSameTrack(*track, *read, dir_.path());

    // Saving what was read gives the same bytes again.
    const Bytes first = fixtures::ReadAll(dir_.path() + name + ".tkk");
    ASSERT_EQ(read->SalvaFileInPath(dir_.path(), &name), name);
    EXPECT_EQ(fixtures::ReadAll(dir_.path() + name + ".tkk"), first);
  }
  EXPECT_TRUE(evtrec::Events().empty());
}

TEST_F(SaveTest, GeneratedNameIsWrittenIntoTheFile) {
  for (const bool readOnly : {false, true}) {
    auto track = fixtures::MakeRandomTrack(7, readOnly);
    const std::string name = track->SalvaFileInPath(dir_.path(), nullptr);
    ASSERT_EQ(name.size(), 8u);
    EXPECT_EQ(std::string(track->GetTagInfoFile().GuidNomeFile, 8), name);
    tm when;
    bool isVek = !readOnly, isDev = true;
    ASSERT_TRUE(IGuidNomeFile::GetDaNomeFile(name, when, isVek, isDev));
    EXPECT_EQ(isVek, readOnly);
    EXPECT_FALSE(isDev);
    auto read = Open(name);
    EXPECT_TRUE(read->IsGood());
    EXPECT_EQ(read->IsVekTrack(), readOnly);
  }
}

TEST_F(SaveTest, LogosOfNineBytesOrLessAreNotSaved) {
  auto track = fixtures::MakeSmallTrack();
  _STagIndexesVarianteTKK idx;
  idx.IdxLogo = track->AddTagDatiLogo(Bytes(9, 1), "/x/small.png");
  track->AddTagDatiLogo(Bytes(10, 2), "/x/big.png");
  track->AddTagDatiLogo(Bytes(50, 3), "");  // no name: not saved either
  ASSERT_TRUE(track->AddTagInfoVariante("", "", _STagInfoVarianteTKK_fw(), idx));

  const std::string name = "logo0001";
  ASSERT_EQ(track->SalvaFileInPath(dir_.path(), &name), name);
  auto read = Open(name);
  // Only "big.png" became an atom: the variant whose IdxLogo is 0 now
  // points at it, since the writer does not renumber.
  ASSERT_EQ(read->GetTagsInfoVarianti().size(), 2u);
  EXPECT_EQ(read->GetTagInfoVariante(1)->Logo->NomeFile, dir_.path() + "big.png");

  const std::string ext = "logo0002";
  ASSERT_EQ(track->SalvaFileInPathLogoEsterno(dir_.path(), ext), ext);
  const std::vector<std::string> expected = {"big.png", "logo0001.tkk", "logo0002.png", "logo0002.tkk"};
  EXPECT_EQ(dir_.Entries(), expected);
  EXPECT_EQ(fixtures::ReadAll(dir_.path() + "logo0002.png"), Bytes(10, 2));
  // With no "lgo" atom at all, the variant that names logo 0 is skipped on
  // reading.
  auto external = Open(ext);
  EXPECT_TRUE(external->IsGood());
  EXPECT_EQ(external->GetTagsInfoVarianti().size(), 1u);
}

// The name generator repeats a name when the clock and rand() repeat: the
// second save must find the name taken and wait for a free one, on file
// systems with hard links and on memory cards without them.
TEST_F(SaveTest, GeneratedNamesNeverReplaceATrack) {
  struct Case {
    const char* what;
    bool noLinks, noExclusiveRename;
  };
  const Case cases[] = {{"hard links", false, false},
                        {"exclusive rename", true, false},
                        {"placeholder", true, true}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    fixtures::TempDir dir;
    faults::NoHardLinks(c.noLinks, c.noExclusiveRename);
    fakeclock::Freeze(fakeclock::Utc(2026, 11, 22, 10, 0, 0));
    for (int i = 0; i < 60; ++i) fakeclock::QueueRand({0x105});
    auto first = fixtures::MakeRandomTrack(1);
    auto second = fixtures::MakeRandomTrack(2);
    const std::string a = first->SalvaFileInPath(dir.path(), nullptr);
    const std::string b = second->SalvaFileInPath(dir.path(), nullptr);
    const int waits = fakeclock::UsleepCalls();
    fakeclock::Reset();
    faults::NoHardLinks(false);
    ASSERT_EQ(a.size(), 8u);
    ASSERT_EQ(b.size(), 8u);
    EXPECT_NE(a, b);
    EXPECT_GT(waits, 0) << "the second save waited for a free name";
    EXPECT_EQ(dir.Entries(), (std::vector<std::string>{std::min(a, b) + ".tkk", std::max(a, b) + ".tkk"}));
    std::unique_ptr<CFileTkk> readA(static_cast<CFileTkk*>(
        IFileTkk::CreateMeUponFile(dir.path() + a + ".tkk", false, false)));
    ExpectSameTrack(*first, *readA, dir.path());
  }
}

TEST_F(SaveTest, NoEncoderNoFile) {
  auto track = fixtures::MakeSmallTrack();
  faults::FailEncoderCreation(true);
  const std::string name = "enc00001";
  EXPECT_EQ(track->SalvaFileInPath(dir_.path(), &name), "");
  EXPECT_EQ(track->SalvaFileInPath(dir_.path(), nullptr), "");
  EXPECT_EQ(track->SalvaFileInPathLogoEsterno(dir_.path(), name), "");
  EXPECT_TRUE(dir_.Entries().empty());
  EXPECT_TRUE(evtrec::Events().empty());
}

}  // namespace
