// Memory through the replaced global operator new and delete. A read may
// take no more than a small multiple of the file's own size (plus a fixed
// allowance for the empty objects), and a size field that promises more than
// the file holds is never allocated. Allocations that fail lose nothing.
#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <new>
#include <tuple>

#include "CFileTkk.h"
#include "IFileRiassuntivo.h"
#include "platform/IAtomTagEncoderBin.h"
#include "summary/CFileRiassuntivo.h"
#include "support/TrackFixtures.h"

namespace {
std::atomic<size_t> g_live{0}, g_peak{0}, g_limit{SIZE_MAX};  // larger blocks fail
void* Allocate(size_t size) noexcept {
  void* p = size > g_limit ? nullptr : malloc(size == 0 ? 1 : size);
  if (p == nullptr) return nullptr;
  const size_t live = g_live += malloc_usable_size(p);
  for (size_t peak = g_peak.load(); live > peak && !g_peak.compare_exchange_weak(peak, live);) continue;
  return p;
}
void* OrThrow(void* p) { return p != nullptr ? p : throw std::bad_alloc(); }
void Release(void* p) { g_live -= malloc_usable_size(p), free(p); }
}  // namespace

// The C++ library's array forms call these; the sanitizers' own would not
// pair with them.
void* operator new(size_t size) { return OrThrow(Allocate(size)); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* p) noexcept { Release(p); }
void operator delete(void* p, size_t) noexcept { Release(p); }

namespace {

using fixtures::Bytes;

// What reading `path` allocates at its peak must stay within a fixed
// allowance for the empty objects and 16 times the file: the worst files
// are made of the smallest atoms that each become a record of their own (an
// empty "lgo" atom is 12 bytes in the file and about 13 times as much in
// memory); files of records and shapes take 2 to 7 times their size.
template <typename Read>
void ExpectSmallPeak(const std::string& path, Read read) {
  const size_t size = fixtures::ReadAll(path).size(), before = g_live.load();
  g_peak = before;
  read();
  EXPECT_LE(g_peak.load() - before, 64 * 1024 + 16 * size) << path << ", " << size << " bytes";
  EXPECT_EQ(g_live.load(), before) << path << ": left allocated once the object is gone";
}

Bytes Atoms(const char* tag, const Bytes& payload, int count) {
  std::unique_ptr<IAtomTagEncoderBin> enc(IAtomTagEncoderBin::CreateMe());
  Bytes out;
  for (int i = 0; i < count; ++i)
    enc->append(out, tag, payload.data(), static_cast<uint32_t>(payload.size()), 0);
  return out;
}

TEST(ReadPeakMemory, TrackAndSummaryFiles) {
  fixtures::TempDir dir;
  std::vector<Bytes> files;
  // A header whose size field promises 4 GB, in a file of 100 bytes, for a
  // tag the reader keeps and one it skips.
  for (const char* tag : {"Ptkk", "zzzz"}) {
    files.push_back(Atoms(tag, Bytes(88, 0x5a), 1));
    std::fill_n(files.back().begin() + 4, 4, 0xF0);
  }
  const std::string track = fixtures::MakeRandomTrack(3)->SalvaFileInPath(dir.path(), nullptr);
  files.push_back(fixtures::ReadAll(dir.path() + track + ".tkk"));
  // The smallest atoms that each make a record of their own, and as many
  // variants as the file can hold.
  files.push_back(Atoms("pts", Bytes(12, 1), 20000));
  files.push_back(Atoms("srfs", Bytes(4, 0), 20000));
  files.push_back(Atoms("lgo", Bytes(), 20000));
  Bytes variants = Atoms("Ptkk", Bytes(268, 0), 1), one = Atoms("Vnfo", Bytes(476, 0), 1);
  const Bytes index = Atoms("Vidx", Bytes(8, 0xFF), 1);  // no logo, shape or surfaces
  one.insert(one.end(), index.begin(), index.end());
  for (int i = 0; i < 2000; ++i) variants.insert(variants.end(), one.begin(), one.end());
  files.push_back(variants);
  const std::string path = dir.path() + "0memory0.tkk";
  for (const Bytes& file : files) {
    fixtures::WriteAll(path, file);
    ExpectSmallPeak(path, [&] { std::unique_ptr<IFileTkk>(IFileTkk::CreateMeUponFile(path, true, false)); });
  }
  // Summary files of whole records and of a record and a byte, then a record added.
  const std::unique_ptr<CFileTkk> small = fixtures::MakeSmallTrack();
  for (size_t size : {size_t{128 * 1000}, size_t{128 * 1000 + 1}}) {
    fixtures::WriteAll(path, Bytes(size, 0x41));
    ExpectSmallPeak(path, [&] {
      std::unique_ptr<IFileRiassuntivo> read(IFileRiassuntivo::CreateMeUponFile(path));
      EXPECT_EQ(read->GetNumRiassuntivi(), size % 128 == 0 ? 1000 : 0) << size;
      read->AddVarianteTkk(small.get(), 0);
    });
  }
}

// Out of memory, an atom is appended whole or not at all, and a summary
// finds and removes records by name without its table of names.
TEST(OutOfMemory, AtomsWholeOrNotAtAllSummariesWithoutTheirTables) {
  std::unique_ptr<IAtomTagEncoderBin> enc(IAtomTagEncoderBin::CreateMe());
  Bytes out(10, 1), payload(1 << 20, 2);
  g_limit = 64 * 1024;
  const bool appended = enc->append(out, "big", payload.data(), 1 << 20, 0);
  g_limit = SIZE_MAX;
  const size_t before = g_live.load();
  std::unique_ptr<CFileRiassuntivo> s(new CFileRiassuntivo);
  for (int i = 0; i < 3000; ++i) {
    s->Lista().push_back(new _SDatoRiassuntivo);
    memcpy(s->Lista().back()->FileName, std::to_string(10000000 + i).data(), 8);
  }
  g_limit = 64 * 1024;
  const bool found = s->IsThisFileTkkHere("10000007");
  const int left = s->DelFileTkk("10000007");
  const bool gone = !s->IsThisFileTkkHere("10000007") && s->IsThisFileTkkHere("10000008");
  g_limit = SIZE_MAX;
  s.reset();  // its records go with it
  const size_t after = g_live.load();
  EXPECT_EQ(std::make_tuple(appended, out, found, left, gone, after),
            std::make_tuple(false, Bytes(10, 1), true, 2999, true, before));
}

}  // namespace
