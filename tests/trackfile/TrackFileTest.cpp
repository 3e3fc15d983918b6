// Track files on disk: reading (failures and their reports, malformed files,
// logos beside the track, names and offsets), saving (round trips, generated
// names), and a golden file composed byte by byte from
// docs/track-file-format.md without the library's records or encoder.
#include <gtest/gtest.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "CFileTkk.h"
#include "GuidNomeFile.h"
#include "TrackMemoryRecords.h"
#include "platform/IAtomTagEncoderBin.h"
#include "tkkFlat.h"
#include "support/EvtLogRecorder.h"
#include "support/FakeClock.h"
#include "support/PlatformFaults.h"
#include "support/TrackFixtures.h"

namespace {

using fixtures::Bytes;
using Texts = std::vector<std::string>;

Bytes Raw(const void* p, size_t n) { return Bytes(static_cast<const unsigned char*>(p), static_cast<const unsigned char*>(p) + n); }
template <typename T>
Bytes BytesOf(const T& record) { return Raw(&record, sizeof record); }

// Composes a track file atom by atom, with any tag and payload.
struct FileBuilder {
  Bytes bytes;
  FileBuilder& Atom(const std::string& tag, const void* payload, size_t size) {
    std::unique_ptr<IAtomTagEncoderBin> enc(IAtomTagEncoderBin::CreateMe());
    EXPECT_TRUE(enc->append(bytes, tag, payload, static_cast<uint32_t>(size), 0));
    return *this;
  }
  template <typename T>
  FileBuilder& Record(const std::string& tag, const T& record) { return Atom(tag, &record, sizeof record); }
  FileBuilder& Info() { return Record("Ptkk", _STagInfoFileTKK()); }
  // A variant's fixed part named `device`, nation codes filled.
  FileBuilder& Fw(const char* device = "") {
    _STagInfoVarianteTKK_fw fw;
    memcpy(fw.NationCode, "ITA\0MB\0\0", 8), strcpy(fw.NomeXDevice, device);
    return Record("Vnfo", fw);
  }
  FileBuilder& Sw(const char* name) {
    _STagInfoVarianteTKK_sw sw;
    return Atom("V_sw", strcpy(sw.NomePista, name), sizeof sw);
  }
  FileBuilder& Idx(uint16_t punti = 0xFFFF, uint16_t logo = 0xFFFF, uint16_t surfaces = 0xFFFF) {
    const uint16_t idx[4] = {surfaces, punti, logo, 0xFFFF};  // surfaces, shape, logo, texts
    return Atom("Vidx", idx, sizeof idx);
  }
  FileBuilder& Points(size_t n) { return Atom("pts", std::vector<_t_s_lla_i>(n, {1, 2, 3}).data(), n * 12); }
  FileBuilder& Logo(std::string name, const Bytes& image) {
    name.append(1, '\0').append(image.begin(), image.end());
    return Atom("lgo", name.data(), name.size());
  }
};

class TrackFile : public ::testing::Test {
 protected:
  void SetUp() override { evtrec::Reset(true); }
  void TearDown() override { evtrec::Reset(false), faults::FailDecoderCreation(false), faults::FailEncoderCreation(false), faults::PlainContainer(false); }
  std::string Write(const Bytes& bytes, const std::string& name = "0k3f9zq1.tkk") { return fixtures::WriteAll(dir_.path() + name, bytes), dir_.path() + name; }
  static std::unique_ptr<CFileTkk> Open(const std::string& path, bool senzaLogo = false) {
    return std::unique_ptr<CFileTkk>(static_cast<CFileTkk*>(IFileTkk::CreateMeUponFile(path, false, senzaLogo)));
  }
  std::string Reports() const {
    std::string out;
    for (const evtrec::Event& e : evtrec::Events()) out += e.severity + " " + e.Message() + "\n";
    return out;
  }
  bool Exists(const std::string& name) const { return access((dir_.path() + name).c_str(), F_OK) == 0; }
  Bytes SaveIn(CFileTkk& track, const std::string& dir) {
    EXPECT_EQ(track.SalvaFileInPath(dir, &name_), name_);
    return fixtures::ReadAll(dir + name_ + ".tkk");
  }

