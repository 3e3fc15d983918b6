// Every saving and reading operation with one file-system call made to fail,
// the first, then the second, and so on until the operation runs through.
// After each failed save the files of the previous save are all there,
// each exactly as one of the two saves left it, and no temporary file is
// left; a file whose flush failed is never given the target's name; a read
// gives its specified failure.
#include <errno.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "CFileTkk.h"
#include "IFileRiassuntivo.h"
#include "foundation/SistemaFile.h"
#include "support/EvtLogRecorder.h"
#include "support/TrackFixtures.h"

namespace {

using fixtures::Bytes;
using fixtures::TempDir;
using Snapshot = std::map<std::string, Bytes>;
namespace sys = vektkk::sys;

// The k-th call fails with `errore`; what the library did around a failed
// flush is recorded.
struct Guasti {
  int contate = 0;
  int alla = 0;
  int errore = EIO;
  std::map<int, std::string> aperti;
  std::set<std::string> nonScaricati;
  int rinominatiNonScaricati = 0;
} g;

bool Cade() {
  if (++g.contate != g.alla) return false;
  errno = g.errore;
  return true;
}
void Nomina(const char* from) { g.rinominatiNonScaricati += g.nonScaricati.count(from) > 0; }

const sys::Chiamate kGuaste = {
    [](const char* p, int f, mode_t m) {
      if (Cade()) return -1;
      const int fd = sys::SistemaReale().Open(p, f, m);
      if (fd >= 0) g.aperti[fd] = p;
      return fd;
    },
    [](int fd, void* b, size_t n) { return Cade() ? -1 : sys::SistemaReale().Read(fd, b, n); },
    [](int fd, const iovec* v, int n) { return Cade() ? -1 : sys::SistemaReale().Readv(fd, v, n); },
    [](int fd, const iovec* v, int n) { return Cade() ? -1 : sys::SistemaReale().Writev(fd, v, n); },
    [](int fd) {
      if (!Cade()) return sys::SistemaReale().Fsync(fd);
      g.nonScaricati.insert(g.aperti[fd]);
      return -1;
    },
    [](int fd) {
      // As on Linux, a close that fails still releases the descriptor.
      const bool cade = Cade();
      const int esito = sys::SistemaReale().Close(fd);
      if (cade) errno = g.errore;
      return cade ? -1 : esito;
    },
    [](const char* a, const char* b) {
      Nomina(a);
      return Cade() ? -1 : sys::SistemaReale().Rename(a, b);
    },
    [](const char* a, const char* b) {
      Nomina(a);
      return Cade() ? -1 : sys::SistemaReale().RenameNoReplace(a, b);
    },
    [](const char* a, const char* b) {
      Nomina(a);
      return Cade() ? -1 : sys::SistemaReale().Link(a, b);
    },
    [](const char* p) { return Cade() ? -1 : sys::SistemaReale().Unlink(p); },
};

Snapshot Take(const TempDir& dir) {
  Snapshot s;
  for (const std::string& e : dir.Entries()) s[e] = fixtures::ReadAll(dir.path() + e);
  return s;
}

class FileFaults : public ::testing::Test {
 protected:
  void SetUp() override { evtrec::Reset(true); }
  void TearDown() override {
    sys::ImpostaSistema(nullptr);
    evtrec::Reset(false);
  }

