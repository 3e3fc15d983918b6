#include "foundation/SistemaFile.h"
#include "foundation/TempFiles.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <set>

#include "foundation/DurableFile.h"

namespace vektkk {
namespace {

constexpr char kMarca[] = ".tmp.";
constexpr char kCodaLucchetto[] = ".tmp.lock";

bool FiniscePer(const std::string& s, const std::string& coda) {
  return s.size() >= coda.size() && s.compare(s.size() - coda.size(), coda.size(), coda) == 0;
}

// The writer's process id of a name ".<target>.tmp.<pid>.<n>.<ns>", or 0
// when the name is not of that shape.
pid_t ScrittoreDi(const std::string& nome) {
  if (nome.size() < 2 || nome[0] != '.') return 0;
  const size_t marca = nome.rfind(kMarca);
  if (marca == std::string::npos || marca == 0) return 0;
  const char* p = nome.c_str() + marca + sizeof kMarca - 1;
  long numeri[3] = {0, 0, 0};
  for (int i = 0; i < 3; ++i) {
    if (*p < '0' || *p > '9') return 0;
    char* fine = nullptr;
    numeri[i] = strtol(p, &fine, 10);
    p = fine;
    if (*p != (i < 2 ? '.' : '\0')) return 0;
    ++p;
  }
  return numeri[0] > 0 ? static_cast<pid_t>(numeri[0]) : 0;
}

bool ProcessoFinito(pid_t pid) { return kill(pid, 0) != 0 && errno == ESRCH; }

// A lock file that nobody holds may go: whoever opens it next finds that it
// no longer carries the name and takes a new one.
void RimuoviLucchettoLibero(const std::string& path) {
  const int fd = sys::Open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
  if (fd < 0) return;
  if (flock(fd, LOCK_EX | LOCK_NB) == 0) sys::Unlink(path.c_str());
  sys::Close(fd);
}

// Directories cleaned by this process. A forked child starts afresh: its
// parent's cleaning says nothing of what died since.
struct Pulite {
  std::mutex lock;
  pid_t processo = 0;
  std::set<std::string> cartelle;
};

bool PrimaVolta(const std::string& dir) {
  static Pulite* pulite = new Pulite;  // never destroyed: saves may run at exit
  std::lock_guard<std::mutex> guard(pulite->lock);
  const pid_t io = getpid();
  if (pulite->processo != io) {
    pulite->processo = io;
    pulite->cartelle.clear();
  }
  return pulite->cartelle.insert(dir).second;
}

}  // namespace

std::string NomeLucchetto(const std::string& target) {
  const std::string cartella = CartellaDi(target);
  return cartella + "." + target.substr(cartella.size()) + kCodaLucchetto;
}

int ApriTemporaneo(const std::string& target, mode_t mode, std::string& temp) {
  // The name comes from the process id, a counter and the clock: rand()
  // belongs to the host and is never touched.
  static std::atomic<unsigned long> contatore{0};
  const std::string cartella = CartellaDi(target);
  const std::string nome = target.substr(cartella.size());
  for (int tentativo = 0; tentativo < 100; ++tentativo) {
    timespec ora;
    clock_gettime(CLOCK_MONOTONIC, &ora);
    char suffisso[64];
    snprintf(suffisso, sizeof suffisso, "%s%ld.%lu.%ld", kMarca, static_cast<long>(getpid()),
             contatore.fetch_add(1, std::memory_order_relaxed) + 1,
             static_cast<long>(ora.tv_nsec));
    temp = cartella + "." + nome + suffisso;
    const int fd = sys::Open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (fd >= 0 || errno != EEXIST) return fd;
  }
  return -1;
}

void PulisciAvanzi(const std::string& dir) {
  if (!PrimaVolta(dir)) return;
  DIR* d = opendir(dir.empty() ? "." : dir.c_str());
  if (d == nullptr) return;
  const pid_t io = getpid();
  while (const dirent* e = readdir(d)) {
    const std::string nome = e->d_name;
    if (nome.size() < 2 || nome[0] != '.') continue;
    if (FiniscePer(nome, kCodaLucchetto)) {
      RimuoviLucchettoLibero(dir + nome);
      continue;
    }
    const pid_t scrittore = ScrittoreDi(nome);
    if (scrittore != 0 && scrittore != io && ProcessoFinito(scrittore))
      sys::Unlink((dir + nome).c_str());
  }
  closedir(d);
}

}  // namespace vektkk