  fixtures::TempDir dir_;
  const std::string name_ = "0k3f9zq1";
};

// What a read gives back of a track: the records byte for byte, and each
// variant's shape, road surfaces, logo (its bare file name) and texts.
Bytes Contents(CFileTkk& t) {
  Bytes out = BytesOf(t.GetTagInfoFile());
  const auto add = [&out](char part, const void* p, size_t n) {
    const Bytes raw = Raw(p, n);
    out.push_back(static_cast<unsigned char>(part)), out.insert(out.end(), raw.begin(), raw.end());
  };
  for (const STagsInfoVariante* v : t.GetTagsInfoVarianti()) {
    add('v', &v->InfoFw, sizeof v->InfoFw);
    add('s', &v->InfoSw, sizeof v->InfoSw);
    add('i', &v->Indici, sizeof v->Indici);
    if (v->Punti) add('p', v->Punti->Punti.data(), v->Punti->Punti.size() * sizeof(_t_s_lla_i));
    if (v->FondiStradali) add('f', v->FondiStradali->Fondi.data(), v->FondiStradali->Fondi.size() * 4);
    const std::string name = v->Logo ? v->Logo->NomeFile.substr(v->Logo->NomeFile.rfind('/') + 1) : "";
    if (v->Logo) add('l', v->Logo->Dati.data(), v->Logo->Dati.size()), add('n', name.data(), name.size());
    if (v->DatiPlus) add('t', "", 0);
  }
  return out;
}

// Each failure gives one report and leaves no variant, also in an object
// that held a good track before; the file's size is kept all the same.
TEST_F(TrackFile, FailuresAreReportedWithTheirMessage) {
  const Bytes good = FileBuilder().Info().Fw().Sw("GP").Idx().bytes;
  Bytes hugeSize = good, trailing = good;
  trailing.resize(good.size() + 5);  // too short for another atom
  hugeSize[6] = hugeSize[7] = 0xFF;  // a 4 GB size field is refused, not allocated
  const auto flip = [](Bytes b, size_t fromEnd) { b[b.size() - fromEnd] ^= 1; return b; };
  const std::string interpret = "Can't interpret file ";
  struct Case {
    const char* what;
    Bytes bytes;
    std::string message;  // the path follows
  } const cases[] = {
      {"missing file", {}, "Can't open file "},
      {"empty file", {}, "Zero length file "},
      {"no decoder", good, "Can't alloc mem"},
      {"bad CRC", flip(good, good.size() - 20), interpret},
      // Past the read buffer: the end of a logo read straight into its
      // record, the end of an ignored atom passed over.
      {"bad CRC at the end of a logo", flip(FileBuilder().Info().Fw().Idx(0xFFFF, 0).Logo("a.png", Bytes(40000, 7)).bytes, 10), interpret},
      {"bad CRC at the end of an unknown atom", flip(FileBuilder().Info().Fw().Idx().Atom("zzz", Bytes(40000, 7).data(), 40000).bytes, 10), interpret},
      {"size field beyond the file", hugeSize, interpret},
      {"last byte missing", Bytes(good.begin(), good.end() - 1), interpret},
      {"bytes after the last atom", trailing, interpret},
      {"Ptkk of 267 bytes", FileBuilder().Atom("Ptkk", good.data(), 267).bytes, interpret},
      {"no Ptkk", FileBuilder().Fw().Idx().bytes, interpret},
      {"Vnfo without Vidx", FileBuilder().Info().Fw().Fw().Idx().bytes, interpret},
      {"Vidx before Vnfo", FileBuilder().Info().Idx().Fw().bytes, "Can't find STagInfoVarianteTKK_fw"},
  };
  std::unique_ptr<CFileTkk> again = Open(Write(good, "good.tkk"));
  for (bool plain : {false, true})
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(c.what) + (plain ? ", container without pieces" : ""));
      faults::PlainContainer(plain);
      const std::string path = dir_.path() + std::to_string(&c - cases) + (plain ? "p" : "") + ".tkk";
      if (&c != cases) fixtures::WriteAll(path, c.bytes);
      ASSERT_TRUE(again->LeggiFile(dir_.path() + "good.tkk", false));
      evtrec::Reset(true);
      faults::FailDecoderCreation(&c == cases + 2);
      std::unique_ptr<CFileTkk> track = Open(path);
      EXPECT_FALSE(again->LeggiFile(path, false));
      faults::FailDecoderCreation(false);
      EXPECT_TRUE(!track->IsGood() && again->GetTagsInfoVarianti().empty() && again->GetVariantiTrack().empty());
      EXPECT_EQ(again->GetDimTkk(), c.bytes.size());
      const std::string report = "ERROR " + c.message + (c.message.back() == ' ' ? path : "") + "\n";
      EXPECT_EQ(Reports(), report + report);
    }
}

