#include <gtest/gtest.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "CFileTkk.h"
#include "TrackMemoryRecords.h"
#include "platform/IAtomTagEncoderBin.h"
#include "tkkFlat.h"
#include "support/EvtLogRecorder.h"
#include "support/PlatformFaults.h"
#include "support/TrackFixtures.h"

namespace {

using fixtures::Bytes;

// Composes a track file atom by atom, with any tag and payload.
class FileBuilder {
 public:
  FileBuilder& Atom(const std::string& tag, const void* payload, size_t size) {
    std::unique_ptr<IAtomTagEncoderBin> enc(IAtomTagEncoderBin::CreateMe());
    EXPECT_TRUE(enc->append(bytes_, tag, payload, static_cast<uint32_t>(size), 0));
    return *this;
  }
  template <typename T>
  FileBuilder& Record(const std::string& tag, const T& record) {
    return Atom(tag, &record, sizeof record);
  }
  FileBuilder& Info() { return Record("Ptkk", info_); }
  FileBuilder& Fw(const char* device = "") {
    _STagInfoVarianteTKK_fw fw = fw_;
    memcpy(fw.NomeXDevice, device, strlen(device) + 1);
    return Record("Vnfo", fw);
  }
  FileBuilder& Sw(const char* name) {
    _STagInfoVarianteTKK_sw sw;
    memcpy(sw.NomePista, name, strlen(name) + 1);
    return Record("V_sw", sw);
  }
  FileBuilder& Idx(uint16_t punti = 0xFFFF, uint16_t logo = 0xFFFF) {
    _STagIndexesVarianteTKK idx;
    idx.IdxPunti = punti;
    idx.IdxLogo = logo;
    return Record("Vidx", idx);
  }
  FileBuilder& Points(size_t n) {
    std::vector<_t_s_lla_i> pts(n, _t_s_lla_i{1, 2, 3});
    return Atom("pts", pts.data(), pts.size() * sizeof(_t_s_lla_i));
  }
  FileBuilder& Logo(const std::string& name, const Bytes& image) {
    Bytes payload(name.begin(), name.end());
    payload.push_back(0);
    payload.insert(payload.end(), image.begin(), image.end());
    return Atom("lgo", payload.data(), payload.size());
  }
  const Bytes& bytes() const { return bytes_; }

 private:
  _STagInfoFileTKK info_;
  _STagInfoVarianteTKK_fw fw_ = Filled();
  Bytes bytes_;

  static _STagInfoVarianteTKK_fw Filled() {
    _STagInfoVarianteTKK_fw fw;
    memcpy(fw.NationCode, "ITA\0", 4);
    memcpy(fw.SubNationCode, "MB\0\0", 4);
    return fw;
  }
};

class ReadTest : public ::testing::Test {
 protected:
  void SetUp() override { evtrec::Reset(true); }
  void TearDown() override {
    evtrec::Reset(false);
    faults::FailDecoderCreation(false);
    faults::PlainContainer(false);
  }

  std::string Write(const Bytes& bytes, const std::string& name = "0k3f9zq1.tkk") {
    const std::string path = dir_.path() + name;
    fixtures::WriteAll(path, bytes);
    return path;
  }
  std::unique_ptr<CFileTkk> Open(const std::string& path, bool senzaLogo = false) {
    return std::unique_ptr<CFileTkk>(
        static_cast<CFileTkk*>(IFileTkk::CreateMeUponFile(path, false, senzaLogo)));
  }
  void ExpectOneReport(const std::string& severity, const std::string& message) {
    ASSERT_EQ(evtrec::Events().size(), 1u);
    EXPECT_EQ(evtrec::Events()[0].severity, severity);
    EXPECT_EQ(evtrec::Events()[0].Message(), message);
  }

