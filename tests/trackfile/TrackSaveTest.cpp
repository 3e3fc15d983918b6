// Saving track files: round trips, generated names, logos, and golden files
// composed byte by byte from docs/track-file-format.md without the library's
// records or encoder (offsets, little-endian integers and CRC by hand).
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
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

std::unique_ptr<CFileTkk> Open(const std::string& path) {
  return std::unique_ptr<CFileTkk>(static_cast<CFileTkk*>(IFileTkk::CreateMeUponFile(path, false, false)));
}

// What a read gives back of a track: the records byte for byte, and each
// variant's shape, road surfaces, logo (its bare file name) and texts.
Bytes Contents(CFileTkk& t) {
  Bytes out = BytesOf(t.GetTagInfoFile());
  const auto add = [&out](char part, const void* p, size_t n) {
    out.push_back(static_cast<unsigned char>(part));
    out.insert(out.end(), static_cast<const unsigned char*>(p), static_cast<const unsigned char*>(p) + n);
  };
  for (const STagsInfoVariante* v : t.GetTagsInfoVarianti()) {
    add('v', &v->InfoFw, sizeof v->InfoFw);
    add('s', &v->InfoSw, sizeof v->InfoSw);
    add('i', &v->Indici, sizeof v->Indici);
    if (v->Punti) add('p', v->Punti->Punti.data(), v->Punti->Punti.size() * sizeof(_t_s_lla_i));
    if (v->FondiStradali) add('f', v->FondiStradali->Fondi.data(), v->FondiStradali->Fondi.size() * 4);
    if (v->Logo) {
      const std::string& name = v->Logo->NomeFile;
      add('l', v->Logo->Dati.data(), v->Logo->Dati.size());
      add('n', name.data() + name.rfind('/') + 1, name.size() - name.rfind('/') - 1);
    }
    if (v->DatiPlus) add('t', "", 0);
  }
  return out;
}

class TrackSave : public ::testing::Test {
 protected:
  void SetUp() override { evtrec::Reset(true); }
  void TearDown() override {
    evtrec::Reset(false);
    faults::FailEncoderCreation(false);
    faults::PlainContainer(false);
  }
  Bytes SaveIn(CFileTkk& track, const std::string& dir) {
    EXPECT_EQ(track.SalvaFileInPath(dir, &name_), name_);
    return fixtures::ReadAll(dir + name_ + ".tkk");
  }
  fixtures::TempDir dir_;
  const std::string name_ = "0k3f9zq1";
};

// Saved through either container, read back through either, or by an object
// that read other files before (larger ones, a failed one): the same records
// and the same bytes.
TEST_F(TrackSave, RandomTracksComeBackByteForByte) {
  fixtures::TempDir other;
  const std::string path = dir_.path() + name_ + ".tkk", bad = dir_.path() + "bad.tkk";
  fixtures::WriteAll(bad, Bytes(100, 0x55));
  std::unique_ptr<CFileTkk> again = fixtures::MakeSmallTrack();
  STagDatiPlus plus;  // additional texts are never written: a read drops them
  plus.Comment = "built";
  again->AddTagDatiPlus(plus);
  for (uint32_t seed = 1; seed <= 12; ++seed) {
    SCOPED_TRACE(seed);
    std::unique_ptr<CFileTkk> built = fixtures::MakeRandomTrack(seed);
    faults::PlainContainer(true);
    const Bytes plain = SaveIn(*built, other.path());
    faults::PlainContainer(false);
    const Bytes saved = SaveIn(*built, dir_.path());
    EXPECT_EQ(saved, plain);
    EXPECT_EQ(std::string(built->GetTagInfoFile().GuidNomeFile, 8), name_);
    for (bool plainRead : {false, true}) {
      faults::PlainContainer(plainRead);
      std::unique_ptr<CFileTkk> read = Open(path);
      ASSERT_TRUE(read->IsGood());
      EXPECT_EQ(Contents(*read), Contents(*built));
      EXPECT_EQ(SaveIn(*read, other.path()), saved);
    }
    faults::PlainContainer(false);
    ASSERT_TRUE(again->LeggiFile(path, false));
    EXPECT_EQ(Contents(*again), Contents(*built));
    EXPECT_EQ(again->GetTrackComment(), "");
    EXPECT_FALSE(again->LeggiFile(bad, false));
  }
}