  // Runs `save` with the k-th call failing for k = 1, 2, ... until it makes
  // fewer than k calls. `prima` is what the directory holds before, `dopo`
  // what a save that runs through leaves. With `tuttoONiente` a save that
  // reports failure must have changed nothing; otherwise (several files,
  // each replaced on its own) each file must be whole, old or new. Returns
  // how many calls the save makes.
  int OgniGuasto(const std::function<bool()>& save, const Snapshot& prima, const Snapshot& dopo,
                 bool tuttoONiente) {
    for (int k = 1; k < 500; ++k) {
      for (const std::string& e : dir_.Entries()) unlink((dir_.path() + e).c_str());
      for (const auto& [nome, bytes] : prima) fixtures::WriteAll(dir_.path() + nome, bytes);
      g = Guasti();
      g.alla = k;
      sys::ImpostaSistema(&kGuaste);
      const bool riuscito = save();
      sys::ImpostaSistema(nullptr);
      EXPECT_EQ(0, g.rinominatiNonScaricati) << "call " << k;
      const Snapshot ora = Take(dir_);
      for (const auto& [nome, vecchio] : prima) {
        const auto it = ora.find(nome);
        EXPECT_TRUE(it != ora.end() && (it->second == vecchio || it->second == dopo.at(nome)))
            << nome << " lost or torn at call " << k;
      }
      for (const auto& entry : ora)
        EXPECT_TRUE(prima.count(entry.first) == 1) << entry.first << " left at call " << k;
      if (g.contate < k) {
        EXPECT_TRUE(riuscito);
        return k - 1;
      }
      // A save may also run through a failure it can do without (an image
      // beside the track, the flush of the directory).
      EXPECT_TRUE(riuscito || !tuttoONiente || ora == prima) << "a failed save changed files, call " << k;
    }
    ADD_FAILURE() << "the save never ran through";
    return 0;
  }

  TempDir dir_;
};

const std::string kNome = "0k3f9zq1";

TEST_F(FileFaults, TrackSavesKeepTheOldFiles) {
  struct Caso {
    const char* nome;
    std::function<std::string(CFileTkk&, const std::string&)> salva;
  };
  const Caso casi[] = {
      {"named", [](CFileTkk& t, const std::string& d) { return t.SalvaFileInPath(d, &kNome); }},
      {"logos apart",
       [](CFileTkk& t, const std::string& d) { return t.SalvaFileInPathLogoEsterno(d, kNome); }},
  };
  for (const Caso& c : casi) {
    SCOPED_TRACE(c.nome);
    for (const std::string& e : dir_.Entries()) unlink((dir_.path() + e).c_str());
    std::unique_ptr<CFileTkk> vecchio = fixtures::MakeRandomTrack(1);
    std::unique_ptr<CFileTkk> nuovo = fixtures::MakeRandomTrack(2);
    ASSERT_EQ(kNome, c.salva(*vecchio, dir_.path()));
    const Snapshot prima = Take(dir_);
    TempDir altrove;
    c.salva(*nuovo, altrove.path());
    Snapshot dopo;
    for (const auto& e : prima) dopo[e.first] = fixtures::ReadAll(altrove.path() + e.first);
    const int chiamate =
        OgniGuasto([&] { return c.salva(*nuovo, dir_.path()) == kNome; }, prima, dopo, true);
    EXPECT_GT(chiamate, 5);
    RecordProperty(c.nome, chiamate);
  }
}

TEST_F(FileFaults, SummaryFilesAreWholeOrOld) {
  std::unique_ptr<IFileRiassuntivo> vecchio(IFileRiassuntivo::CreateMe());
  std::unique_ptr<IFileRiassuntivo> nuovo(IFileRiassuntivo::CreateMe());
  std::vector<std::unique_ptr<CFileTkk>> tracce;
  for (uint32_t seme = 1; seme <= 4; ++seme) {
    tracce.push_back(fixtures::MakeRandomTrack(seme));
    (seme <= 2 ? vecchio : nuovo)->AddVarianteTkk(tracce.back().get(), 0);
    nuovo->AddVarianteTkk(tracce.back().get(), 0);
  }
  const std::string p = dir_.path();
  struct Caso {
    const char* nome;
    std::function<bool(IFileRiassuntivo&)> salva;
  };
  const Caso casi[] = {
      {"summary", [&](IFileRiassuntivo& s) { return s.SalvaFileDev(p + "s.bin"); }},
      {"by name", [&](IFileRiassuntivo& s) {
         return s.CreaFileAlfabSortedSenzaNazione(p + "n.bin", p + "n.ll", p + "n.g");
       }},
      {"by position",
       [&](IFileRiassuntivo& s) { return s.CreaFileLatLonSorted(p + "p.bin", p + "p.n", p + "p.g"); }},
      {"text", [&](IFileRiassuntivo& s) { return s.CreaFileAlfabSortedConNazioneTestuale(p + "t.txt"); }},
  };
  for (const Caso& c : casi) {
    SCOPED_TRACE(c.nome);
    for (const std::string& e : dir_.Entries()) unlink((p + e).c_str());
    ASSERT_TRUE(c.salva(*vecchio));
    const Snapshot prima = Take(dir_);
    ASSERT_TRUE(c.salva(*nuovo));
    const Snapshot dopo = Take(dir_);
    ASSERT_TRUE(c.salva(*vecchio));
    // The summary's operations answer true whether or not their files were
    // written; only the files tell.
    const int chiamate = OgniGuasto(
        [&] {
          c.salva(*nuovo);
          return Take(dir_) == dopo;
        },
        prima, dopo, false);
    EXPECT_GT(chiamate, 4);
    RecordProperty(c.nome, chiamate);
  }
}

// Each failing call of a read gives the read's failure, or a good read
// where the call did not matter (closing a file already read).
TEST_F(FileFaults, ReadsFailAsSpecified) {
  ASSERT_EQ(kNome, fixtures::MakeRandomTrack(3)->SalvaFileInPath(dir_.path(), &kNome));
  const std::string track = dir_.path() + kNome + ".tkk";
  std::unique_ptr<IFileRiassuntivo> s(IFileRiassuntivo::CreateMe());
  std::unique_ptr<CFileTkk> t = fixtures::MakeRandomTrack(4);
  s->AddVarianteTkk(t.get(), 0);
  s->SalvaFileDev(dir_.path() + "s.bin");
  int fallite = 0;
  for (int k = 1;; ++k) {
    evtrec::Reset(true);
    g = Guasti();
    g.alla = k;
    sys::ImpostaSistema(&kGuaste);
    std::unique_ptr<IFileTkk> letto(IFileTkk::CreateMeUponFile(track, true, true));
    std::unique_ptr<IFileRiassuntivo> riassunto(IFileRiassuntivo::CreateMeUponFile(dir_.path() + "s.bin"));
    sys::ImpostaSistema(nullptr);
    if (!letto->IsGood()) {
      ++fallite;
      ASSERT_EQ(1u, evtrec::Events().size()) << "call " << k;
      EXPECT_EQ("Can't open file " + track, evtrec::Events()[0].Message());
    }
    EXPECT_TRUE(riassunto->GetNumRiassuntivi() == 0 || riassunto->GetNumRiassuntivi() == 1);
    if (g.contate < k) break;
  }
  EXPECT_GT(fallite, 1);
}

}  // namespace