// A FIFO named like a track, or a device, used to keep the open waiting for
// a writer for ever; as a logo it did the same.
TEST_F(TrackFile, SpecialFilesAreRefusedAtOnce) {
  const std::string fifo = dir_.path() + "0k3f9zq1.tkk";
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  alarm(20);  // a wait ends the test here
  for (const std::string& path : {fifo, std::string("/dev/null")}) {
    evtrec::Reset(true);
    EXPECT_FALSE(Open(path)->IsGood());
    std::unique_ptr<CFileTkk> track = fixtures::MakeSmallTrack();
    track->SetTrackLogo(path);
    EXPECT_EQ(std::make_pair(Reports(), track->GetTagInfo()->Indici.IdxLogo + 0), std::make_pair("ERROR Can't open file " + path + "\n", 0xFFFF));
  }
  alarm(0);
}

// Atoms of other tags or sizes are ignored: only a 256-byte "V_sw" names
// the track. Variants whose indexes name nothing are skipped.
TEST_F(TrackFile, MalformedButReadableFiles) {
  struct Case {
    const char* what;
    Bytes bytes;
    size_t variants;
    Bytes image = {};  // of the main variant's logo
  } const cases[] = {
      {"unknown tag", FileBuilder().Info().Atom("zzz", Bytes(256, 'q').data(), 256).Fw().Idx().bytes, 1},
      {"V_sw of wrong size", FileBuilder().Info().Fw().Atom("V_sw", "x", 1).Idx().bytes, 1},
      {"64 road surfaces", FileBuilder().Info().Fw().Atom("srfs", Bytes(256, 1).data(), 256).Idx().bytes, 1},
      {"index out of range", FileBuilder().Info().Points(2).Points(3).Fw().Idx(3).Fw().Idx(1).bytes, 1},
      {"surface index out of range", FileBuilder().Info().Fw().Idx(0xFFFF, 0xFFFF, 9).bytes, 0},
      {"empty pts", FileBuilder().Info().Atom("pts", nullptr, 0).Points(1).Fw().Idx(1).bytes, 0},
      {"pts of odd size", FileBuilder().Info().Atom("pts", Bytes(4, 7).data(), 4).Fw().Idx(0).bytes, 0},
      {"empty logo still counts", FileBuilder().Info().Atom("lgo", nullptr, 0).Fw().Idx(0xFFFF, 0).bytes, 1},
      {"only the file info", FileBuilder().Info().bytes, 0},
      {"large unknown atom", FileBuilder().Info().Atom("zzz", Bytes(40000, 1).data(), 40000).Fw().Idx().bytes, 1},
      {"logo name longer than the read buffer", FileBuilder().Info().Logo(std::string(20000, 'n'), Bytes(20, 1)).Fw().Idx(0xFFFF, 0).bytes, 1, Bytes(20, 1)},
  };
  for (bool plain : {false, true})
    for (const Case& c : cases) {
      SCOPED_TRACE(c.what);
      faults::PlainContainer(plain);
      std::unique_ptr<CFileTkk> track = Open(Write(c.bytes));
      ASSERT_TRUE(track->IsGood() && track->GetTagsInfoVarianti().size() == c.variants);
      const SLogo* logo = track->GetTrackLogoBuffer();
      EXPECT_EQ(std::make_pair(track->GetNomePista(), logo ? logo->Dati : Bytes{}), std::make_pair(std::string(), c.image));
    }
}

