// Golden files composed byte by byte from docs/track-file-format.md, without
// the library's records or encoder: offsets, little-endian integers and the
// CRC are all written here by hand. The library must read these bytes back
// field for field, and must write exactly these bytes.

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "CFileTkk.h"
#include "TrackMemoryRecords.h"
#include "support/EvtLogRecorder.h"
#include "support/TrackFixtures.h"

namespace {

using fixtures::Bytes;

const char kName[] = "0k3f9zq1";

// CRC-32 as the document gives it: reflected 0xEDB88320, bitwise.
uint32_t Crc32(const unsigned char* p, size_t n) {
  uint32_t crc = 0xFFFFFFFFu;
  for (size_t i = 0; i < n; ++i) {
    crc ^= p[i];
    for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

void PutLe(Bytes& b, size_t at, uint64_t v, int bytes) {
  for (int i = 0; i < bytes; ++i)
    b[at + static_cast<size_t>(i)] = static_cast<unsigned char>(v >> (8 * i));
}

// A fixed-size record, zero-filled, written at the offsets of the document.
struct Rec {
  Bytes b;
  explicit Rec(size_t size) : b(size, 0) {}
  Rec& U8(size_t at, uint8_t v) { return PutLe(b, at, v, 1), *this; }
  Rec& U16(size_t at, uint16_t v) { return PutLe(b, at, v, 2), *this; }
  Rec& U32(size_t at, uint32_t v) { return PutLe(b, at, v, 4), *this; }
  Rec& I32(size_t at, int32_t v) { return U32(at, static_cast<uint32_t>(v)); }
  Rec& U64(size_t at, uint64_t v) { return PutLe(b, at, v, 8), *this; }
  Rec& F32(size_t at, float v) {
    uint32_t bits;
    memcpy(&bits, &v, 4);
    return U32(at, bits);
  }
  Rec& Text(size_t at, const std::string& s) {
    memcpy(b.data() + at, s.data(), s.size());
    return *this;
  }
};

// Header (tag zero-padded, size), payload, CRC of header and payload.
Bytes Atom(const std::string& tag, const Bytes& payload) {
  Bytes a(8 + payload.size() + 4, 0);
  memcpy(a.data(), tag.data(), tag.size());
  PutLe(a, 4, payload.size(), 4);
  std::copy(payload.begin(), payload.end(), a.begin() + 8);
  PutLe(a, a.size() - 4, Crc32(a.data(), a.size() - 4), 4);
  return a;
}

// A file under construction; Add returns the atom's offset in the file.
struct File {
  Bytes bytes;
  size_t Add(const std::string& tag, const Bytes& payload) {
    const size_t at = bytes.size();
    const Bytes a = Atom(tag, payload);
    bytes.insert(bytes.end(), a.begin(), a.end());
    return at;
  }
};

struct Point {
  int32_t lat, lon, alt;
};
struct Line {
  int set, index;
  int32_t lat, lon, alt;
  uint32_t width;
};

// One variant: what goes into its Vnfo, V_sw and Vidx.
struct Variant {
  std::string device, nation, subNation, track;
  uint32_t date;
  int32_t lengthKey;
  float length;
  int32_t latRef, lonRef, altRef, timeZone, deltaMin;
  float angle;
  int32_t type;
  uint8_t lineType;
  std::vector<Line> lines;
  uint32_t flags;
  uint64_t guid;
  uint16_t idxSurfaces, idxShape, idxLogo, idxPlus;
};

Bytes Vnfo(const Variant& v) {
  Rec r(476);
  r.Text(0, v.device).Text(28, v.nation).Text(32, v.subNation).U32(36, v.date);
  r.I32(40, v.lengthKey).F32(44, v.length).I32(48, v.latRef).I32(52, v.lonRef);
  r.I32(56, v.altRef).I32(60, v.timeZone).I32(64, v.deltaMin).F32(68, v.angle);
  r.I32(72, v.type).U8(76 + 2, v.lineType);
  for (const Line& l : v.lines) {
    const size_t at = 80 + static_cast<size_t>(l.set - 1) * 96 + static_cast<size_t>(l.index) * 16;
    r.I32(at, l.lat).I32(at + 4, l.lon).I32(at + 8, l.alt).U32(at + 12, l.width);
  }
  return r.U32(464, v.flags).U64(468, v.guid).b;
}

Bytes Vsw(const std::string& track) { return Rec(256).Text(0, track).b; }

Bytes Vidx(uint16_t surfaces, uint16_t shape, uint16_t logo, uint16_t plus) {
  return Rec(8).U16(0, surfaces).U16(2, shape).U16(4, logo).U16(6, plus).b;
}

Bytes Ptkk(int32_t mainVariant, const std::string& site, const std::string& name) {
  return Rec(268).I32(0, mainVariant).Text(4, site).Text(260, name).b;
}

Bytes Pts(const std::vector<Point>& points) {
  Rec r(points.size() * 12);
  for (size_t k = 0; k < points.size(); ++k)
    r.I32(12 * k, points[k].lat).I32(12 * k + 4, points[k].lon).I32(12 * k + 8, points[k].alt);
  return r.b;
}

Bytes Srfs(const std::vector<int32_t>& values) {
  Rec r(values.size() * 4);
  for (size_t k = 0; k < values.size(); ++k) r.I32(4 * k, values[k]);
  return r.b;
}

// With VEKTKK_GOLDEN_DIR set, the golden files are also written there (the
// fuzz target's seed corpus, see fuzz/README.md).
void KeepAsSeed(const std::string& name, const Bytes& bytes) {
  const char* dir = getenv("VEKTKK_GOLDEN_DIR");
  if (dir != nullptr && *dir != '\0') fixtures::WriteAll(std::string(dir) + "/" + name, bytes);
}

std::string Field(const char* field, size_t size) {
  return std::string(field, strnlen(field, size));
}

template <typename T>
uint32_t Bits(T v) {
  uint32_t u;
  static_assert(sizeof v == 4, "32-bit field");
  memcpy(&u, &v, 4);
  return u;
}

TEST(GoldenFile, AtomMatchesTheDocumentedExample) {
  const char check[] = "123456789";
  EXPECT_EQ(Crc32(reinterpret_cast<const unsigned char*>(check), 9), 0xCBF43926u);
  const Bytes documented = {0x73, 0x72, 0x66, 0x73, 0x04, 0x00, 0x00, 0x00,
                            0x01, 0x00, 0x00, 0x00, 0xe1, 0x9c, 0x6e, 0xa7};
  EXPECT_EQ(Atom("srfs", Srfs({1})), documented);
}

TEST(GoldenFile, HandBuiltFileReadsBackFieldByField) {
  const std::vector<Variant> variants = {
      {"Mugello GP full length track",  // fills its 28 bytes: no terminator
       "ITA", "FI", "Mugello", 0x255CDB5E, 0, 5245.0f, 439975000, 113711000, 257000, 51, 30,
       12.5f, 1, 3,
       {{3, 0, 439970000, 113700000, 0, 12}, {3, 1, 439990000, 113720000, 1, 0},
        {1, 0, -1, 0, 0, 9}},
       0x5, 0x0000A55CDB5E1234ull, 0, 1, 0, 0xFFFF},
      {"Kart", "ITAL", "", std::string(256, 'k'), 0, 804672, 80.5f, -338000000, -705000000,
       -1000, 50, 0, 0.0f, 2, 4, {{4, 5, 1, 2, 3, 4}}, 0, 0x0001800000000042ull, 0xFFFF, 0,
       0xFFFF, 7}};
  const std::vector<Point> shape0 = {{-338000000, -705000000, -1000}, {-338000010, -705000020, 0}};
  const std::vector<Point> shape1 = {{439970000, 113700000, 257000}, {439980000, 113710000, 258000},
                                     {439990000, 113720000, 259500}};
  const Bytes image = {0x89, 'P', 'N', 'G', 0x0d, 0x0a, 0x1a, 0x0a, 0, 0, 0, 0x0d, 'I', 'H'};
  const std::string site = "Aut\xC3\xB3" "dromo del Mugello";

  File f;
  f.Add("Ptkk", Ptkk(1, site, kName));
  std::vector<size_t> vnfoAt;
  for (const Variant& v : variants) {
    vnfoAt.push_back(f.Add("Vnfo", Vnfo(v)));
    f.Add("V_sw", Vsw(v.track));
    f.Add("Vidx", Vidx(v.idxSurfaces, v.idxShape, v.idxLogo, v.idxPlus));
  }
  const size_t ptsAt = f.Add("pts", Pts(shape0));
  f.Add("pts", Pts(shape1));
  f.Add("srfs", Srfs({1, 16}));
  Bytes logo = {'m', 'u', 'g', 'e', 'l', 'l', 'o', '.', 'p', 'n', 'g', 0};
  logo.insert(logo.end(), image.begin(), image.end());
  f.Add("lgo", logo);
  f.Add("Xtra", {1, 2, 3});  // unknown tags are ignored

  KeepAsSeed("golden-two-variants.tkk", f.bytes);

  fixtures::TempDir dir;
  const std::string path = dir.path() + kName + ".tkk";
  fixtures::WriteAll(path, f.bytes);
  evtrec::Reset();
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMeUponFile(path, false, false));
  ASSERT_NE(track, nullptr);
  ASSERT_TRUE(track->IsGood());
  EXPECT_TRUE(evtrec::Events().empty());
  EXPECT_EQ(track->GetDimTkk(), f.bytes.size());
  EXPECT_TRUE(track->IsVekTrack());  // type flag 0 in the file name

  const _STagInfoFileTKK& info = track->GetTagInfoFile();
  EXPECT_EQ(int32_t{info.IdxMainVariante}, 1);
  EXPECT_EQ(Field(info.NamexSito, 256), site);
  EXPECT_EQ(std::string(info.GuidNomeFile, 8), kName);

  const auto& read = track->GetTagsInfoVarianti();
  ASSERT_EQ(read.size(), variants.size());
  for (size_t i = 0; i < variants.size(); ++i) {
    SCOPED_TRACE(i);
    const Variant& v = variants[i];
    const _STagInfoVarianteTKK_fw& fw = read[i]->InfoFw;
    EXPECT_EQ(Field(fw.NomeXDevice, 28), v.device);
    EXPECT_EQ(Field(fw.NationCode, 4), v.nation);
    EXPECT_EQ(Field(fw.SubNationCode, 4), v.subNation);
    EXPECT_EQ(Field(read[i]->InfoSw.NomePista, 256), v.track);
    EXPECT_EQ(fw.DataModifica.Valore, v.date);
    EXPECT_EQ(fw.TipoLunghezza, v.lengthKey);
    EXPECT_EQ(Bits(fw.Lunghezza), Bits(v.length));
    EXPECT_EQ(fw.LatRif, v.latRef);
    EXPECT_EQ(fw.LonRif, v.lonRef);
    EXPECT_EQ(fw.AltRif, v.altRef);
    EXPECT_EQ(fw.TimeZone, v.timeZone);
    EXPECT_EQ(fw.DeltaMin, v.deltaMin);
    EXPECT_EQ(Bits(fw.AnglePlot), Bits(v.angle));
    EXPECT_EQ(fw.TipoTracciato, v.type);
    EXPECT_EQ(fw.InfoBeacons.TipoBeaconInUso, v.lineType);
    for (int set = 1; set <= 4; ++set) {
      for (int j = 0; j < 6; ++j) {
        Line want{set, j, 0, 0, 0, 0};
        for (const Line& l : v.lines)
          if (l.set == set && l.index == j) want = l;
        const _SDatoCoordinateBeacon& got = fw.InfoBeacons.LineeBeacon[set - 1][j];
        EXPECT_EQ(got.LatI, want.lat) << set << "/" << j;
        EXPECT_EQ(got.LonI, want.lon) << set << "/" << j;
        EXPECT_EQ(got.AltI, want.alt) << set << "/" << j;
        EXPECT_EQ(got.LarghezzaPista, want.width) << set << "/" << j;
      }
    }
    EXPECT_EQ(fw.BitField.Valore, v.flags);
    EXPECT_EQ(uint64_t{fw.Guid.Valore}, v.guid);
    EXPECT_EQ(read[i]->Indici.IdxFondiStradali, v.idxSurfaces);
    EXPECT_EQ(read[i]->Indici.IdxPunti, v.idxShape);
    EXPECT_EQ(read[i]->Indici.IdxLogo, v.idxLogo);
  }

  // Indexes count atoms of one tag in file order: variant 0 uses the second
  // shape, variant 1 the first.
  const std::vector<const std::vector<Point>*> shapes = {&shape1, &shape0};
  for (size_t i = 0; i < shapes.size(); ++i) {
    ASSERT_NE(read[i]->Punti, nullptr);
    const auto& got = read[i]->Punti->Punti;
    ASSERT_EQ(got.size(), shapes[i]->size());
    for (size_t k = 0; k < got.size(); ++k) {
      EXPECT_EQ(got[k].LatI, (*shapes[i])[k].lat);
      EXPECT_EQ(got[k].LonI, (*shapes[i])[k].lon);
      EXPECT_EQ(got[k].AltI, (*shapes[i])[k].alt);
    }
  }
  ASSERT_NE(read[0]->FondiStradali, nullptr);
  EXPECT_EQ(read[0]->FondiStradali->Fondi,
            (std::vector<_eTipoRoadSurfaceTkk>{FONDO_PAVED, FONDO_COMBO}));
  EXPECT_EQ(read[1]->FondiStradali, nullptr);

  ASSERT_NE(read[0]->Logo, nullptr);
  EXPECT_EQ(read[0]->Logo->NomeFile, dir.path() + "mugello.png");
  EXPECT_EQ(read[0]->Logo->Dati, image);
  EXPECT_EQ(fixtures::ReadAll(dir.path() + "mugello.png"), image);  // written beside the file
  EXPECT_EQ(read[1]->Logo, nullptr);

  // Summary offsets are exact for the first two variants and the first shape.
  auto* object = static_cast<CFileTkk*>(track.get());
  EXPECT_EQ(object->GetOffsetDatiFw(0), vnfoAt[0]);
  EXPECT_EQ(object->GetOffsetDatiFw(1), vnfoAt[1]);
  EXPECT_EQ(object->GetOffsetPti(0), ptsAt);
}

TEST(GoldenFile, SavedSmallTrackIsTheDocumentedFile) {
  // fixtures::MakeSmallTrack, composed from the document: a user's track, so
  // its variant uses line type 4; all else at its default.
  Variant v{"Monza GP", "ITA", "MB", "GP", 0, 0, 0.0f, 0, 0, 0, 50, 0, 0.0f, 1, 4, {}, 0,
            0x0000123456780001ull, 0, 0, 0xFFFF, 0xFFFF};
  File f;
  f.Add("Ptkk", Ptkk(0, "Monza", kName));
  const size_t vnfoAt = f.Add("Vnfo", Vnfo(v));
  f.Add("V_sw", Vsw(v.track));
  f.Add("Vidx", Vidx(v.idxSurfaces, v.idxShape, v.idxLogo, v.idxPlus));
  const size_t ptsAt = f.Add("pts", Pts({{456200000, 92800000, 162000},
                                         {456210000, 92810000, 162500},
                                         {456220000, 92790000, 163000}}));
  f.Add("srfs", Srfs({1}));
  ASSERT_EQ(f.bytes.size(), 1120u);
  KeepAsSeed("golden-small.tkk", f.bytes);

  std::unique_ptr<CFileTkk> track = fixtures::MakeSmallTrack();
  fixtures::TempDir dir;
  const std::string name = kName;
  ASSERT_EQ(track->SalvaFileInPath(dir.path(), &name), name);
  EXPECT_EQ(fixtures::ReadAll(dir.path() + name + ".tkk"), f.bytes);
  EXPECT_EQ(track->GetOffsetDatiFw(0), vnfoAt);
  EXPECT_EQ(track->GetOffsetPti(0), ptsAt);
}

}  // namespace