// The name generator repeats a name when the clock and rand() repeat: the
// second save must find the name taken and wait for a free one, on file
// systems with hard links and on memory cards without them. The name tells
// a maker's track from a user's.
TEST_F(TrackSave, GeneratedNamesNeverReplaceATrack) {
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
    fakeclock::Reset();
    faults::NoHardLinks(false);
    ASSERT_EQ(a.size() + b.size(), 16u);
    EXPECT_NE(a, b);
    EXPECT_GT(waits, 0) << "the second save waited for a free name";
    EXPECT_EQ(waited, 25000 * waits);  // as the name generator waits
    EXPECT_EQ(dir.Entries(), (std::vector<std::string>{std::min(a, b) + ".tkk", std::max(a, b) + ".tkk"}));
    EXPECT_EQ(std::string(first->GetTagInfoFile().GuidNomeFile, 8), a);
    tm when;
    bool isVek = !c[2], isDev = true;
    ASSERT_TRUE(IGuidNomeFile::GetDaNomeFile(a, when, isVek, isDev));
    EXPECT_EQ(isVek, c[2]);
    EXPECT_FALSE(isDev);
    std::unique_ptr<CFileTkk> read = Open(dir.path() + a + ".tkk");
    EXPECT_EQ(read->IsVekTrack(), c[2]);
    EXPECT_EQ(Contents(*read), Contents(*first));
  }
}

TEST_F(TrackSave, LogosOfNineBytesOrLessAreNotSaved) {
  auto track = fixtures::MakeSmallTrack();
  _STagIndexesVarianteTKK idx;
  idx.IdxLogo = track->AddTagDatiLogo(Bytes(9, 1), "/x/small.png");
  track->AddTagDatiLogo(Bytes(10, 2), "/x/big.png");
  track->AddTagDatiLogo(Bytes(50, 3), "");  // no name: not saved either
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
  EXPECT_EQ(dir_.Entries(), (std::vector<std::string>{"0k3f9zq1.tkk", "big.png", "logo0002.png", "logo0002.tkk"}));
  EXPECT_EQ(fixtures::ReadAll(dir_.path() + "logo0002.png"), Bytes(10, 2));
  EXPECT_EQ(Open(dir_.path() + "logo0002.tkk")->GetTagsInfoVarianti().size(), 1u);
}