TEST_F(TrackFile, CurrentRecordsCarryOverBetweenVariants) {
  // One V_sw before the first Vidx and none before the second: both
  // variants carry its name.
  std::unique_ptr<CFileTkk> track = Open(Write(FileBuilder().Info().Fw("A").Sw("Ring").Idx().Fw("B").Idx().bytes));
  ASSERT_EQ(track->GetTagsInfoVarianti().size(), 2u);
  for (const STagsInfoVariante* v : track->GetTagsInfoVarianti()) EXPECT_EQ(v->Owner == track.get() ? v->InfoSw.NomePista : "", std::string("Ring"));
  EXPECT_STREQ(track->GetTagInfoVariante(1)->InfoFw.NomeXDevice, "B");
  // Two Vidx after the same current Vnfo share its fixed part.
  track = Open(Write(FileBuilder().Info().Fw("A").Fw("B").Idx().Idx().bytes));
  ASSERT_EQ(track->GetTagsInfoVarianti().size(), 2u);
  EXPECT_EQ(std::string(track->GetTagInfoVariante(0)->InfoFw.NomeXDevice) + track->GetTagInfoVariante(1)->InfoFw.NomeXDevice, "BB");
}

TEST_F(TrackFile, NameOnDiskAndFlagsFromTheName) {
  const Bytes bytes = FileBuilder().Info().Fw().Idx().bytes;
  const std::pair<const char*, const char*> cases[] = {
      {"ABCDEFGH.tkk", "ABCDEFGH"}, {"ABC.tkk", ""}, {"ABCDEFGHI.tkk", ""}, {"0k3f9zq1.tkk", "0k3f9zq1"}};
  for (const auto& c : cases) {
    char name[8];
    Open(Write(bytes, c.first))->GetNomeFile(name);
    EXPECT_EQ(std::string(name, strnlen(name, 8)), c.second) << c.first;
  }
  // The flags of a valid name tell a maker's track from a development one.
  const tm when = {};
  for (int flags = 0; flags < 4; ++flags) {
    unsigned char value[8];
    char name[9];
    tkkGenerateGuidNomeFile(value, flags & 1, flags >> 1, &when, 0);
    tkkGetNomeFileFromGuid(name, value);
    std::unique_ptr<CFileTkk> track = Open(Write(bytes, std::string(name) + ".tkk"));
    EXPECT_EQ(track->IsVekTrack(), (flags & 1) == 1) << name;
    EXPECT_EQ(track->IsDevTrack(), flags >> 1 == 1) << name;
    EXPECT_EQ(track->IsGood(), flags != 3) << name;
  }
}

TEST_F(TrackFile, LogosAreLoadedAndWrittenBesideTheTrack) {
  const Bytes image = {1, 2, 3, 4, 5, 6, 7};
  const std::string path = Write(FileBuilder().Info().Logo("badge.png", image).Fw().Idx(0xFFFF, 0).bytes), badge = dir_.path() + "badge.png";
  std::unique_ptr<CFileTkk> track = Open(path);  // the image in memory: the round trip shows it
  EXPECT_EQ(fixtures::ReadAll(badge), image);
  // Read again: the existing image stays, or with nuovoNomeLogo a numbered
  // copy is made; a dangling link in the image's place is kept.
  EXPECT_TRUE(track->LeggiFile(path, false) && track->LeggiFile(path, true) && track->LeggiFile(path, true));
  EXPECT_EQ(*track->GetTrackLogo(), badge);
  ASSERT_EQ(0, unlink(badge.c_str()) + symlink("nowhere", badge.c_str()));
  EXPECT_TRUE(track->LeggiFile(path, true));
  EXPECT_EQ(dir_.Entries(), (Texts{"0k3f9zq1.tkk", "badge.png", "badge1.png", "badge2.png", "badge3.png"}));
  for (const char* n : {"badge1.png", "badge2.png", "badge3.png"}) EXPECT_EQ(fixtures::ReadAll(dir_.path() + n), image) << n;
}

// Each image of a name looks for its number from where the previous one
// stopped: a file with many logos of one name used to probe 1, 2, ... again
// for every logo, quadratic in their number.
TEST_F(TrackFile, NumberedLogoNamesAreProbedOnce) {
  constexpr unsigned kLogos = 200;
  FileBuilder file;
  file.Info();
  for (unsigned i = 0; i < kLogos; ++i) file.Logo("badge.png", Bytes(8, static_cast<unsigned char>(i)));
  const std::string path = Write(file.Fw().Idx(0xFFFF, 0).bytes);
  std::unique_ptr<CFileTkk> track = Open(path);
  faults::ResetAccessCount();
  ASSERT_TRUE(track->LeggiFile(path, true));
  EXPECT_LT(faults::AccessCount(), 3u * kLogos);
  // The same names as probing from 1: badge.png held logo 0 from the first
  // read, this read numbered all 200 from badge1.png on.
  EXPECT_EQ(fixtures::ReadAll(dir_.path() + "badge200.png"), Bytes(8, kLogos - 1));
  EXPECT_FALSE(Exists("badge201.png"));
}

