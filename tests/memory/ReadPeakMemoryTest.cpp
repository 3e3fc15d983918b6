// Peak memory of reading a file, counted through the replaced global
// operator new and delete: a read may take no more than a small multiple of
// the file's own size (plus a fixed allowance for the empty objects), and a
// size field that promises more than the file holds is never allocated.

#include <gtest/gtest.h>
#include <malloc.h>
#include <stdlib.h>
#include <string.h>

#include <atomic>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "CFileTkk.h"
#include "IFileRiassuntivo.h"
#include "platform/IAtomTagEncoderBin.h"
#include "support/TrackFixtures.h"

namespace {

std::atomic<size_t> g_live{0};
std::atomic<size_t> g_peak{0};

void* Allocate(size_t size) {
  void* p = malloc(size == 0 ? 1 : size);
  if (p == nullptr) throw std::bad_alloc();
  const size_t live = g_live += malloc_usable_size(p);
  size_t peak = g_peak.load();
  while (live > peak && !g_peak.compare_exchange_weak(peak, live)) {
  }
  return p;
}

void Release(void* p) {
  if (p == nullptr) return;
  g_live -= malloc_usable_size(p);
  free(p);
}

}  // namespace

void* operator new(size_t size) { return Allocate(size); }
void* operator new[](size_t size) { return Allocate(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  try {
    return Allocate(size);
  } catch (...) {
    return nullptr;
  }
}
void* operator new[](size_t size, const std::nothrow_t& t) noexcept {
  return operator new(size, t);
}
void operator delete(void* p) noexcept { Release(p); }
void operator delete[](void* p) noexcept { Release(p); }
void operator delete(void* p, size_t) noexcept { Release(p); }
void operator delete[](void* p, size_t) noexcept { Release(p); }

namespace {

using fixtures::Bytes;

// Bytes allocated at the peak of `read`, above what was live before.
template <typename F>
size_t PeakOf(F read) {
  const size_t before = g_live.load();
  g_peak = before;
  read();
  return g_peak.load() - before;
}

// What a read of `size` bytes may take at most: the empty objects and a
// small multiple of the file. The worst files are made of the smallest
// atoms that each become a record of their own: an empty "lgo" atom is 12
// bytes in the file and a logo, its file name and the reader's entry for
// the atom in memory (about 13 times as much); files of records and shapes
// take 2 to 7 times their size.
constexpr size_t kAllowance = 64 * 1024;
constexpr size_t kFactor = 16;
size_t Bound(size_t size) { return kAllowance + kFactor * size; }

Bytes Atom(const char* tag, const Bytes& payload) {
  std::unique_ptr<IAtomTagEncoderBin> enc(IAtomTagEncoderBin::CreateMe());
  Bytes out;
  EXPECT_TRUE(enc->append(out, tag, payload.data(), static_cast<uint32_t>(payload.size()), 0));
  return out;
}

void Append(Bytes& to, const Bytes& b) { to.insert(to.end(), b.begin(), b.end()); }

size_t PeakOfTrack(const std::string& path, bool senzaLogo) {
  return PeakOf([&] {
    std::unique_ptr<IFileTkk> t(IFileTkk::CreateMeUponFile(path, true, senzaLogo));
  });
}

TEST(ReadPeakMemory, TrackFiles) {
  fixtures::TempDir dir;
  struct Case {
    std::string name;
    Bytes bytes;
  };
  std::vector<Case> cases;

  // A header whose size field promises 4 GB, in a file of 100 bytes, for
  // each tag the reader keeps and one it skips.
  for (const char* tag : {"Ptkk", "Vnfo", "pts", "srfs", "lgo", "zzzz"}) {
    Bytes b(100, 0x5a);
    memset(b.data(), 0, 4);
    memcpy(b.data(), tag, strlen(tag));
    b[4] = b[5] = b[6] = 0xFF;
    b[7] = 0xF0;
    cases.push_back({std::string("4 GB ") + tag, b});
  }
  // Valid tracks saved by the library.
  for (uint32_t seed : {1u, 2u, 3u}) {
    const std::string name = "0track0" + std::to_string(seed);
    ASSERT_EQ(fixtures::MakeRandomTrack(seed)->SalvaFileInPath(dir.path(), &name), name);
    cases.push_back({"random track " + name, fixtures::ReadAll(dir.path() + name + ".tkk")});
  }
  // The smallest atoms that each make a record of their own: the most
  // objects a file of a given size can ask for.
  const Bytes onePoint(12, 1);
  const Bytes oneSurface(4, 0);
  const Bytes emptyLogo;
  const Bytes namedLogo{'a', 0, 1};
  for (const auto& tag : {std::make_pair("pts", onePoint), std::make_pair("srfs", oneSurface),
                          std::make_pair("lgo", emptyLogo), std::make_pair("lgo", namedLogo)}) {
    Bytes b;
    for (int i = 0; i < 20000; ++i) Append(b, Atom(tag.first, tag.second));
    cases.push_back({std::string("20000 small atoms ") + tag.first, b});
  }

  // As many variants as the file can hold: each needs its own "Vnfo".
  {
    Bytes b = Atom("Ptkk", Bytes(268, 0));
    Bytes none(8, 0xFF);
    for (int i = 0; i < 2000; ++i) {
      Append(b, Atom("Vnfo", Bytes(476, 0)));
      Append(b, Atom("Vidx", none));
    }
    cases.push_back({"2000 variants", b});
  }

  for (const Case& c : cases) {
    const std::string path = dir.path() + "0memory0.tkk";
    fixtures::WriteAll(path, c.bytes);
    for (bool senzaLogo : {false, true}) {
      const size_t peak = PeakOfTrack(path, senzaLogo);
      EXPECT_LE(peak, Bound(c.bytes.size()))
          << c.name << " (" << c.bytes.size() << " bytes), without logos " << senzaLogo;
    }
  }
}

TEST(ReadPeakMemory, SummaryFiles) {
  fixtures::TempDir dir;
  for (size_t size : {size_t{100}, size_t{128}, size_t{128 * 1000}, size_t{128 * 1000 + 1}}) {
    const std::string path = dir.path() + "summary.dat";
    fixtures::WriteAll(path, Bytes(size, 0x41));
    size_t records = 0;
    const size_t peak = PeakOf([&] {
      std::unique_ptr<IFileRiassuntivo> s(IFileRiassuntivo::CreateMeUponFile(path));
      records = static_cast<size_t>(s->GetNumRiassuntivi());
    });
    EXPECT_EQ(records, size % 128 == 0 ? size / 128 : 0) << size;
    EXPECT_LE(peak, Bound(size)) << size;
  }
}

}  // namespace