TEST_F(TrackSave, NoEncoderNoFile) {
  auto track = fixtures::MakeSmallTrack();
  faults::FailEncoderCreation(true);
  EXPECT_EQ(track->SalvaFileInPath(dir_.path(), &name_) + track->SalvaFileInPath(dir_.path(), nullptr) +
                track->SalvaFileInPathLogoEsterno(dir_.path(), name_), "");
  EXPECT_TRUE(dir_.Entries().empty());
  EXPECT_TRUE(evtrec::Events().empty());
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

TEST(TrackGolden, SmallTrackFileComposedFromTheDocument) {
  EXPECT_EQ(Crc32(reinterpret_cast<const unsigned char*>("123456789"), 9), 0xCBF43926u);
  Bytes srfs;  // the document's example atom
  Atom(srfs, "srfs", Rec{Bytes(4)}.Put(0, 1).b);
  EXPECT_EQ(srfs, (Bytes{0x73, 0x72, 0x66, 0x73, 4, 0, 0, 0, 1, 0, 0, 0, 0xe1, 0x9c, 0x6e, 0xa7}));

  // fixtures::MakeSmallTrack: a user's track, so its variant uses line type
  // 4; time zone 50 and circuit type 1 as new variants have; all else zero.
  const std::string name = "0k3f9zq1";
  const std::vector<uint32_t> shape = {456200000, 92800000, 162000, 456210000, 92810000, 162500,
                                       456220000, 92790000, 163000};
  Rec pts{Bytes(36)};
  for (size_t k = 0; k < shape.size(); ++k) pts.Put(4 * k, shape[k]);
  Bytes file;
  Atom(file, "Ptkk", Rec{Bytes(268)}.Put(0, 0).Text(4, "Monza").Text(260, name).b);
  Atom(file, "Vnfo", Rec{Bytes(476)}.Text(0, "Monza GP").Text(28, "ITA").Text(32, "MB").Put(60, 50).Put(72, 1)
                         .Put(78, 4, 1).Put(468, 0x0000123456780001ull, 8).b);
  Atom(file, "V_sw", Rec{Bytes(256)}.Text(0, "GP").b);
  Atom(file, "Vidx", Rec{Bytes(8)}.Put(0, 0, 2).Put(2, 0, 2).Put(4, 0xFFFF, 2).Put(6, 0xFFFF, 2).b);
  Atom(file, "pts", pts.b);
  file.insert(file.end(), srfs.begin(), srfs.end());
  ASSERT_EQ(file.size(), 1120u);

  // Saving the small track writes exactly these bytes...
  fixtures::TempDir dir, other;
  std::unique_ptr<CFileTkk> track = fixtures::MakeSmallTrack();
  ASSERT_EQ(track->SalvaFileInPath(dir.path(), &name), name);
  EXPECT_EQ(fixtures::ReadAll(dir.path() + name + ".tkk"), file);
  EXPECT_EQ(track->GetOffsetDatiFw(0), 8 + 268 + 4u);
  EXPECT_EQ(track->GetOffsetPti(0), 1120 - 8 - 36 - 4 - 16u);
  // ...and reading them gives every field back.
  fixtures::WriteAll(other.path() + name + ".tkk", file);
  track = Open(other.path() + name + ".tkk");
  ASSERT_TRUE(track->IsGood());
  ASSERT_EQ(track->GetTagsInfoVarianti().size(), 1u);
  const _STagInfoFileTKK& info = track->GetTagInfoFile();
  EXPECT_EQ(int32_t{info.IdxMainVariante}, 0);
  EXPECT_EQ(std::string(info.NamexSito) + "/" + std::string(info.GuidNomeFile, 8), "Monza/" + name);
  const STagsInfoVariante& v = *track->GetTagInfo();
  const _STagInfoVarianteTKK_fw& fw = v.InfoFw;
  EXPECT_EQ(std::string(fw.NomeXDevice) + "/" + fw.NationCode + "/" + fw.SubNationCode + "/" + v.InfoSw.NomePista,
            "Monza GP/ITA/MB/GP");
  EXPECT_EQ((std::vector<int64_t>{fw.DataModifica.Valore, fw.TipoLunghezza, fw.LatRif, fw.LonRif, fw.AltRif,
                                  fw.TimeZone, fw.DeltaMin, fw.TipoTracciato, fw.BitField.Valore}),
            (std::vector<int64_t>{0, 0, 0, 0, 0, 50, 0, 1, 0}));
  EXPECT_EQ(fw.Lunghezza + fw.AnglePlot, 0.0f);
  EXPECT_EQ(uint64_t{fw.Guid.Valore}, 0x0000123456780001ull);
  _SInfoBeacons lines;  // no line, type 4 in use
  lines.TipoBeaconInUso = BEACON_USER;
  EXPECT_EQ(BytesOf(fw.InfoBeacons), BytesOf(lines));
  EXPECT_EQ((std::vector<int>{v.Indici.IdxFondiStradali, v.Indici.IdxPunti, v.Indici.IdxLogo, v.Indici.IdxDatiPlus}),
            (std::vector<int>{0, 0, 0xFFFF, 0xFFFF}));
  ASSERT_EQ(v.Punti->Punti.size(), 3u);
  std::vector<uint32_t> points(9);
  memcpy(points.data(), v.Punti->Punti.data(), 36);
  EXPECT_EQ(points, shape);
  EXPECT_EQ(v.FondiStradali->Fondi, std::vector<_eTipoRoadSurfaceTkk>{FONDO_PAVED});
}

}  // namespace