TEST_F(TrackFile, SomeImagesStayInMemoryOnly) {
  const std::pair<std::string, Bytes> cases[] = {{"tiny.png", {1, 2, 3, 4, 5}}, {"../escaped.png", Bytes(20, 7)}};  // too short; outside

  for (const auto& c : cases) {
    std::unique_ptr<CFileTkk> track = Open(Write(FileBuilder().Info().Logo(c.first, c.second).Fw().Idx(0xFFFF, 0).bytes));
    EXPECT_TRUE(track->GetTrackLogoBuffer()->Dati == c.second && !Exists(c.first)) << c.first;
  }
  // Without logos none is read and the logo index is not checked.
  std::unique_ptr<CFileTkk> track = Open(Write(FileBuilder().Info().Logo("badge.png", Bytes(20, 9)).Fw().Idx(0xFFFF, 7).bytes), true);
  EXPECT_TRUE(track->IsGood() && track->GetTagsInfoVarianti().size() == 1 && track->GetTrackLogoBuffer() == nullptr && !Exists("badge.png"));
}

TEST_F(TrackFile, FileOffsetsKeptAsSummariesRecordThem) {
  std::unique_ptr<CFileTkk> track = Open(Write(FileBuilder().Info().Fw().Idx(0).Fw().Idx().Fw().Idx(1).Points(10).Points(3).bytes));
  ASSERT_EQ(track->GetTagsInfoVarianti().size(), 3u);
  // Variants -1, 0, 1, 3 and 4; variant 1 (the second Vnfo) has no shape.
  const uint32_t first = 8 + 4 + 268, firstPts = first + 3 * (3 * 8 + 3 * 4 + 740), second = firstPts + 8 + 120 + 4;
  std::vector<uint32_t> fw, pts;
  for (int i : {-1, 0, 1, 3, 4}) fw.push_back(track->GetOffsetDatiFw(static_cast<short>(i))), pts.push_back(track->GetOffsetPti(static_cast<short>(i)));
  EXPECT_EQ(fw, (std::vector<uint32_t>{first, first, first + 740 + 3 * 4 + 3 * 8, 8 + 4 + 1008 + 12 + 3 * 24u, first}));
  EXPECT_EQ(pts, (std::vector<uint32_t>{0, firstPts, second, 0, 0}));
  EXPECT_EQ(track->GetOffsetPti(2), second);
  EXPECT_EQ(Open(Write(FileBuilder().Info().Fw().Idx().bytes))->GetOffsetPti(0), 0u);
}

long ResidentKb() {
  long pages = 0, resident = -1;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}
long OpenFiles() { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator()); }

// With the host's allocator as it comes, a process that reads and saves a
// 1 MB track over and over keeps the same resident memory, and no file open.
TEST_F(TrackFile, ReadingAndSavingInALoopKeepsResidentMemoryFlat) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "AddressSanitizer keeps freed memory in quarantine";
#endif
  std::unique_ptr<CFileTkk> track = fixtures::MakeSmallTrack();
  track->AddTagDatiPuntiTracciato(std::vector<_t_s_lla_i>(7999, _t_s_lla_i{1, 2, 3}));
  track->AddTagDatiLogo(Bytes(900 * 1024, 9), "logo.png");
  const std::string path = dir_.path() + name_ + ".tkk";
  std::unique_ptr<CFileTkk> same = fixtures::MakeSmallTrack();
  const auto round = [&] {
    ASSERT_EQ(track->SalvaFileInPath(dir_.path(), &name_), name_);
    ASSERT_TRUE(Open(path)->IsGood());
    ASSERT_TRUE(same->LeggiFile(path, false));
  };
  for (int i = 0; i < 20; ++i) round();
  const long before = ResidentKb(), files = OpenFiles();
  for (int i = 0; i < 100; ++i) round();
  EXPECT_LT(ResidentKb() - before, 1024) << "KB more resident after 100 rounds";
  EXPECT_EQ(OpenFiles(), files);
}