namespace {

// A full device, for real: a small memory file system, where the test may
// mount one.
TEST(FullDevice, SavesKeepTheOldFiles) {
  TempDir mnt;
  if (geteuid() != 0 ||
      mount("vektkk", mnt.path().c_str(), "tmpfs", 0, "size=192k,mode=0755") != 0)
    GTEST_SKIP() << "cannot mount a small file system here";
  struct Smonta {
    std::string p;
    ~Smonta() { umount2(p.c_str(), MNT_DETACH); }
  } smonta{mnt.path()};
  std::unique_ptr<CFileTkk> piccola = fixtures::MakeRandomTrack(5);
  ASSERT_EQ(kNome, piccola->SalvaFileInPath(mnt.path(), &kNome));
  std::unique_ptr<IFileRiassuntivo> s(IFileRiassuntivo::CreateMe());
  s->AddVarianteTkk(piccola.get(), 0);
  s->SalvaFileDev(mnt.path() + "s.bin");
  const Snapshot prima = Take(mnt);

  // About 290 KB of shapes: more than the device holds.
  std::unique_ptr<CFileTkk> grande = fixtures::MakeSmallTrack();
  for (int i = 0; i < 3; ++i)
    grande->AddTagDatiPuntiTracciato(std::vector<_t_s_lla_i>(7999, _t_s_lla_i{1, 2, 3}));
  EXPECT_EQ("", grande->SalvaFileInPath(mnt.path(), &kNome));
  EXPECT_EQ("", grande->SalvaFileInPath(mnt.path(), nullptr));
  std::unique_ptr<IFileRiassuntivo> molti(IFileRiassuntivo::CreateMe());
  for (int i = 0; i < 2000; ++i) molti->AddVarianteTkk(piccola.get(), 0);
  molti->SalvaFileDev(mnt.path() + "s.bin");
  EXPECT_EQ(prima, Take(mnt));
}

}  // namespace