  fixtures::TempDir dir_;
};

TEST_F(ReadTest, FailuresAreReportedWithTheirMessage) {
  const Bytes good = FileBuilder().Info().Fw().Sw("GP").Idx().bytes();
  Bytes badCrc = good;
  badCrc[20] ^= 1;
  // Past the read buffer: the end of a logo read straight into its record,
  // the end of an ignored atom passed over.
  Bytes badLogo = FileBuilder().Info().Fw().Idx(0xFFFF, 0).Logo("a.png", Bytes(40000, 7)).bytes();
  badLogo[badLogo.size() - 10] ^= 1;
  Bytes badUnknown = FileBuilder().Info().Fw().Idx().Atom("zzz", Bytes(40000, 7).data(), 40000).bytes();
  badUnknown[badUnknown.size() - 10] ^= 1;
  // A size field far beyond the file's own size is refused, not allocated.
  Bytes hugeSize = good;
  hugeSize[6] = 0xFF;
  hugeSize[7] = 0xFF;
  _STagInfoFileTKK info;
  struct Case {
    const char* what;
    Bytes bytes;  // empty: no file at all
    bool noDecoder;
    std::string message;  // %s stands for the path
  };
  const Case cases[] = {
      {"missing file", {}, false, "Can't open file %s"},
      {"empty file", Bytes{}, false, "Zero length file %s"},
      {"no decoder", good, true, "Can't alloc mem"},
      {"bad CRC", badCrc, false, "Can't interpret file %s"},
      {"bad CRC at the end of a logo", badLogo, false, "Can't interpret file %s"},
      {"bad CRC at the end of an unknown atom", badUnknown, false, "Can't interpret file %s"},
      {"size field beyond the file", hugeSize, false, "Can't interpret file %s"},
      {"last byte missing", Bytes(good.begin(), good.end() - 1), false, "Can't interpret file %s"},
      {"Ptkk of 267 bytes", FileBuilder().Atom("Ptkk", &info, 267).bytes(), false,
       "Can't interpret file %s"},
      {"no Ptkk", FileBuilder().Fw().Idx().bytes(), false, "Can't interpret file %s"},
      {"Vnfo without Vidx", FileBuilder().Info().Fw().Fw().Idx().bytes(), false,
       "Can't interpret file %s"},
      {"Vidx before Vnfo", FileBuilder().Info().Idx().Fw().bytes(), false,
       "Can't find STagInfoVarianteTKK_fw"},
  };
  for (bool plain : {false, true})
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    SCOPED_TRACE(plain ? "container without pieces" : "container with pieces");
    faults::PlainContainer(plain);
    evtrec::Reset(true);
    const std::string path = dir_.path() + "case.tkk";
    unlink(path.c_str());
    if (std::string(c.what) != "missing file") fixtures::WriteAll(path, c.bytes);
    faults::FailDecoderCreation(c.noDecoder);
    std::unique_ptr<CFileTkk> track = Open(path);
    faults::FailDecoderCreation(false);
    ASSERT_TRUE(track);
    EXPECT_FALSE(track->IsGood());
    std::string expected = c.message;
    const size_t at = expected.find("%s");
    if (at != std::string::npos) expected.replace(at, 2, path);
    ExpectOneReport("ERROR", expected);
  }
}

// A FIFO named like a track, or a device, used to keep the open waiting for
// a writer for ever; as a logo it did the same.
TEST_F(ReadTest, SpecialFilesAreRefusedAtOnce) {
  const std::string fifo = dir_.path() + "0k3f9zq1.tkk";
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  alarm(20);  // a wait ends the test here
  for (const std::string& path : {fifo, std::string("/dev/null")}) {
    evtrec::Reset(true);
    EXPECT_FALSE(Open(path)->IsGood());
    ExpectOneReport("ERROR", "Can't open file " + path);
    std::unique_ptr<CFileTkk> track = fixtures::MakeSmallTrack();
    track->SetTrackLogo(path);
    EXPECT_EQ(0xFFFF, track->GetTagInfo()->Indici.IdxLogo) << path;
  }
  alarm(0);
}

TEST_F(ReadTest, AFailedReadLeavesNoVariantAndTheFilesSize) {
  std::unique_ptr<CFileTkk> track = Open(Write(FileBuilder().Info().Fw().Idx().bytes()));
  ASSERT_TRUE(track->IsGood());
  ASSERT_EQ(track->GetTagsInfoVarianti().size(), 1u);
  const Bytes garbage(100, 0x55);
  const std::string bad = Write(garbage, "bad.tkk");
  EXPECT_FALSE(track->LeggiFile(bad, false));
  EXPECT_TRUE(track->GetTagsInfoVarianti().empty());
  EXPECT_EQ(track->GetDimTkk(), 100u);
}