// Saved through either container, read back through either, or by an object
// that read other files before (larger ones, a failed one): the same records
// and the same bytes.
TEST_F(TrackFile, RandomTracksComeBackByteForByte) {
  fixtures::TempDir other;
  const std::string path = dir_.path() + name_ + ".tkk", bad = dir_.path() + "bad.tkk";
  fixtures::WriteAll(bad, Bytes(100, 0x55));
  std::unique_ptr<CFileTkk> again = fixtures::MakeSmallTrack();
  STagDatiPlus plus;  // additional texts are never written: a read drops them
  again->AddTagDatiPlus((plus.Comment = "built", plus));
  for (uint32_t seed = 1; seed <= 12; ++seed) {
    SCOPED_TRACE(seed);
    std::unique_ptr<CFileTkk> built = fixtures::MakeRandomTrack(seed);
    faults::PlainContainer(true);
    const Bytes plain = SaveIn(*built, other.path());
    faults::PlainContainer(false);
    const Bytes saved = SaveIn(*built, dir_.path());
    EXPECT_EQ(std::make_pair(saved, std::string(built->GetTagInfoFile().GuidNomeFile, 8)), std::make_pair(plain, name_));
    for (int way = 0; way < 3; ++way) {  // a new object through either container, then the used one
      faults::PlainContainer(way == 1);
      std::unique_ptr<CFileTkk> fresh = way < 2 ? Open(path) : nullptr;
      ASSERT_TRUE(fresh ? fresh->IsGood() : again->LeggiFile(path, false));
      EXPECT_EQ(Contents(fresh ? *fresh : *again), Contents(*built));
      EXPECT_EQ(SaveIn(fresh ? *fresh : *again, other.path()), saved);
    }
    EXPECT_FALSE(again->GetTrackComment() != "" || again->LeggiFile(bad, false));
  }
}

// The name generator repeats a name when the clock and rand() repeat: the
// second save must find the name taken and wait for a free one, on file
// systems with hard links and on memory cards without them. The name tells
// a maker's track from a user's.
TEST_F(TrackFile, GeneratedNamesNeverReplaceATrack) {
  const bool cases[][3] = {{false, false, false}, {true, false, true}, {true, true, false}};  // no links, no exclusive rename, maker's
  for (const auto& c : cases) {
    fixtures::TempDir dir;
    faults::NoHardLinks(c[0], c[1]);
    fakeclock::Freeze(fakeclock::Utc(2026, 11, 22, 10, 0, 0));
    for (int i = 0; i < 60; ++i) fakeclock::QueueRand({0x105});
    auto first = fixtures::MakeRandomTrack(1, c[2]);
    const std::string a = first->SalvaFileInPath(dir.path(), nullptr);
    const std::string b = fixtures::MakeRandomTrack(2, c[2])->SalvaFileInPath(dir.path(), nullptr);
    const long long waits = fakeclock::UsleepCalls(), waited = fakeclock::UsleepMicros();
    fakeclock::Reset(), faults::NoHardLinks(false);
    ASSERT_EQ(a.size() + b.size(), 16u);
    EXPECT_EQ(std::make_pair(waits > 0, waited), std::make_pair(true, 25000 * waits));  // the second save waited as the generator does
    EXPECT_EQ(dir.Entries(), (Texts{std::min(a, b) + ".tkk", std::max(a, b) + ".tkk"}));
    EXPECT_EQ(std::string(first->GetTagInfoFile().GuidNomeFile, 8), a);
    tm when;
    bool isVek = !c[2], isDev = true;
    ASSERT_TRUE(IGuidNomeFile::GetDaNomeFile(a, when, isVek, isDev));
    std::unique_ptr<CFileTkk> read = Open(dir.path() + a + ".tkk");
    EXPECT_EQ(std::make_tuple(isVek, isDev, read->IsVekTrack(), Contents(*read)), std::make_tuple(c[2], false, c[2], Contents(*first)));
  }
  // A dangling link under a free-looking name is left alone: the track is
  // composed afresh for the next name.
  fixtures::TempDir dir;
  std::unique_ptr<CFileTkk> track = fixtures::MakeRandomTrack(3);
  track->AddTagDatiLogo(Bytes(20, 1), "a.png");
  std::string names[2];
  for (int i = 0; i < 2; ++i) {
    fakeclock::Freeze(fakeclock::Utc(2026, 11, 22, 10, 0, 0)), fakeclock::QueueRand({0x105});
    names[i] = track->SalvaFileInPath(dir.path(), nullptr);
    fakeclock::Reset();
    const std::string first = dir.path() + names[0] + ".tkk";
    ASSERT_EQ(0, i > 0 ? 0 : unlink(first.c_str()) + symlink("nowhere", first.c_str()));
  }
  ASSERT_NE(names[0], names[1]);
  EXPECT_TRUE(std::filesystem::is_symlink(dir.path() + names[0] + ".tkk"));
  EXPECT_EQ(Contents(*Open(dir.path() + names[1] + ".tkk")), Contents(*track));
}

