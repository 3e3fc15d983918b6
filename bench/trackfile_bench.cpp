// Reading and saving a track file of about 1 MB (a 7999-point shape and a
// 900 KB logo) against the bare file operations a careful program would do
// with the same bytes: one read of the whole file; or a temporary file
// written and flushed, renamed over the target, and the directory flushed.
// Files go to a fresh directory under $TMPDIR (or /tmp), removed at exit.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "Coordinate.h"
#include "IFileTkk.h"

namespace {

const std::string kNome = "0k3f9zq1";

std::vector<unsigned char> ReadWhole(const std::string& path) {
  std::vector<unsigned char> bytes;
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return bytes;
  struct stat st;
  if (fstat(fd, &st) == 0) {
    bytes.resize(static_cast<size_t>(st.st_size));
    size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t n = read(fd, bytes.data() + done, bytes.size() - done);
      if (n <= 0) break;
      done += static_cast<size_t>(n);
    }
    bytes.resize(done);
  }
  close(fd);
  return bytes;
}

bool WriteDurably(const std::string& dir, const std::string& name,
                  const std::vector<unsigned char>& bytes) {
  const std::string temp = dir + "." + name + ".tmp";
  const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) return false;
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  bool ok = done == bytes.size() && fsync(fd) == 0;
  ok = close(fd) == 0 && ok;
  ok = ok && rename(temp.c_str(), (dir + name).c_str()) == 0;
  const int dfd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ok = ok && dfd >= 0 && fsync(dfd) == 0;
  if (dfd >= 0) close(dfd);
  return ok;
}

// The track, saved once, and the directory that holds it.
struct Fixture {
  std::string dir;
  std::string path;  // dir + kNome + ".tkk"
  std::unique_ptr<IFileTkk> track;
  std::vector<unsigned char> bytes;

  Fixture() {
    const char* base = getenv("TMPDIR");
    std::string pattern = std::string(base != nullptr && *base != '\0' ? base : "/tmp") +
                          "/vektkk-bench-XXXXXX";
    if (mkdtemp(&pattern[0]) == nullptr) abort();
    dir = pattern + "/";
    path = dir + kNome + ".tkk";

    std::mt19937 rng(7);
    track.reset(IFileTkk::CreateMe(false, false));
    _STagInfoFileTKK info;
    memcpy(info.NamexSito, "Autodromo", 9);
    track->SetTagInfoFile("", info);
    std::vector<_t_s_lla_i> shape(7999);
    for (auto& p : shape)
      p = {static_cast<int32_t>(rng()), static_cast<int32_t>(rng()),
           static_cast<int32_t>(rng() % 100000)};
    std::vector<unsigned char> logo(900 * 1024);
    for (auto& b : logo) b = static_cast<unsigned char>(rng());
    _STagIndexesVarianteTKK idx;
    idx.IdxPunti = track->AddTagDatiPuntiTracciato(shape);
    idx.IdxFondiStradali = track->AddDatiFondoStradale({FONDO_PAVED});
    idx.IdxLogo = track->AddTagDatiLogo(logo, "logo.png");
    _STagInfoVarianteTKK_fw fw;
    memcpy(fw.NationCode, "ITA", 4);
    fw.Guid.Valore = 0x0000123456780001ull;
    if (!track->AddTagInfoVariante("GP", "GP", fw, idx)) abort();
    if (track->SalvaFileInPath(dir, &kNome) != kNome) abort();
    bytes = ReadWhole(path);
    if (bytes.size() < 900 * 1024) abort();
  }
  ~Fixture() {
    const std::string cmd = "rm -rf '" + dir + "'";
    if (system(cmd.c_str()) != 0) {
    }
  }
};

Fixture& Get() {
  static Fixture f;
  return f;
}

void BM_ReadTrack(benchmark::State& state) {
  Fixture& f = Get();
  for (auto _ : state) {
    std::unique_ptr<IFileTkk> t(IFileTkk::CreateMeUponFile(f.path, false, false));
    if (!t || !t->IsGood()) state.SkipWithError("read failed");
    benchmark::DoNotOptimize(t.get());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * f.bytes.size()));
}
BENCHMARK(BM_ReadTrack)->UseRealTime()->Unit(benchmark::kMicrosecond);

// The same read without logos: what the decoding alone costs.
void BM_ReadTrackNoLogo(benchmark::State& state) {
  Fixture& f = Get();
  for (auto _ : state) {
    std::unique_ptr<IFileTkk> t(IFileTkk::CreateMeUponFile(f.path, false, true));
    if (!t || !t->IsGood()) state.SkipWithError("read failed");
    benchmark::DoNotOptimize(t.get());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * f.bytes.size()));
}
BENCHMARK(BM_ReadTrackNoLogo)->UseRealTime()->Unit(benchmark::kMicrosecond);

void BM_ReadBare(benchmark::State& state) {
  Fixture& f = Get();
  for (auto _ : state) {
    std::vector<unsigned char> bytes = ReadWhole(f.path);
    if (bytes.size() != f.bytes.size()) state.SkipWithError("read failed");
    benchmark::DoNotOptimize(bytes.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * f.bytes.size()));
}
BENCHMARK(BM_ReadBare)->UseRealTime()->Unit(benchmark::kMicrosecond);

void BM_SaveTrack(benchmark::State& state) {
  Fixture& f = Get();
  for (auto _ : state)
    if (f.track->SalvaFileInPath(f.dir, &kNome) != kNome) state.SkipWithError("save failed");
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * f.bytes.size()));
}
BENCHMARK(BM_SaveTrack)->UseRealTime()->Unit(benchmark::kMicrosecond);

void BM_SaveBare(benchmark::State& state) {
  Fixture& f = Get();
  for (auto _ : state)
    if (!WriteDurably(f.dir, kNome + ".tkk", f.bytes)) state.SkipWithError("write failed");
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * f.bytes.size()));
}
BENCHMARK(BM_SaveBare)->UseRealTime()->Unit(benchmark::kMicrosecond);

}  // namespace