TEST_F(ReadTest, MalformedButReadableFiles) {
  _STagIndexesVarianteTKK farIdx;
  farIdx.IdxFondiStradali = 9;
  const uint32_t weird = 7;
  struct Case {
    const char* what;
    Bytes bytes;
    size_t variants;
  };
  const Case cases[] = {
      {"unknown tag ignored", FileBuilder().Info().Atom("zzz", "abc", 3).Fw().Idx().bytes(), 1},
      {"V_sw of wrong size ignored", FileBuilder().Info().Fw().Atom("V_sw", "x", 1).Idx().bytes(), 1},
      {"index out of range skips the variant",
       FileBuilder().Info().Points(2).Points(3).Fw().Idx(3).Fw().Idx(1).bytes(), 1},
      {"surface index out of range", FileBuilder().Info().Fw().Record("Vidx", farIdx).bytes(), 0},
      {"empty pts adds no shape", FileBuilder().Info().Atom("pts", nullptr, 0).Points(1).Fw().Idx(1).bytes(), 0},
      {"pts of odd size adds no shape", FileBuilder().Info().Atom("pts", &weird, 4).Fw().Idx(0).bytes(), 0},
      {"empty logo still counts", FileBuilder().Info().Atom("lgo", nullptr, 0).Fw().Idx(0xFFFF, 0).bytes(), 1},
      {"only the file info", FileBuilder().Info().bytes(), 0},
      {"large unknown atom ignored",
       FileBuilder().Info().Atom("zzz", Bytes(40000, 1).data(), 40000).Fw().Idx().bytes(), 1},
      {"logo name longer than the read buffer",
       FileBuilder().Info().Logo(std::string(20000, 'n'), Bytes(20, 1)).Fw().Idx(0xFFFF, 0).bytes(), 1},
  };
  for (bool plain : {false, true})
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    faults::PlainContainer(plain);
    std::unique_ptr<CFileTkk> track = Open(Write(c.bytes));
    EXPECT_TRUE(track->IsGood());
    EXPECT_EQ(track->GetTagsInfoVarianti().size(), c.variants);
  }
}

TEST_F(ReadTest, CurrentRecordsCarryOverBetweenVariants) {
  // One V_sw before the first Vidx and none before the second: both
  // variants carry its name.
  std::unique_ptr<CFileTkk> track =
      Open(Write(FileBuilder().Info().Fw("A").Sw("Ring").Idx().Fw("B").Idx().bytes()));
  ASSERT_TRUE(track->IsGood());
  ASSERT_EQ(track->GetTagsInfoVarianti().size(), 2u);
  for (const STagsInfoVariante* v : track->GetTagsInfoVarianti()) {
    EXPECT_STREQ(v->InfoSw.NomePista, "Ring");
    EXPECT_EQ(v->Owner, track.get());
    EXPECT_TRUE(v->NomeFileLogoEsterno.empty());
  }
  EXPECT_STREQ(track->GetTagInfoVariante(1)->InfoFw.NomeXDevice, "B");

  // Two Vidx after the same current Vnfo share its fixed part.
  track = Open(Write(FileBuilder().Info().Fw("A").Fw("B").Idx().Idx().bytes(), "b.tkk"));
  ASSERT_EQ(track->GetTagsInfoVarianti().size(), 2u);
  EXPECT_STREQ(track->GetTagInfoVariante(0)->InfoFw.NomeXDevice, "B");
  EXPECT_STREQ(track->GetTagInfoVariante(1)->InfoFw.NomeXDevice, "B");
}

TEST_F(ReadTest, NameOnDiskAndFlagsFromTheName) {
  struct Case {
    const char* name;
    const char* onDisk;  // 8 bytes or "" when unset
  };
  const Case cases[] = {{"ABCDEFGH.tkk", "ABCDEFGH"}, {"ABC.tkk", ""}, {"0k3f9zq1.tkk", "0k3f9zq1"}};
  const Bytes bytes = FileBuilder().Info().Fw().Idx().bytes();
  for (const Case& c : cases) {
    std::unique_ptr<CFileTkk> track = Open(Write(bytes, c.name));
    char name[8];
    track->GetNomeFile(name);
    EXPECT_EQ(std::string(name, strnlen(name, 8)), c.onDisk) << c.name;
  }
  // The flags of a valid name decide whether the track is a maker's track
  // or a development track.
  const tm when = {};
  for (int isVek = 0; isVek < 2; ++isVek) {
    for (int isDev = 0; isDev < 2; ++isDev) {
      unsigned char value[8];
      tkkGenerateGuidNomeFile(value, isVek, isDev, &when, 0);
      char name[9];
      tkkGetNomeFileFromGuid(name, value);
      std::unique_ptr<CFileTkk> track = Open(Write(bytes, std::string(name) + ".tkk"));
      EXPECT_EQ(track->IsVekTrack(), isVek == 1) << name;
      EXPECT_EQ(track->IsDevTrack(), isDev == 1) << name;
      EXPECT_EQ(track->IsGood(), !(isVek == 1 && isDev == 1)) << name;
    }
  }
}