TEST_F(TrackFile, LogosOfNineBytesOrLessAreNotSaved) {
  auto track = fixtures::MakeSmallTrack();
  _STagIndexesVarianteTKK idx;
  idx.IdxLogo = track->AddTagDatiLogo(Bytes(9, 1), "/x/small.png");
  track->AddTagDatiLogo(Bytes(10, 2), "/x/big.png"), track->AddTagDatiLogo(Bytes(50, 3), "");  // no name: not saved either
  ASSERT_TRUE(track->AddTagInfoVariante("", "", _STagInfoVarianteTKK_fw(), idx));
  ASSERT_EQ(track->SalvaFileInPath(dir_.path(), &name_), name_);
  // Only "big.png" became an atom: the variant whose IdxLogo is 0 now
  // points at it, since the writer does not renumber.
  std::unique_ptr<CFileTkk> read = Open(dir_.path() + name_ + ".tkk");
  ASSERT_EQ(read->GetTagsInfoVarianti().size(), 2u);
  EXPECT_EQ(read->GetTagInfoVariante(1)->Logo->NomeFile, dir_.path() + "big.png");
  // Logos apart: each beside the track under its name, the extension kept;
  // with no "lgo" atom the variant that names logo 0 is skipped on reading.
  ASSERT_EQ(track->SalvaFileInPathLogoEsterno(dir_.path(), "logo0002"), "logo0002");
  EXPECT_EQ(dir_.Entries(), (Texts{"0k3f9zq1.tkk", "big.png", "logo0002.png", "logo0002.tkk"}));
  EXPECT_TRUE(fixtures::ReadAll(dir_.path() + "logo0002.png") == Bytes(10, 2) && Open(dir_.path() + "logo0002.tkk")->GetTagsInfoVarianti().size() == 1);
}

TEST_F(TrackFile, NoEncoderNoFile) {
  auto track = fixtures::MakeSmallTrack();
  faults::FailEncoderCreation(true);
  EXPECT_EQ(track->SalvaFileInPath(dir_.path(), &name_) + track->SalvaFileInPath(dir_.path(), nullptr) + track->SalvaFileInPathLogoEsterno(dir_.path(), name_), "");
  EXPECT_TRUE(dir_.Entries().empty() && evtrec::Events().empty());
}

// --- The golden file --------------------------------------------------------

