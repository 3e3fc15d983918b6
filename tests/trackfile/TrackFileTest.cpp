// Track files: reading (failures and their reports, malformed files, logos
// beside the track, names and offsets), saving (round trips, generated
// names), a golden file composed byte by byte from docs/track-file-format.md
// without the library's records or encoder, and building, checking and
// converting a track in memory.
#include <gtest/gtest.h>
#include <locale.h>
#include <math.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "CDistanceCalculator.h"
#include "CFileTkk.h"
#include "Coordinate.h"
#include "GuidNomeFile.h"
#include "TrackMemoryRecords.h"
#include "platform/IAtomTagEncoderBin.h"
#include "support/EvtLogRecorder.h"
#include "support/FakeClock.h"
#include "support/PlatformFaults.h"
#include "support/TrackFixtures.h"

namespace {

using fixtures::Bytes;
using Fw = _STagInfoVarianteTKK_fw;
using Idx = _STagIndexesVarianteTKK;
using Texts = std::vector<std::string>;
using evtrec::Reports;

// The bytes of `n` records from `first` on.
template <typename T>
Bytes BytesOf(const T& first, size_t n = 1) {
  const auto* p = reinterpret_cast<const unsigned char*>(&first);
  return Bytes(p, p + n * sizeof first);
}
_SDatoCoordinateBeacon Line(int32_t lat, int32_t lon, uint32_t width = 0, int32_t alt = 0) {
  _SDatoCoordinateBeacon l;
  l.LatI = lat, l.LonI = lon, l.AltI = alt, l.LarghezzaPista = width;
  return l;
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

// Composes a track file atom by atom, with any tag and payload.
struct FileBuilder {
  Bytes bytes;
  FileBuilder& Atom(const std::string& tag, const void* payload, size_t size) {
    std::unique_ptr<IAtomTagEncoderBin> enc(IAtomTagEncoderBin::CreateMe());
    EXPECT_TRUE(enc->append(bytes, tag, payload, static_cast<uint32_t>(size), 0));
    return *this;
  }
  FileBuilder& Info() { return Atom("Ptkk", Bytes(268).data(), 268); }
  // A variant's fixed part named `device`, nation codes filled.
  FileBuilder& Fw(const char* device = "") {
    _STagInfoVarianteTKK_fw fw;
    memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
    strcpy(fw.NomeXDevice, device);
    return Atom("Vnfo", &fw, sizeof fw);
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
  void TearDown() override {
    evtrec::Reset(false);
    faults::PlainContainer(false);
  }
  std::string Write(const Bytes& bytes, const std::string& name = "0k3f9zq1.tkk") {
    fixtures::WriteAll(dir_.path() + name, bytes);
    return dir_.path() + name;
  }
  static std::unique_ptr<CFileTkk> Open(const std::string& path, bool senzaLogo = false) {
    return std::unique_ptr<CFileTkk>(
        static_cast<CFileTkk*>(IFileTkk::CreateMeUponFile(path, false, senzaLogo)));
  }
  Bytes SaveIn(CFileTkk& track, const std::string& dir) {
    EXPECT_EQ(track.SalvaFileInPath(dir, &name_), name_);
    return fixtures::ReadAll(dir + name_ + ".tkk");
  }

  fixtures::TempDir dir_;
  const std::string name_ = "0k3f9zq1";
};

// Each failure gives one report and leaves no variant, also in an object
// that held a good track before; the file's size is kept all the same.
TEST_F(TrackFile, FailuresAreReportedWithTheirMessage) {
  const Bytes good = FileBuilder().Info().Fw().Idx().bytes;
  const auto flip = [](Bytes b, size_t fromEnd, unsigned char mask = 1) {
    b[b.size() - fromEnd] ^= mask;
    return b;
  };
  Bytes trailing = good;  // one byte is too short for another atom
  trailing.resize(good.size() + 1);
  const std::string interpret = "Can't interpret file ";
  const std::tuple<const char*, Bytes, std::string> cases[] = {
      // the path follows a message ending in ' '
      {"missing file", {}, "Can't open file "},
      {"empty file", {}, "Zero length file "},
      {"no decoder", good, "Can't alloc mem"},
      {"bad CRC", flip(good, good.size() - 20), interpret},
      // Past the read buffer: the end of a logo read straight into its
      // record, the end of an ignored atom passed over.
      {"bad CRC at the end of a logo",
       flip(FileBuilder().Info().Fw().Idx(0xFFFF, 0).Logo("a.png", Bytes(40000, 7)).bytes, 10), interpret},
      {"bad CRC at the end of an unknown atom",
       flip(FileBuilder().Info().Fw().Idx().Atom("zzz", Bytes(40000, 7).data(), 40000).bytes, 10), interpret},
      // a 4 GB size field in a small file is refused, not allocated
      {"size field beyond the file", flip(good, good.size() - 7, 0xFF), interpret},
      {"last byte missing", Bytes(good.begin(), good.end() - 1), interpret},
      {"bytes after the last atom", trailing, interpret},
      {"Ptkk of 267 bytes, so none", FileBuilder().Atom("Ptkk", good.data(), 267).bytes, interpret},
      {"Vnfo without Vidx", FileBuilder().Info().Fw().Fw().Idx().bytes, interpret},
      {"Vidx before Vnfo", FileBuilder().Info().Idx().Fw().bytes, "Can't find STagInfoVarianteTKK_fw"},
  };
  std::unique_ptr<CFileTkk> again = Open(Write(good, "good.tkk"));
  for (bool plain : {false, true})
    for (const auto& [what, bytes, message] : cases) {
      SCOPED_TRACE(std::string(what) + (plain ? ", container without pieces" : ""));
      faults::PlainContainer(plain);
      const bool first = &bytes == &std::get<1>(cases[0]), noDecoder = &bytes == &std::get<1>(cases[2]);
      const std::string path = dir_.path() + what + (plain ? "p" : "") + ".tkk";
      if (!first) fixtures::WriteAll(path, bytes);
      ASSERT_TRUE(again->LeggiFile(dir_.path() + "good.tkk", false));
      evtrec::Reset(true);
      faults::FailDecoderCreation(noDecoder);
      std::unique_ptr<CFileTkk> track = Open(path);
      EXPECT_FALSE(again->LeggiFile(path, false));
      faults::FailDecoderCreation(false);
      // A name that is no file name leaves the flags of a new object: neither a maker's nor development.
      EXPECT_TRUE(!track->IsGood() && !track->IsVekTrack() && !track->IsDevTrack() &&
                  again->GetTagsInfoVarianti().empty() && again->GetVariantiTrack().empty());
      EXPECT_EQ(again->GetDimTkk(), bytes.size());
      const std::string report = "ERROR " + message + (message.back() == ' ' ? path : "");
      EXPECT_EQ(Reports(), (Texts{report, report}));
    }
}

// A FIFO named like a track, or a device, used to keep the open waiting for
// a writer for ever; as a logo it did the same. A size past 32 bits (here a
// sparse file) is refused before anything is allocated.
TEST_F(TrackFile, SpecialFilesAreRefusedAtOnce) {
  const std::string fifo = dir_.path() + "0k3f9zq1.tkk";
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  for (const std::string& path : {fifo, std::string("/dev/null")}) {
    evtrec::Reset(true);
    EXPECT_FALSE(Open(path)->IsGood());
    std::unique_ptr<CFileTkk> track = fixtures::MakeSmallTrack();
    track->SetTrackLogo(Write(Bytes(1, 1), "ok.png"));  // one byte is an image; then replaced by nothing
    EXPECT_EQ(track->GetTrackLogoBuffer()->NomeFile, "ok.png");
    track->SetTrackLogo(path);
    EXPECT_EQ(std::make_tuple(Reports(), track->GetTagInfo()->Indici.IdxLogo + 0,
                              track->GetTrackLogoBuffer()->NomeFile),
              std::make_tuple(Texts{"ERROR Can't open file " + path}, 0xFFFF, std::string()));
  }
  const std::string huge = Write({}, "huge.tkk");
  ASSERT_EQ(0, truncate(huge.c_str(), off_t{1} << 32));
  evtrec::Reset(true);
  EXPECT_FALSE(Open(huge)->IsGood());
  EXPECT_EQ(Reports(), Texts{"ERROR Can't alloc mem"});
}

// Atoms of other tags or sizes are ignored: only a 256-byte "V_sw" names
// the track. Variants whose indexes name nothing are skipped. The current
// "Vnfo" and "V_sw" carry over to the next "Vidx".
TEST_F(TrackFile, MalformedButReadableFiles) {
  const Bytes big(40000, 1), ring = Rec{Bytes(256)}.Text(0, "Ring").b;
  FileBuilder sizes = FileBuilder().Info();  // other tags of the fixed records' sizes
  sizes.Atom("Vnf", big.data(), sizeof(Fw)).Atom("V_s", big.data(), 256).Atom("Vid", big.data(), 8);
  const std::tuple<const char*, Bytes, Texts> cases[] = {
      // device/track name of each variant
      {"large unknown atom", FileBuilder().Info().Atom("zzz", big.data(), 40000).Fw().Idx().bytes, {"/"}},
      {"V_sw of wrong size", FileBuilder().Info().Fw().Atom("V_sw", "x", 1).Idx().bytes, {"/"}},
      {"other tags of the fixed records' sizes", sizes.Fw().Idx().bytes, {"/"}},
      {"index out of range",
       FileBuilder().Info().Points(2).Points(3).Fw().Idx(3).Fw("B").Idx(1).bytes,
       {"B/"}},
      {"surface index out of range", FileBuilder().Info().Fw().Idx(0xFFFF, 0xFFFF, 9).bytes, {}},
      {"empty pts", FileBuilder().Info().Atom("pts", nullptr, 0).Points(1).Fw().Idx(1).bytes, {}},
      {"pts of odd size", FileBuilder().Info().Atom("pts", big.data(), 4).Fw().Idx(0).bytes, {}},
      {"empty logo still counts",
       FileBuilder().Info().Atom("lgo", nullptr, 0).Fw().Idx(0xFFFF, 0).bytes,
       {"/"}},
      {"only the file info", FileBuilder().Info().bytes, {}},
      {"an empty atom last", FileBuilder().Info().Fw().Idx().Atom("zzz", nullptr, 0).bytes, {"/"}},
      {"logo name longer than the read buffer, an image of one byte",
       FileBuilder().Info().Logo(std::string(20000, 'n'), Bytes(1, 'Z')).Fw().Idx(0xFFFF, 0).bytes,
       {"/", "Z"}},
      {"one V_sw for two variants",
       FileBuilder().Info().Fw("A").Atom("V_sw", ring.data(), 256).Idx().Fw("B").Idx().bytes,
       {"A/Ring", "B/Ring"}},
      {"two Vidx after one Vnfo", FileBuilder().Info().Fw("A").Fw("B").Idx().Idx().bytes, {"B/", "B/"}},
  };
  for (bool plain : {false, true})
    for (const auto& [what, bytes, variants] : cases) {
      faults::PlainContainer(plain);
      std::unique_ptr<CFileTkk> track = Open(Write(bytes));
      Texts names;  // and a logo image read whole
      for (const STagsInfoVariante* v : track->GetTagsInfoVarianti())
        names.push_back(std::string(v->InfoFw.NomeXDevice) + "/" + v->InfoSw.NomePista);
      const SLogo* logo = track->GetTrackLogoBuffer();
      if (logo && !logo->Dati.empty()) names.emplace_back(logo->Dati.begin(), logo->Dati.end());
      EXPECT_TRUE(track->IsGood()) << what;
      EXPECT_EQ(names, variants) << what;
    }
}

// Images are written beside the track, unless too short (five bytes) or
// named outside its directory; a read without logos reads none and does not
// check the logo index.
TEST_F(TrackFile, LogosBesideTheTrackInMemoryOrNumberedWithOneProbeEach) {
  const std::pair<std::string, Bytes> memoryOnly[] = {{"tiny.png", {1, 2, 3, 4, 5}},
                                                      {"../escaped.png", Bytes(20, 7)}};
  for (const auto& c : memoryOnly) {
    std::unique_ptr<CFileTkk> track =
        Open(Write(FileBuilder().Info().Logo(c.first, c.second).Fw().Idx(0xFFFF, 0).bytes));
    EXPECT_EQ(std::make_pair(track->GetTrackLogoBuffer()->Dati, dir_.Entries()),
              std::make_pair(c.second, Texts{"0k3f9zq1.tkk"}))
        << c.first;
  }
  std::unique_ptr<CFileTkk> track =
      Open(Write(FileBuilder().Info().Logo("badge.png", Bytes(20, 9)).Fw().Idx(0xFFFF, 7).bytes), true);
  EXPECT_TRUE(track->IsGood() && track->GetTagsInfoVarianti().size() == 1 &&
              track->GetTrackLogoBuffer() == nullptr && dir_.Entries().size() == 1);

  // An existing image stays. With nuovoNomeLogo each image of a name gets
  // the next free number, also when a dangling link holds the name: one
  // probe per logo (a file of many logos of one name used to probe 1, 2, ...
  // again for every logo, quadratic in their number).
  FileBuilder file = FileBuilder().Info();
  for (unsigned char i = 0; i < 200; ++i)
    file.Logo("badge.png", Bytes(6, i));  // six bytes: the least written
  const std::string path = Write(file.Fw().Idx(0xFFFF, 0).bytes), badge = dir_.path() + "badge.png";
  track = Open(path);
  EXPECT_EQ(std::make_pair(*track->GetTrackLogo(), fixtures::ReadAll(badge)),
            std::make_pair(badge, Bytes(6, 0)));
  ASSERT_EQ(0, unlink(badge.c_str()) + symlink("nowhere", badge.c_str()));
  faults::AccessCount(true);
  ASSERT_TRUE(track->LeggiFile(path, true));
  EXPECT_EQ(faults::AccessCount(), 200u);
  EXPECT_EQ(fixtures::ReadAll(dir_.path() + "badge200.png"), Bytes(6, 199));
  EXPECT_EQ(dir_.Entries().size(), 202u);
}

TEST_F(TrackFile, FileOffsetsKeptAsSummariesRecordThem) {
  std::unique_ptr<CFileTkk> track =
      Open(Write(FileBuilder().Info().Fw().Idx(0).Fw().Idx().Fw().Idx(1).Points(10).Points(3).bytes));
  // Variants -1 to 4 (fixed part, shape); variant 1 has no shape. Past the
  // second variant the fixed part's offset adds only headers.
  const uint32_t first = 8 + 4 + 268, pts0 = first + 3 * (3 * 8 + 3 * 4 + 740), pts1 = pts0 + 8 + 120 + 4;
  std::vector<std::pair<uint32_t, uint32_t>> offsets;
  for (short i = -1; i <= 4; ++i) offsets.emplace_back(track->GetOffsetDatiFw(i), track->GetOffsetPti(i));
  EXPECT_EQ(offsets, (std::vector<std::pair<uint32_t, uint32_t>>{
                         {first, 0}, {first, pts0}, {1056, pts1}, {1080, pts1}, {1104, 0}, {first, 0}}));
  EXPECT_EQ(Open(Write(FileBuilder().Info().Fw().Idx().bytes))->GetOffsetPti(0), 0u);
}

long ResidentKb() {
  long pages = 0, resident = -1;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

// With the host's allocator as it comes, a process that reads and saves a
// 1 MB track over and over keeps the same resident memory.
TEST_F(TrackFile, ReadingAndSavingInALoopKeepsResidentMemoryFlat) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "AddressSanitizer keeps freed memory in quarantine";
#endif
  std::unique_ptr<CFileTkk> track = fixtures::MakeSmallTrack(), same = fixtures::MakeSmallTrack();
  track->AddTagDatiPuntiTracciato(std::vector<_t_s_lla_i>(7999, _t_s_lla_i{1, 2, 3}));
  track->AddTagDatiLogo(Bytes(900 * 1024, 9), "logo.png");
  const std::string path = dir_.path() + name_ + ".tkk";
  const auto round = [&] {
    ASSERT_TRUE(track->SalvaFileInPath(dir_.path(), &name_) == name_ && Open(path)->IsGood() &&
                same->LeggiFile(path, false));
  };
  for (int i = 0; i < 20; ++i) round();
  const long before = ResidentKb();
  for (int i = 0; i < 100; ++i) round();
  EXPECT_LT(ResidentKb() - before, 1024) << "KB more resident after 100 rounds";
}

// Saved through either container, read back through either, or by an object
// that read other files before (larger ones, a failed one): the same records
// and the same bytes. Additional texts are never written: a read drops them.
TEST_F(TrackFile, RandomTracksComeBackByteForByte) {
  fixtures::TempDir other;
  const std::string path = dir_.path() + name_ + ".tkk", bad = dir_.path() + "bad.tkk";
  fixtures::WriteAll(bad, Bytes(100, 0x55));
  std::unique_ptr<CFileTkk> again = fixtures::MakeSmallTrack();
  STagDatiPlus plus;
  plus.Comment = "built";
  again->AddTagDatiPlus(plus);
  for (uint32_t seed = 1; seed <= 12; ++seed) {
    SCOPED_TRACE(seed);
    std::unique_ptr<CFileTkk> built = fixtures::MakeRandomTrack(seed);
    faults::PlainContainer(true);
    const Bytes plain = SaveIn(*built, other.path());
    faults::PlainContainer(false);
    const Bytes saved = SaveIn(*built, dir_.path());
    EXPECT_EQ(std::make_pair(saved, std::string(built->GetTagInfoFile().GuidNomeFile, 8)),
              std::make_pair(plain, name_));
    for (int way = 0; way < 3; ++way) {  // a new object through either container, then the used one
      faults::PlainContainer(way == 1);
      std::unique_ptr<CFileTkk> fresh = way < 2 ? Open(path) : nullptr;
      ASSERT_TRUE(fresh ? fresh->IsGood() : again->LeggiFile(path, false));
      EXPECT_EQ(SaveIn(fresh ? *fresh : *again, other.path()), saved);
    }
    EXPECT_FALSE(again->GetTrackComment() != "" || again->LeggiFile(bad, false));
  }
}

// Logos of nine bytes or less, or without a name, are neither embedded nor
// written beside the track.
TEST_F(TrackFile, LogosOfNineBytesOrLessAreNotSaved) {
  auto track = fixtures::MakeSmallTrack();
  Idx idx;
  idx.IdxLogo = track->AddTagDatiLogo(Bytes(9, 1), "/x/small.png");
  track->AddTagDatiLogo(Bytes(10, 2), "/x/big.png");
  track->AddTagDatiLogo(Bytes(50, 3), "");
  ASSERT_TRUE(track->AddTagInfoVariante("", "", Fw(), idx));
  SaveIn(*track, dir_.path());  // the writer does not renumber: logo 0 is now the big one
  EXPECT_EQ(Open(dir_.path() + name_ + ".tkk")->GetTagInfoVariante(1)->Logo->Dati, Bytes(10, 2));
  ASSERT_EQ(track->SalvaFileInPathLogoEsterno(dir_.path(), name_), name_);
  EXPECT_EQ(std::make_pair(dir_.Entries(), fixtures::ReadAll(dir_.path() + name_ + ".png")),
            std::make_pair(Texts{name_ + ".png", name_ + ".tkk", "big.png"}, Bytes(10, 2)));
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

// Header (tag zero-padded, size), payload, CRC of header and payload.
void Atom(Bytes& file, const std::string& tag, const Bytes& payload) {
  Rec a{Bytes(8 + payload.size() + 4)};
  a.Text(0, tag).Put(4, payload.size()).Text(8, std::string(payload.begin(), payload.end()));
  a.Put(a.b.size() - 4, Crc32(a.b.data(), a.b.size() - 4));
  file.insert(file.end(), a.b.begin(), a.b.end());
}

TEST_F(TrackFile, SmallTrackFileComposedFromTheDocument) {
  Bytes srfs;  // the document's example atom
  Atom(srfs, "srfs", Rec{Bytes(4)}.Put(0, 1).b);
  EXPECT_EQ(srfs, (Bytes{0x73, 0x72, 0x66, 0x73, 4, 0, 0, 0, 1, 0, 0, 0, 0xe1, 0x9c, 0x6e, 0xa7}));

  // fixtures::MakeSmallTrack: a user's track, so its variant uses line type
  // 4; time zone 50 and circuit type 1 as new variants have; all else zero.
  const uint32_t shape[] = {456200000, 92800000,  162000,   456210000, 92810000,
                            162500,    456220000, 92790000, 163000};
  Rec pts{Bytes(36)};
  for (size_t k = 0; k < 9; ++k) pts.Put(4 * k, shape[k]);
  const Bytes ptkk = Rec{Bytes(268)}.Text(4, "Monza").Text(260, name_).b,
              vsw = Rec{Bytes(256)}.Text(0, "GP").b;
  Rec vnfo{Bytes(476)};  // name, nation codes, time zone, circuit type, line type, GUID
  vnfo.Text(0, "Monza GP").Text(28, "ITA").Text(32, "MB").Put(60, 50).Put(72, 1).Put(78, 4, 1);
  vnfo.Put(468, 0x0000123456780001ull, 8);
  const Bytes vidx = Rec{Bytes(8)}.Put(4, 0xFFFF, 2).Put(6, 0xFFFF, 2).b;  // surfaces 0, shape 0, logo, texts
  Bytes file;
  for (const auto& [tag, payload] : std::vector<std::pair<std::string, Bytes>>{
           {"Ptkk", ptkk}, {"Vnfo", vnfo.b}, {"V_sw", vsw}, {"Vidx", vidx}, {"pts", pts.b}})
    Atom(file, tag, payload);
  file.insert(file.end(), srfs.begin(), srfs.end());

  // Saving the small track writes exactly these bytes...
  std::unique_ptr<CFileTkk> track = fixtures::MakeSmallTrack();
  EXPECT_EQ(SaveIn(*track, dir_.path()), file);
  // ...and reading them gives every record back as laid out above.
  track = Open(Write(file));
  ASSERT_TRUE(track->IsGood() && track->GetTagsInfoVarianti().size() == 1 && track->HasShape());
  const STagsInfoVariante& v = *track->GetTagInfo();
  EXPECT_EQ(std::make_tuple(BytesOf(track->GetTagInfoFile()), BytesOf(v.InfoFw), BytesOf(v.InfoSw),
                            BytesOf(v.Indici), BytesOf(v.Punti->Punti[0], 3), track->GetOffsetPti(0)),
            std::make_tuple(ptkk, vnfo.b, vsw, vidx, pts.b, 1056u));  // where the "pts" atom starts
  EXPECT_EQ(v.Punti->Punti.size() * 100 + v.FondiStradali->Fondi.size() * 10 + v.FondiStradali->Fondi[0],
            311u);
  track->RemoveShape();
  EXPECT_FALSE(track->HasShape());
}

// --- Building and editing in memory -----------------------------------------

using TrackEdit = TrackFile;

// A set's count stops at its first unused line; there is no line 6, no set
// 7. A full set counts six, whatever the next set holds.
TEST_F(TrackEdit, BeaconSetsCountLinesUpToTheFirstUnused) {
  _SInfoBeacons b;
  EXPECT_FALSE(Line(0, 0, 12).isUsed());  // a width alone does not make a line
  EXPECT_TRUE(Line(1, 0).isUsed() && Line(0, 1).isUsed() && Line(0, 0, 0, 1).isUsed());
  for (unsigned i : {0u, 1u, 3u, 6u}) b.SetLineeSplitLLH(i, Line(1, 1), BEACON_OPTIC);
  b.SetLineeSplitLLH(2, Line(1, 1), static_cast<_eTipoBeaconDaUsare>(7));
  EXPECT_EQ(b.GetNumeroSplit(BEACON_OPTIC) * 10 + b.GetNumeroSplit(BEACON_USER), 20u);
  for (unsigned i = 0; i < 6; ++i) b.SetLineeSplitLLH(i, Line(1, 1), BEACON_OPTIC);
  b.SetLineeSplitLLH(0, Line(2, 2), BEACON_USER);
  EXPECT_EQ(b.GetNumeroSplit(BEACON_OPTIC), 6u);
  b.ClearLineaSplitLLH(1, BEACON_OPTIC);
  EXPECT_EQ(b.GetNumeroSplit(BEACON_OPTIC), 1u);
  b.SetLineeSplitLLH(0, Line(1, 1), BEACON_SCRUTINEERING);
  b.SetLarghezzaPista(12, BEACON_SCRUTINEERING);  // the width is held by a set's first line
  EXPECT_EQ(b.GetLarghezzaPista(BEACON_SCRUTINEERING) * 1000 + b.LineeBeacon[0][0].LarghezzaPista * 10 +
                b.GetNumeroSplit(BEACON_SCRUTINEERING),
            12121u);
}

// Names are stored as UTF-8, cut to their fields. A field filled to its last
// byte has no terminator and reads on into the fields after it, up to the end
// of its record and no further.
TEST_F(TrackEdit, NamesAreCutToTheirFieldsAndAFullOneReadsOn) {
  const std::string saved = setlocale(LC_CTYPE, nullptr);
  ASSERT_NE(setlocale(LC_CTYPE, "en_US.ISO-8859-1"), nullptr) << "test locale missing";
  std::unique_ptr<CFileTkk> t(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, false)));
  t->AddTagDatiPuntiTracciato({{1, 2, 3}});
  t->AssegnaPtrPunti();  // without a variant there is nothing to give the shape to
  EXPECT_TRUE(t->AssignTrackLength() && !t->HasShape());
  std::unique_ptr<IFileTkk> bare(IFileTkk::CreateMe(false, false));
  bare->SetFondoStradaleKey(FONDO_DIRT);  // a variant of its own, without nation codes
  bare->SetFondoStradaleKey(FONDO_ICE);   // then replaced in place
  EXPECT_EQ(bare->GetNationCode() + bare->GetSubNationCode() + bare->OttieniStringaxFondoStradaleKey() +
                std::to_string(bare->GetTagsInfoVarianti().size()) + std::to_string(bare->GetDimTkk()),
            "Ice10");
  Fw fw;
  memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
  ASSERT_TRUE(t->AddTagInfoVariante(std::string(300, 'p'), std::string(40, 'd'), fw, Idx()));
  EXPECT_EQ(t->GetNomePista() + "/" + t->GetNomeXDevice(),
            std::string(256, 'p') + "/" + std::string(28, 'd') + "ITA");
  t->SetNomeXDevice("N\xFCrburg");
  EXPECT_EQ(std::string(t->GetTagInfo()->InfoFw.NomeXDevice) + "/" + t->GetNomeXDevice(),
            "N\xC3\xBCrburg/N\xFCrburg");
  setlocale(LC_CTYPE, saved.c_str());
  // A road-surface key for a main variant without surfaces gets a list of its
  // own, which its index names in the file.
  t->AddDatiFondoStradale({FONDO_PAVED});
  t->SetFondoStradaleKey(FONDO_DIRT);
  ASSERT_EQ(name_, t->SalvaFileInPath(dir_.path(), &name_));
  EXPECT_EQ(Open(dir_.path() + name_ + ".tkk")->GetFondoStradaleKey(), FONDO_DIRT);
}

// An object read as read-only refuses every addition, each with a report; a variant
// whose index names nothing is refused. A read-only development track is never good.
TEST_F(TrackEdit, AdditionsRefused) {
  std::unique_ptr<CFileTkk> ro(static_cast<CFileTkk*>(
      IFileTkk::CreateMeUponFile(Write(FileBuilder().Info().Fw().Idx().bytes), true, false)));
  EXPECT_EQ(ro->AddTagDatiPlus(STagDatiPlus()) & ro->AddDatiFondoStradale({FONDO_DIRT}) &
                ro->AddTagDatiPuntiTracciato({{1, 2, 3}}),
            0xFFFF);
  EXPECT_EQ(Reports(), Texts(3, "ALERT Excluded, hence skipping!"));
  Idx idx;
  idx.IdxFondiStradali = 1;  // the small track has one list
  EXPECT_FALSE(fixtures::MakeSmallTrack()->AddTagInfoVariante("", "", Fw(), idx) ||
               std::unique_ptr<IFileTkk>(IFileTkk::CreateMe(true, true))->IsGood() ||
               ro->AddTagInfoVariante("", "", Fw(), Idx()));
}

// From 8000 points on every second point is kept, from 16000 every third,
// and so on; the walk may end within a skip.
TEST_F(TrackEdit, LongShapesAreThinned) {
  for (const auto& [given, kept, last] :
       {std::array<size_t, 3>{7999, 7999, 7998}, {8000, 4000, 7998}, {16001, 5334, 15999}}) {
    std::vector<_t_s_lla_i> shape(given);
    for (size_t i = 0; i < given; ++i) shape[i].LatI = static_cast<int32_t>(i);
    std::unique_ptr<IFileTkk> t(IFileTkk::CreateMe(false, false));
    Idx idx;
    idx.IdxPunti = t->AddTagDatiPuntiTracciato(shape);
    ASSERT_TRUE(t->AddTagInfoVariante("", "", Fw(), idx));
    const std::vector<_t_s_lla_i>& stored = t->GetTagInfo()->Punti->Punti;
    EXPECT_EQ(std::make_pair(stored.size(), static_cast<size_t>(stored.back().LatI)),
              std::make_pair(kept, last))
        << given;
  }
}

// A length's key is the standard length at or below it; a change of length
// is reported once.
TEST_F(TrackEdit, LengthKeyIsTheStandardLengthBelowAndEachChangeIsReportedOnce) {
  const std::pair<double, unsigned> cases[] = {{0.0, 0},           {-3.0, 0},           {50.0, 23},
                                               {80.4672, 23},      {80.5, 804672},      {160.9344, 804672},
                                               {160.94, 1609344},  {1609.30, 12874756}, {1609.35, 16093445},
                                               {5000.0, 32186890}, {1e9, 32186890}};
  for (const auto& c : cases)
    EXPECT_EQ(CDistanceCalculator::GetLunghezzaFrazionaria(c.first), c.second) << c.first;
  auto t = fixtures::MakeSmallTrack();  // device name "Monza GP"
  t->SetTrackTypeCircuitKey(TRACCIATO_OVAL);
  const auto key = LUNGHEZZA_3_4_MI;  // whole metres: 1207, not 1207.0083
  t->SetTrackLenght(&key, nullptr);
  EXPECT_TRUE(t->AssignTrackLength());
  EXPECT_EQ(Reports(),
            (Texts{"INFO for track 'Monza GP' changed fractionary length for track from 3/4 mi to custom",
                   "INFO for track 'Monza GP' changed length for track from 1207.00 m to 0.00 m"}));
  EXPECT_TRUE(t->AssignTrackLength() && evtrec::Events().size() == 2);
  const float metres = 7.5f;  // no key: a length of its own
  t->SetTrackLenght(nullptr, &metres);
  EXPECT_EQ(t->GetTrackLenght(), 7.5f);
  t->SetTrackTypeCircuitKey(static_cast<_eTipoTracciatoTkk>(4));  // unknown: no oval, read as the first
  EXPECT_TRUE(t->AssignTrackLength() && t->GetTrackLenghtKey() == 0);
  EXPECT_EQ(t->OttieniStringaxTrackTypeCircuitKey(), "Race Track");
}

TEST_F(TrackEdit, DevelopmentTrackConvertsToAMakersCopy) {
  std::unique_ptr<IFileTkk> dev(IFileTkk::CreateMe(false, true));  // a development track
  Fw fw;
  memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
  fw.InfoBeacons.LineeBeacon[3][0] = Line(456200000, 92800000, 12);
  fw.InfoBeacons.LineeBeacon[3][1] = Line(456201000, 92800000, 12);
  ASSERT_TRUE(dev->AddTagInfoVariante("GP", "Monza", fw, Idx()));
  dev->SetCitta("Monza");  // no additional texts to hold it
  dev->SetTrackComment("x");
  EXPECT_TRUE(dev->GetCitta().empty() && dev->GetAuto() && dev->GetKart() && dev->GetMoto() &&
              !dev->IsTrackObsoleta());
  const Fw source = dev->GetTagInfo()->InfoFw;
  EXPECT_FALSE(dev->TrasformaPistaUtenteInVek(dir_.path(), BEACON_OPTIC) ||
               !evtrec::Events().empty());  // false also on success
  const auto files = dir_.Entries();
  ASSERT_EQ(files.size(), 1u);
  std::unique_ptr<CFileTkk> vek = Open(dir_.path() + files[0]);
  ASSERT_TRUE(vek->IsGood() && vek->IsVekTrack() && !vek->IsUserCreatedNewTrack() &&
              vek->GetTagsInfoVarianti().size() == 1 && vek->GetVariantiTrack()[0]->IsVekTrack());
  EXPECT_EQ(vek->GetNomePista(), "GP");  // the device name is in the record compared below
  // The source's record but for the optic set (six copies of the finish
  // line) and the maker bit of the GUID.
  Fw expected = source;
  for (auto& l : expected.InfoBeacons.LineeBeacon[2]) l = source.InfoBeacons.LineeBeacon[3][0];
  expected.Guid.Byte[5] ^= 0x80;
  EXPECT_EQ(BytesOf(vek->GetTagInfo()->InfoFw), BytesOf(expected));
  EXPECT_FALSE(fixtures::MakeSmallTrack()->TrasformaPistaUtenteInVek(dir_.path(), BEACON_OPTIC));
  EXPECT_EQ(std::make_pair(Reports(), dir_.Entries()),
            std::make_pair(Texts{"ERROR La pista e' gia' Vek"}, files));
}

constexpr double kRefLat = 45.62, kRefLon = 9.28;

// A line due north of the reference point, `metres` away along the meridian.
_SDatoCoordinateBeacon North(double metres) {
  return Line(ConvertiLatLonAs32(kRefLat + metres / 6372797.560856 * 180.0 / M_PI),
              ConvertiLatLonAs32(kRefLon));
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

TEST_F(TrackChecks, LinesMustLieWithin1000MetresOfTheReferencePoint) {
  std::unique_ptr<IFileTkk> bare(IFileTkk::CreateMe(false, false));  // no variant: nothing is wrong
  EXPECT_TRUE(bare->BaricentroCoerente(msg_) && bare->AreEqualBeacons(BEACON_OPTIC, msg_) &&
              bare->IsVekTrackWithCorrectBeaconType(msg_) && bare->GetTimeZone() == 0);
  t_->SetLineeSplitLLH(0, North(999.5), BEACON_IN_USO);
  t_->SetLineeSplitLLH(1, North(999.5), BEACON_IN_USO);
  EXPECT_TRUE(t_->BaricentroCoerente(msg_) && msg_.empty());
  t_->SetLineeSplitLLH(1, North(1000.5), BEACON_IN_USO);
  EXPECT_FALSE(t_->BaricentroCoerente(msg_));
  EXPECT_EQ(msg_,
            "split n.1 is far from average point for track Monza GP distance = 1000 ref distance = 1000");
  t_->SetLineeSplitLLH(0, Line(456200000, 93121429), BEACON_IN_USO);  // 2500.5 m due east
  EXPECT_FALSE(t_->BaricentroCoerente(msg_));
  EXPECT_EQ(msg_, "lap is far from average point for track Monza GP distance = 2500 ref distance = 1000");
}

// In the United States every line lies west of Greenwich.
TEST_F(TrackChecks, UnitedStatesLinesLieWest) {
  t_->SetLineeSplitLLH(0, Line(456200000, 0), BEACON_IN_USO);
  t_->SetLineeSplitLLH(1, Line(456200000, 1), BEACON_IN_USO);
  const std::pair<const char*, const char*> cases[] = {
      {"USA", "split n.1"}, {"US", "split n.1"}, {"ITA", ""}, {"U", ""}};
  for (const auto& c : cases) {
    t_->SetNationCode(c.first);
    EXPECT_EQ(t_->AreCoherentBeacons(msg_), !*c.second) << c.first;
    EXPECT_EQ(msg_, *c.second ? c.second + std::string(" has not coherent coordinate") : "");
  }
  t_->SetNationCode("USA");
  t_->SetLineeSplitLLH(1, Line(456200000, -1), BEACON_IN_USO);
  EXPECT_TRUE(t_->AreCoherentBeacons(msg_));
  t_->SetLineeSplitLLH(0, Line(456200000, 1), BEACON_IN_USO);
  EXPECT_FALSE(t_->AreCoherentBeacons(msg_));
  EXPECT_EQ(msg_, "lap has not coherent coordinate");
}

// Positions (latitude and longitude; height and width do not count), line by
// line against the user's set; counts first, as the beacon-type test shows.
TEST_F(TrackChecks, EqualBeaconsCompareCountsThenPositions) {
  for (unsigned i = 0; i < 3; ++i) Beacons().SetLineeSplitLLH(i, North(i + 1.0), BEACON_USER);
  const _SDatoCoordinateBeacon u0 = Beacons().LineeBeacon[3][0], u1 = Beacons().LineeBeacon[3][1];
  const auto at = [](const _SDatoCoordinateBeacon& l) {
    return std::to_string(l.LatI) + ";" + std::to_string(l.LonI);
  };
  const std::tuple<unsigned, _SDatoCoordinateBeacon, std::string> rows[] = {
      // a line of the optic set
      {0, Line(u0.LatI, u0.LonI, 7, 99), ""},
      {1, Line(u1.LatI, u1.LonI + 5), "split n. 1(" + at(u1)},
      {0, Line(u0.LatI + 5, u0.LonI), "lap (" + at(u0)}};  // line 1 still differs: the first counts
  for (unsigned i = 0; i < 3; ++i) Beacons().SetLineeSplitLLH(i, Beacons().LineeBeacon[3][i], BEACON_OPTIC);
  for (const auto& [i, line, user] : rows) {
    Beacons().SetLineeSplitLLH(i, line, BEACON_OPTIC);
    EXPECT_EQ(t_->AreEqualBeacons(BEACON_OPTIC, msg_), user.empty());
    EXPECT_EQ(msg_, user.empty() ? ""
                                 : "we have  different " + user + ") in set User and coordinates " +
                                       at(line) + " in set Optic");
  }
}

// Scrutineering lines, and magnetic ones on a kart track, pass without a
// word; any other type fails either way, with a report of which case it was.
TEST_F(TrackChecks, BeaconTypeMustSuitTheCircuit) {
  const std::string same = "ERROR beacons are same for track Monza GP ",
                    type = "Track Monza GP has beacon type ";
  const std::tuple<int, _eTipoTracciatoTkk, std::string, std::string> cases[] = {
      {BEACON_SCRUTINEERING, TRACCIATO_RACE_TRACK, "untouched", ""},
      {BEACON_MAGNETIC, TRACCIATO_KART_TRACK, "untouched", ""},
      {BEACON_MAGNETIC, TRACCIATO_RACE_TRACK, type + "Magnetic and circuit type 1", same},
      {BEACON_IN_USO, TRACCIATO_KART_TRACK, type + "Last!!!! and circuit type 2", same},
      {BEACON_OPTIC, TRACCIATO_KART_TRACK, type + "Optic and circuit type 2", same},
      {BEACON_USER, TRACCIATO_KART_TRACK, "we have 1 beacons in set User and 0 beacons in set Scrutineering",
       "ERROR beacons are different for track Monza GP "},
  };
  Beacons().SetLineeSplitLLH(0, North(1.0), BEACON_USER);
  for (const auto& [beacons, circuit, msg, report] : cases) {
    evtrec::Reset(true);
    msg_ = "untouched";
    t_->SetTrackTypeCircuitKey(circuit);
    Beacons().TipoBeaconInUso = static_cast<uint8_t>(beacons);
    EXPECT_EQ(t_->IsVekTrackWithCorrectBeaconType(msg_), report.empty()) << beacons;
    EXPECT_EQ(t_->CanUseBeaconTypeMagnetic() * 2 + t_->IsGood(),
              (circuit == TRACCIATO_KART_TRACK) * 2 + (beacons != BEACON_IN_USO));
    EXPECT_EQ(msg_, msg);
    EXPECT_EQ(Reports(), report.empty() ? Texts{} : Texts{report});
  }
}

}  // namespace