TEST_F(ReadTest, LogosAreLoadedAndWrittenBesideTheTrack) {
  const Bytes image = {1, 2, 3, 4, 5, 6, 7};
  const std::string path =
      Write(FileBuilder().Info().Logo("badge.png", image).Fw().Idx(0xFFFF, 0).bytes());
  std::unique_ptr<CFileTkk> track = Open(path);
  ASSERT_TRUE(track->IsGood());
  ASSERT_NE(track->GetTrackLogoBuffer(), nullptr);
  EXPECT_EQ(track->GetTrackLogoBuffer()->Dati, image);
  EXPECT_EQ(*track->GetTrackLogo(), dir_.path() + "badge.png");
  EXPECT_EQ(fixtures::ReadAll(dir_.path() + "badge.png"), image);

  // Read again: the existing image stays, or with nuovoNomeLogo a numbered
  // copy is made.
  EXPECT_TRUE(track->LeggiFile(path, false));
  EXPECT_EQ(access((dir_.path() + "badge1.png").c_str(), F_OK), -1);
  EXPECT_TRUE(track->LeggiFile(path, true));
  EXPECT_TRUE(track->LeggiFile(path, true));
  EXPECT_EQ(fixtures::ReadAll(dir_.path() + "badge1.png"), image);
  EXPECT_EQ(fixtures::ReadAll(dir_.path() + "badge2.png"), image);
  EXPECT_EQ(*track->GetTrackLogo(), dir_.path() + "badge.png");
}

// Each image of a name looks for its number from where the previous one
// stopped: a file with many logos of one name used to probe 1, 2, ... again
// for every logo, quadratic in their number.
TEST_F(ReadTest, NumberedLogoNamesAreProbedOnce) {
  constexpr unsigned kLogos = 200;
  FileBuilder file;
  file.Info();
  for (unsigned i = 0; i < kLogos; ++i) file.Logo("badge.png", Bytes(8, static_cast<unsigned char>(i)));
  const std::string path = Write(file.Fw().Idx(0xFFFF, 0).bytes());
  std::unique_ptr<CFileTkk> track = Open(path);
  faults::ResetAccessCount();
  ASSERT_TRUE(track->LeggiFile(path, true));
  EXPECT_LT(faults::AccessCount(), 3u * kLogos);
  // The same names as probing from 1: badge.png held logo 0 from the first
  // read, this read numbered all 200 from badge1.png on.
  EXPECT_EQ(fixtures::ReadAll(dir_.path() + "badge200.png"), Bytes(8, kLogos - 1));
  EXPECT_EQ(access((dir_.path() + "badge201.png").c_str(), F_OK), -1);
}

TEST_F(ReadTest, SomeImagesStayInMemoryOnly) {
  struct Case {
    const char* name;
    Bytes image;
    const char* wouldBe;  // relative to the test directory
  };
  const Case cases[] = {
      {"tiny.png", {1, 2, 3, 4, 5}, "tiny.png"},          // too short for a file
      {"../escaped.png", Bytes(20, 7), "../escaped.png"},  // would leave the directory
  };
  for (const Case& c : cases) {
    const std::string path =
        Write(FileBuilder().Info().Logo(c.name, c.image).Fw().Idx(0xFFFF, 0).bytes());
    std::unique_ptr<CFileTkk> track = Open(path);
    EXPECT_TRUE(track->IsGood());
    EXPECT_EQ(track->GetTrackLogoBuffer()->Dati, c.image);
    EXPECT_EQ(access((dir_.path() + c.wouldBe).c_str(), F_OK), -1) << c.name;
  }
}

TEST_F(ReadTest, WithoutLogosTheLogoIndexIsNotChecked) {
  const std::string path =
      Write(FileBuilder().Info().Logo("badge.png", Bytes(20, 9)).Fw().Idx(0xFFFF, 7).bytes());
  std::unique_ptr<CFileTkk> track = Open(path, true);
  EXPECT_TRUE(track->IsGood());
  ASSERT_EQ(track->GetTagsInfoVarianti().size(), 1u);
  EXPECT_EQ(track->GetTrackLogoBuffer(), nullptr);
  EXPECT_EQ(access((dir_.path() + "badge.png").c_str(), F_OK), -1);
}

