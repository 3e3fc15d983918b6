// Every saving and reading operation with one file-system call made to fail,
// the first, then the second, and so on until the operation runs through.
// After each failed save the files of the previous save are all there, each
// exactly as one of the two saves left it, and no temporary file is left; a
// file whose flush failed is never given a name; a read gives its failure.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <map>
#include <set>

#include "CFileTkk.h"
#include "IFileRiassuntivo.h"
#include "TrackMemoryRecords.h"
#include "foundation/SistemaFile.h"
#include "support/EvtLogRecorder.h"
#include "support/PlatformFaults.h"
#include "support/TrackFixtures.h"

namespace {

using fixtures::Snapshot;
using fixtures::Take;
using fixtures::TempDir;
namespace sys = vektkk::sys;

// The k-th call fails with EIO; what the library did around a failed flush is recorded.
// With `corte` every read and write moves 1 to 7 bytes only.
// Apart from that, the read numbered `interrottaAlla` is interrupted by a signal, and the
// reads from the one numbered `finitaAlla` on find the end of the file, as if it had been cut.
struct Guasti {
  int alla = 0, rinominatiNonScaricati = 0, interrottaAlla = 0, finitaAlla = 0;
  // A read that loops at the end of a file must not wrap a count round to a failure that ends it.
  long long contate = 0, letture = 0;
  bool corte = false;
  std::map<int, std::string> aperti;
  std::set<std::string> nonScaricati;
} g;

bool Cade() { return ++g.contate == g.alla && (errno = EIO); }
void Nomina(const char* from, const char*) { g.rinominatiNonScaricati += g.nonScaricati.count(from) > 0; }

// A call that may fail, after `prima` has looked at its arguments.
#define GUASTA(call, prima)                              \
  [](auto... a) {                                        \
    prima;                                               \
    return Cade() ? -1 : sys::SistemaReale().call(a...); \
  }
// With `corte` a read or a write moves only 1 to 7 bytes.
std::vector<iovec> Taglia(const iovec* v, int n, long long conta) {
  std::vector<iovec> parte(v, v + n);
  size_t resto = g.corte ? 1 + conta % 7 : SIZE_MAX;
  for (iovec& p : parte) p.iov_len = std::min(p.iov_len, resto), resto -= p.iov_len;
  return parte;
}
bool Interrotta() { return ++g.letture == g.interrottaAlla && (errno = EINTR); }
const sys::Chiamate kGuaste = {
    [](const char* p, int f, mode_t m) {
      const int fd = Cade() ? -1 : sys::SistemaReale().Open(p, f, m);
      if (fd >= 0) g.aperti[fd] = p;
      return fd;
    },
    [](int fd, void* b, size_t n) -> ssize_t {
      const size_t quanti = g.corte ? std::min<size_t>(n, 1 + g.letture % 7) : n;
      if (Interrotta() || Cade()) return -1;
      return g.finitaAlla > 0 && g.letture >= g.finitaAlla ? 0 : sys::SistemaReale().Read(fd, b, quanti);
    },
    [](int fd, const iovec* v, int n) -> ssize_t {
      if (Interrotta() || Cade()) return -1;
      return g.finitaAlla > 0 && g.letture >= g.finitaAlla
                 ? 0
                 : sys::SistemaReale().Readv(fd, Taglia(v, n, g.letture).data(), n);
    },
    [](int fd, const iovec* v, int n) -> ssize_t {
      return Cade() ? -1 : sys::SistemaReale().Writev(fd, Taglia(v, n, g.contate).data(), n);
    },
    [](int fd) { return Cade() ? (g.nonScaricati.insert(g.aperti[fd]), -1) : sys::SistemaReale().Fsync(fd); },
    [](int fd) {  // as on Linux, a close that fails still releases the descriptor
      const bool cade = Cade();
      return sys::SistemaReale().Close(fd) != 0 || cade ? (errno = EIO, -1) : 0;
    },
    GUASTA(Rename, Nomina(a...)),
    GUASTA(RenameNoReplace, Nomina(a...)),
    GUASTA(Link, Nomina(a...)),
    GUASTA(Unlink, ),
};

const std::string kNome = "0k3f9zq1";

void Empty(const TempDir& dir) {
  for (const std::string& e : dir.Entries()) unlink((dir.path() + e).c_str());
}
size_t Descrittori() {
  return static_cast<size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

struct FileFaults : ::testing::Test {
  void SetUp() override {
    evtrec::Reset(true);
    for (auto& r : riassunti_) r.reset(IFileRiassuntivo::CreateMe());
    for (int i = 0; i < 3; ++i)
      grande_->AddTagDatiPuntiTracciato(std::vector<_t_s_lla_i>(7999, _t_s_lla_i{1, 2, 3}));
    for (uint32_t seme = 1; seme <= 4; ++seme) {
      tracce_.push_back(fixtures::MakeRandomTrack(seme));
      for (int v = seme <= 2 ? 0 : 1; v < 2; ++v) riassunti_[v]->AddVarianteTkk(tracce_.back().get(), 0);
    }
    for (int i = 0; i < 4000; ++i) riassunti_[2]->AddVarianteTkk(tracce_[0].get(), 0);
  }
  void TearDown() override {
    sys::ImpostaSistema(nullptr), evtrec::Reset(false), faults::PlainContainer(false);
  }

  TempDir dir_;
  std::unique_ptr<CFileTkk> grande_ = fixtures::MakeSmallTrack();
  std::vector<std::unique_ptr<CFileTkk>> tracce_;
  std::unique_ptr<IFileRiassuntivo> riassunti_[3];
};

// Three ways a save meets trouble: the k-th call fails; every write stores 1 to
// 7 bytes (the save goes on where it stopped, and the files come out the
// same); a full device, for real, on a small memory file system where the
// test may mount one.
TEST_F(FileFaults, SavesKeepTheOldFilesWhicheverCallFails) {
  // Saves of every kind of file (name, all or nothing, save): 0 an old version,
  // 1 a new one, 2 one too large for the small device. A save of several files
  // (each replaced on its own) may fail half-way; a track's save changes
  // nothing unless it succeeds.
  auto t = [this](int v) { return v == 2 ? grande_.get() : tracce_[static_cast<size_t>(v)].get(); };
  auto r = [this](int v) { return riassunti_[v].get(); };
  using D = const std::string&;
  // clang-format off
  const std::tuple<const char*, bool, std::function<bool(int, D)>> salvataggi[] = {
      {"track", true, [=](int v, D d) { return t(v)->SalvaFileInPath(d, &kNome) == kNome; }},
      {"logos apart", true, [=](int v, D d) { return t(v)->SalvaFileInPathLogoEsterno(d, kNome) == kNome; }},
      {"summary", false, [=](int v, D d) { return r(v)->SalvaFileDev(d + "s.bin"); }},
      {"by position", false,
       [=](int v, D d) { return r(v)->CreaFileLatLonSorted(d + "p.bin", d + "p.n", d + "p.g"); }},
      {"text", false, [=](int v, D d) { return r(v)->CreaFileAlfabSortedConNazioneTestuale(d + "t.txt"); }}};
  // clang-format on
  TempDir mnt;
  const bool montato = mount("vektkk", mnt.path().c_str(), "tmpfs", 0, "size=192k,mode=0755") == 0;
  std::shared_ptr<void> smonta(nullptr, [&](void*) { umount2(mnt.path().c_str(), MNT_DETACH); });
  for (int modo = 0; modo < (montato ? 3 : 2); ++modo)
    for (const auto& [nome, tuttoONiente, salva] : salvataggi) {
      SCOPED_TRACE(testing::Message() << nome << ", mode " << modo);
      const TempDir& d = modo == 2 ? mnt : dir_;
      const int nuova = modo == 2 ? 2 : 1;
      Empty(dir_);
      ASSERT_TRUE(salva(0, dir_.path()));
      const Snapshot prima = Take(dir_);
      Empty(dir_);
      ASSERT_TRUE(salva(nuova, dir_.path()));
      const Snapshot dopo = Take(dir_);
      ASSERT_NE(prima, dopo);
      const size_t descrittori = Descrittori();
      int k = modo == 0 ? 1 : 1 << 30;  // no call fails
      for (;; ++k) {
        Empty(d);
        for (const auto& [file, bytes] : prima) fixtures::WriteAll(d.path() + file, bytes);
        g = Guasti(), g.alla = k, g.corte = modo == 1, sys::ImpostaSistema(&kGuaste);
        // The summary's operations answer true whether or not their files were written: the files tell.
        const bool riuscito = salva(nuova, d.path()) && (tuttoONiente || Take(d) == dopo);
        sys::ImpostaSistema(nullptr);
        SCOPED_TRACE(k);
        EXPECT_EQ(0, g.rinominatiNonScaricati);
        EXPECT_EQ(descrittori, Descrittori());
        // Every file is one of those before, whole as one of the two saves left it.
        const Snapshot ora = Take(d);
        for (const auto& [file, bytes] : ora)
          EXPECT_TRUE(prima.count(file) && (bytes == prima.at(file) || bytes == dopo.at(file))) << file;
        EXPECT_EQ(prima.size(), ora.size());
        // A save may also run through a failure it can do without (an image
        // beside the track, the flush of the directory).
        EXPECT_TRUE(riuscito || !tuttoONiente || ora == prima);
        EXPECT_TRUE(!riuscito || ora != prima);  // a save that succeeds has written
        if (g.contate < k) {
          EXPECT_EQ(riuscito && ora == dopo, modo != 2);
          break;
        }
      }
      EXPECT_TRUE(modo != 0 || k > 5);
    }
}

// Each failing call of a read gives the read's failure, or a good read where
// the call did not matter (closing a file already read). A read interrupted
// by a signal is made again, and one that moves fewer bytes than asked goes
// on: nothing is lost (k = 0: every read short). A file cut while it is read
// gives a failure or what was read whole, and never a wait; a malformed file
// cut while the rest of it is read is reported as cut. Tracks are read
// through both kinds of container.
TEST_F(FileFaults, ReadsFailAsSpecified) {
  const size_t descrittori = Descrittori();
  ASSERT_EQ(kNome, grande_->SalvaFileInPath(dir_.path(), &kNome));  // its shapes are read past the buffer
  const std::string track = dir_.path() + kNome + ".tkk", immagine = dir_.path() + "logo.png";
  riassunti_[0]->SalvaFileDev(dir_.path() + "s.bin");
  fixtures::WriteAll(immagine, fixtures::Bytes(3000, 7));
  const std::string rotto = dir_.path() + grande_->SalvaFileInPath(dir_.path(), nullptr) + ".tkk";
  fixtures::Bytes b = fixtures::ReadAll(rotto);
  b[20] ^= 1;  // the first atom's check fails
  fixtures::WriteAll(rotto, b);
  int fallite = 0;
  // A call fails, a read is interrupted, a read finds the end; 3 to 5 the same without pieces.
  for (const int modo : {0, 1, 2, 3, 4, 5})
    for (int k = modo % 3 == 1 ? 0 : 1;; ++k) {
      SCOPED_TRACE(testing::Message() << k << " mode " << modo);
      faults::PlainContainer(modo > 2);
      evtrec::Reset(true);
      g = Guasti();
      (modo % 3 == 0 ? g.alla : modo % 3 == 1 ? g.interrottaAlla : g.finitaAlla) = k;
      g.corte = modo % 3 == 1 && k == 0;
      const bool interrotte = modo % 3 == 1;
      std::unique_ptr<CFileTkk> conLogo = fixtures::MakeSmallTrack();
      sys::ImpostaSistema(&kGuaste);
      std::unique_ptr<IFileTkk> letto(IFileTkk::CreateMeUponFile(track, true, true));
      std::unique_ptr<IFileRiassuntivo> riassunto(IFileRiassuntivo::CreateMeUponFile(dir_.path() + "s.bin"));
      std::vector<unsigned char> logo(5, 1);
      const uint32_t letti = conLogo->SaveTrackFileLogoBuffer(logo, immagine);
      if (modo % 3 == 2) std::unique_ptr<IFileTkk>(IFileTkk::CreateMeUponFile(rotto, true, true));
      sys::ImpostaSistema(nullptr);
      EXPECT_TRUE((logo.empty() || logo == fixtures::Bytes(3000, 7)) && letti == logo.size());
      if (interrotte) {
        EXPECT_TRUE(letto->IsGood() && riassunto->GetNumRiassuntivi() == 2 && !logo.empty());
        if (k > 1 && g.letture < k) break;
        continue;
      }
      const _SDatoRiassuntivo *got = nullptr, *want = nullptr;  // the summary whole, or empty
      riassunto->GetDatoRiassuntivo(got, 1), riassunti_[0]->GetDatoRiassuntivo(want, 1);
      EXPECT_TRUE(riassunto->GetNumRiassuntivi() == 0 || memcmp(got, want, sizeof *got) == 0);
      if (modo % 3 == 2) {
        EXPECT_EQ(evtrec::Events().back().Message(),
                  (g.letture >= k ? "Can't open file " : "Can't interpret file ") + rotto);
        if (g.letture < k) break;
        continue;
      }
      if (!letto->IsGood() || !evtrec::Events().empty()) {  // a failed read, and only that, reports
        ++fallite;
        EXPECT_EQ(std::make_pair(letto->IsGood(), evtrec::Reports()),
                  std::make_pair(false, std::vector<std::string>{"ERROR Can't open file " + track}));
      }
      if (g.contate < k) break;
    }
  EXPECT_GT(fallite, 1);
  std::unique_ptr<IFileRiassuntivo>(IFileRiassuntivo::CreateMeUponFile(immagine));  // not whole records
  const std::string conLoghi = dir_.path() + tracce_[1]->SalvaFileInPath(dir_.path(), nullptr) + ".tkk";
  // The second read finds the images beside the track.
  for (int i = 0; i < 2; ++i) std::unique_ptr<IFileTkk>(IFileTkk::CreateMeUponFile(conLoghi, true, false));
  EXPECT_EQ(descrittori, Descrittori());
}

// A daemon may run with its standard input closed: the first file the
// library opens is then descriptor 0, a file like any other.
TEST_F(FileFaults, DescriptorZeroIsAFileLikeAnyOther) {
  const int in = dup(0);
  close(0);
  const std::string track = dir_.path() + kNome + ".tkk", riassunto = dir_.path() + "s.bin";
  // The file replaced keeps its mode, which only the look at it before the save tells; a new one
  // takes what the umask leaves of 0666.
  umask(022);
  const bool salvati =
      tracce_[0]->SalvaFileInPath(dir_.path(), &kNome) == kNome && chmod(track.c_str(), 0604) == 0 &&
      tracce_[1]->SalvaFileInPath(dir_.path(), &kNome) == kNome && riassunti_[0]->SalvaFileDev(riassunto);
  faults::NoHardLinks(true, true);  // a new name claimed under a lock file
  const bool bloccato = !tracce_[2]->SalvaFileInPath(dir_.path(), nullptr).empty();
  faults::NoHardLinks(true);  // and by an exclusive rename
  const bool rinominato = !tracce_[3]->SalvaFileInPath(dir_.path(), nullptr).empty();
  faults::NoHardLinks(false);
  struct stat st;
  std::vector<unsigned char> immagine;
  const bool letti =
      std::unique_ptr<IFileTkk>(IFileTkk::CreateMeUponFile(track, true, false))->IsGood() &&
      std::unique_ptr<IFileRiassuntivo>(IFileRiassuntivo::CreateMeUponFile(riassunto))->GetNumRiassuntivi() ==
          2 &&
      tracce_[0]->SaveTrackFileLogoBuffer(immagine, track) > 0;
  const bool chiuso = fcntl(0, F_GETFD) == -1;  // nothing left open
  if (in >= 0) {
    dup2(in, 0);
    close(in);
  }
  // Three tracks, the summary and a logo image.
  EXPECT_TRUE(salvati && bloccato && rinominato && letti && chiuso && dir_.Entries().size() == 5 &&
              stat(track.c_str(), &st) == 0 && (st.st_mode & 0777) == 0604 &&
              stat(riassunto.c_str(), &st) == 0 && (st.st_mode & 0777) == 0644);
}

// A save first removes what saves killed in other processes left beside it:
// temporary files ".<target>.tmp.<pid>.<n>.<ns>" of processes that no longer
// run and lock files that nobody holds. Nothing else.
TEST_F(FileFaults, LeftoversOfDeadProcessesAreRemoved) {
  const pid_t morto = fork();
  if (morto == 0) _exit(0);
  waitpid(morto, nullptr, 0);
  const std::string m = ".tmp." + std::to_string(morto), io = std::to_string(getpid());
  const int tenuto = open((dir_.path() + ".b.tkk.tmp.lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
  ASSERT_EQ(0, flock(tenuto, LOCK_EX));
  // clang-format off
  std::vector<std::string> restano = {
      ".a" + m + ".1", ".a" + m + ".1.2x", ".a" + m + ".1.2.3", ".a.tmp.x" + m.substr(5) + ".1.2",
      ".a.tmp.+" + m.substr(5) + ".1.2", ".a.tmp." + io + ".1.2", ".a.tmp.1.1.2", "a" + m + ".1.2", m + ".1.2",
      ".b.tkk.tmp.lock", "b.tkk.tmp.lock"};
  // clang-format on
  for (const std::string& e : restano) fixtures::WriteAll(dir_.path() + e, {});
  for (const std::string& e : {".a" + m + ".0.2", std::string(".c.tkk.tmp.lock")})
    fixtures::WriteAll(dir_.path() + e, {});
  ASSERT_EQ(kNome, tracce_[0]->SalvaFileInPath(dir_.path(), &kNome));
  restano.push_back(kNome + ".tkk");
  std::sort(restano.begin(), restano.end());
  EXPECT_EQ(dir_.Entries(), restano);
  close(tenuto);
}

}  // namespace