// CRC-32 as the document gives it: reflected 0xEDB88320, bitwise.
uint32_t Crc32(const unsigned char* p, size_t n) {
  uint32_t crc = 0xFFFFFFFFu;
  for (size_t i = 0; i < n; ++i) {
    crc ^= p[i];
    for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

// A record of the document: zero-filled, little-endian integers and texts
// at their offsets.
struct Rec {
  Bytes b;
  Rec& Put(size_t at, uint64_t v, int bytes = 4) {
    for (int i = 0; i < bytes; ++i) b[at + static_cast<size_t>(i)] = static_cast<unsigned char>(v >> (8 * i));
    return *this;
  }
  Rec& Text(size_t at, const std::string& s) {
    std::copy(s.begin(), s.end(), b.begin() + static_cast<long>(at));
    return *this;
  }
};

// Header (tag zero-padded, size), payload, CRC of header and payload.
void Atom(Bytes& file, const std::string& tag, const Bytes& payload) {
  Rec a{Bytes(8 + payload.size() + 4)};
  a.Text(0, tag).Put(4, payload.size()).Text(8, std::string(payload.begin(), payload.end()));
  a.Put(a.b.size() - 4, Crc32(a.b.data(), a.b.size() - 4));
  file.insert(file.end(), a.b.begin(), a.b.end());
}

TEST_F(TrackFile, SmallTrackFileComposedFromTheDocument) {
  EXPECT_EQ(Crc32(reinterpret_cast<const unsigned char*>("123456789"), 9), 0xCBF43926u);
  Bytes srfs;  // the document's example atom
  Atom(srfs, "srfs", Rec{Bytes(4)}.Put(0, 1).b);
  EXPECT_EQ(srfs, (Bytes{0x73, 0x72, 0x66, 0x73, 4, 0, 0, 0, 1, 0, 0, 0, 0xe1, 0x9c, 0x6e, 0xa7}));

  // fixtures::MakeSmallTrack: a user's track, so its variant uses line type
  // 4; time zone 50 and circuit type 1 as new variants have; all else zero.
  const uint32_t shape[] = {456200000, 92800000, 162000, 456210000, 92810000, 162500, 456220000, 92790000, 163000};
  Rec pts{Bytes(36)};
  for (size_t k = 0; k < 9; ++k) pts.Put(4 * k, shape[k]);
  const Bytes ptkk = Rec{Bytes(268)}.Put(0, 0).Text(4, "Monza").Text(260, name_).b, vsw = Rec{Bytes(256)}.Text(0, "GP").b;
  const Bytes vnfo = Rec{Bytes(476)}.Text(0, "Monza GP").Text(28, "ITA").Text(32, "MB").Put(60, 50).Put(72, 1).Put(78, 4, 1).Put(468, 0x0000123456780001ull, 8).b;
  const Bytes vidx = Rec{Bytes(8)}.Put(0, 0, 2).Put(2, 0, 2).Put(4, 0xFFFF, 2).Put(6, 0xFFFF, 2).b;  // surfaces, shape, logo, texts
  Bytes file;
  for (const auto& [tag, payload] : std::vector<std::pair<std::string, Bytes>>{{"Ptkk", ptkk}, {"Vnfo", vnfo}, {"V_sw", vsw}, {"Vidx", vidx}, {"pts", pts.b}})
    Atom(file, tag, payload);
  file.insert(file.end(), srfs.begin(), srfs.end());
  ASSERT_EQ(file.size(), 1120u);

  // Saving the small track writes exactly these bytes...
  std::unique_ptr<CFileTkk> track = fixtures::MakeSmallTrack();
  EXPECT_EQ(SaveIn(*track, dir_.path()), file);
  EXPECT_EQ(track->GetOffsetDatiFw(0), 8 + 268 + 4u);
  EXPECT_EQ(track->GetOffsetPti(0), 1120 - 8 - 36 - 4 - 16u);
  // ...and reading them gives every record back as laid out above.
  track = Open(Write(file));
  ASSERT_TRUE(track->IsGood() && track->GetTagsInfoVarianti().size() == 1);
  const STagsInfoVariante& v = *track->GetTagInfo();
  EXPECT_EQ(BytesOf(track->GetTagInfoFile()), ptkk);
  EXPECT_EQ(BytesOf(v.InfoFw), vnfo);
  EXPECT_EQ(BytesOf(v.InfoSw), vsw);
  EXPECT_EQ(BytesOf(v.Indici), vidx);
  EXPECT_EQ(Raw(v.Punti->Punti.data(), v.Punti->Punti.size() * sizeof(_t_s_lla_i)), pts.b);
  EXPECT_EQ(v.FondiStradali->Fondi, std::vector<_eTipoRoadSurfaceTkk>{FONDO_PAVED});
  // The fields named by the document hold its values.
  EXPECT_EQ(track->GetNamexSito() + "/" + track->GetNomeXDevice() + "/" + track->GetNationCode() + "/" + track->GetSubNationCode() + "/" + track->GetNomePista(), "Monza/Monza GP/ITA/MB/GP");
  EXPECT_EQ(std::make_tuple(v.InfoFw.TimeZone, v.InfoFw.TipoTracciato, v.InfoFw.InfoBeacons.TipoBeaconInUso + 0, uint64_t{v.InfoFw.Guid.Valore}), std::make_tuple(50, 1, 4, 0x0000123456780001ull));
}

}  // namespace