TEST_F(ReadTest, FileOffsetsKeptAsSummariesRecordThem) {
  const std::string path = Write(
      FileBuilder().Info().Fw().Idx(0).Fw().Idx().Fw().Idx(1).Points(10).Points(3).bytes());
  std::unique_ptr<CFileTkk> track = Open(path);
  ASSERT_EQ(track->GetTagsInfoVarianti().size(), 3u);
  const uint32_t first = 8 + 4 + 268;
  EXPECT_EQ(track->GetOffsetDatiFw(0), first);
  EXPECT_EQ(track->GetOffsetDatiFw(5), first);
  EXPECT_EQ(track->GetOffsetDatiFw(-1), first);
  EXPECT_EQ(track->GetOffsetDatiFw(1), first + 740 + 3 * 4 + 3 * 8);  // the second Vnfo
  EXPECT_EQ(track->GetOffsetDatiFw(3), 8 + 4 + 1008 + 12 + 3 * 24u);

  const uint32_t firstPts = first + 3 * (3 * 8 + 3 * 4 + 740);
  EXPECT_EQ(track->GetOffsetPti(0), firstPts);
  EXPECT_EQ(track->GetOffsetPti(1), firstPts + 8 + 120 + 4);
  EXPECT_EQ(track->GetOffsetPti(2), firstPts + 8 + 120 + 4);  // variant 1 has no shape
  EXPECT_EQ(track->GetOffsetPti(3), 0u);

  std::unique_ptr<CFileTkk> noShapes = Open(Write(FileBuilder().Info().Fw().Idx().bytes(), "b.tkk"));
  EXPECT_EQ(noShapes->GetOffsetPti(0), 0u);
}

}  // namespace

namespace {

Bytes SaveIn(CFileTkk& track, const std::string& dir, const std::string& name) {
  EXPECT_EQ(track.SalvaFileInPath(dir, &name), name);
  return fixtures::ReadAll(dir + name + ".tkk");
}

}  // namespace

// Records read or saved through a container without pieces, or by an object
// that read other files before (a larger one, a failed one), are the same.
TEST_F(ReadTest, EveryWayGivesTheSameBytes) {
  fixtures::TempDir other;
  const std::string name = "0k3f9zq1";
  std::unique_ptr<CFileTkk> again(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, false)));
  const std::string bad = Write(Bytes(100, 0x55), "bad.tkk");
  for (uint32_t seed : {5u, 1u, 2u, 3u}) {
    SCOPED_TRACE(seed);
    std::unique_ptr<CFileTkk> built = fixtures::MakeRandomTrack(seed);
    faults::PlainContainer(true);
    const Bytes plain = SaveIn(*built, other.path(), name);
    faults::PlainContainer(false);
    const Bytes saved = SaveIn(*built, dir_.path(), name);
    EXPECT_EQ(saved, plain);
    const std::string path = dir_.path() + name + ".tkk";
    for (bool plainRead : {false, true}) {
      faults::PlainContainer(plainRead);
      EXPECT_EQ(SaveIn(*Open(path), other.path(), name), saved) << plainRead;
    }
    faults::PlainContainer(false);
    ASSERT_TRUE(again->LeggiFile(path, false));
    EXPECT_EQ(SaveIn(*again, other.path(), name), saved);
    EXPECT_FALSE(again->LeggiFile(bad, false));
  }
}

long ResidentKb() {
  long pages = 0, resident = 0;
  FILE* f = fopen("/proc/self/statm", "r");
  if (f == nullptr) return -1;
  if (fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = -1;
  fclose(f);
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

// With the host's allocator as it comes, a process that reads and saves a
// 1 MB track over and over keeps the same resident memory.
TEST_F(ReadTest, ReadingAndSavingInALoopKeepsResidentMemoryFlat) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "AddressSanitizer keeps freed memory in quarantine";
#endif
  std::unique_ptr<CFileTkk> track(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, false)));
  std::vector<_t_s_lla_i> shape(7999, _t_s_lla_i{1, 2, 3});
  _STagIndexesVarianteTKK idx;
  idx.IdxPunti = track->AddTagDatiPuntiTracciato(shape);
  idx.IdxLogo = track->AddTagDatiLogo(Bytes(900 * 1024, 9), "logo.png");
  ASSERT_TRUE(track->AddTagInfoVariante("GP", "GP", _STagInfoVarianteTKK_fw(), idx));
  const std::string name = "0k3f9zq1";
  const std::string path = dir_.path() + name + ".tkk";
  std::unique_ptr<CFileTkk> same(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, false)));
  const auto round = [&] {
    ASSERT_EQ(track->SalvaFileInPath(dir_.path(), &name), name);
    ASSERT_TRUE(Open(path)->IsGood());
    ASSERT_TRUE(same->LeggiFile(path, false));
  };
  for (int i = 0; i < 20; ++i) round();
  const long before = ResidentKb();
  for (int i = 0; i < 100; ++i) round();
  EXPECT_LT(ResidentKb() - before, 1024) << "KB more resident after 100 rounds";
}
