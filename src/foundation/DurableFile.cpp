#include "foundation/SistemaFile.h"
#include "foundation/DurableFile.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "foundation/TempFiles.h"

namespace vektkk {
namespace {

// Symbolic links followed before giving up, as the kernel does.
constexpr int kMassimoCollegamenti = 40;

// Pieces handed to one writev(): enough for a track of many variants.
constexpr size_t kPezziPerScrittura = IOV_MAX < 256 ? IOV_MAX : 256;

// All the pieces, in order; a call that writes less goes on from where it
// stopped. The pieces themselves are left as given.
bool ScriviTutto(int fd, const iovec* pezzi, size_t n) {
  size_t i = 0;      // the first piece not yet written whole
  size_t fatti = 0;  // bytes of it already written
  while (i < n) {
    if (fatti == pezzi[i].iov_len) {
      ++i;
      fatti = 0;
      continue;
    }
    iovec lotto[kPezziPerScrittura];
    lotto[0] = {static_cast<unsigned char*>(pezzi[i].iov_base) + fatti, pezzi[i].iov_len - fatti};
    size_t m = 1;
    for (size_t j = i + 1; j < n && m < kPezziPerScrittura; ++j) lotto[m++] = pezzi[j];
    const ssize_t scritti = sys::Writev(fd, lotto, static_cast<int>(m));
    if (scritti < 0 && errno == EINTR) continue;
    if (scritti <= 0) return false;
    for (size_t resto = static_cast<size_t>(scritti); resto > 0;) {
      const size_t qui = std::min(resto, pezzi[i].iov_len - fatti);
      fatti += qui;
      resto -= qui;
      if (fatti == pezzi[i].iov_len) {
        ++i;
        fatti = 0;
      }
    }
  }
  return true;
}

// Makes a new name in `dir` durable. Best effort: the file's own data was
// synced before its name appeared, and a directory that cannot be synced
// (some file systems refuse) leaves nothing for the caller to undo.
void SincronizzaCartella(const std::string& dir) {
  const int fd = sys::Open(dir.empty() ? "." : dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  sys::Fsync(fd);
  sys::Close(fd);
}

// The file that opening `path` for writing would reach: symbolic links are
// followed, a relative one from its own directory. A dangling link gives the
// path it names, which the save then creates.
bool SeguiCollegamenti(const std::string& path, std::string& fine) {
  fine = path;
  for (int salti = 0;; ++salti) {
    struct stat st;
    if (lstat(fine.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) return true;
    if (salti == kMassimoCollegamenti) return false;
    char destinazione[PATH_MAX];
    const ssize_t n = readlink(fine.c_str(), destinazione, sizeof destinazione);
    if (n <= 0 || static_cast<size_t>(n) >= sizeof destinazione) return false;
    const std::string collegato(destinazione, static_cast<size_t>(n));
    fine = collegato[0] == '/' ? collegato : CartellaDi(fine) + collegato;
  }
}

enum class Bersaglio { Assente, Scrivibile, Rifiutato };

// Whether the caller may replace `path`: only a regular file that it could
// open for writing. Opening without truncation changes nothing; O_NONBLOCK
// keeps a FIFO from waiting for a reader.
Bersaglio Esamina(const std::string& path, struct stat& st) {
  const int fd = sys::Open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return errno == ENOENT ? Bersaglio::Assente : Bersaglio::Rifiutato;
  const bool regolare = fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  sys::Close(fd);
  return regolare ? Bersaglio::Scrivibile : Bersaglio::Rifiutato;
}

// Writes the bytes to a new temporary file beside `path` and flushes them;
// returns its name, or "" (with nothing left behind) on failure. With
// `vecchio` the file takes that file's owner, group and permission bits
// before its bytes reach the device; it is created private until then.
std::string ScriviTemporaneo(const std::string& path, const iovec* pezzi, size_t n,
                             const struct stat* vecchio) {
  std::string temp;
  const int fd = ApriTemporaneo(path, vecchio != nullptr ? 0600 : 0666, temp);
  if (fd < 0) return "";
  if (vecchio != nullptr) {
    // Owner and group only where the process may give them; the group
    // alone where it may not give the owner. Modes go last: a change of
    // owner may clear some of them.
    if (fchown(fd, vecchio->st_uid, vecchio->st_gid) != 0)
      (void)!fchown(fd, static_cast<uid_t>(-1), vecchio->st_gid);
    (void)fchmod(fd, vecchio->st_mode & 0777);
  }
  bool ok = ScriviTutto(fd, pezzi, n);
  ok = ok && sys::Fsync(fd) == 0;
  ok = sys::Close(fd) == 0 && ok;
  if (!ok) {
    sys::Unlink(temp.c_str());
    return "";
  }
  return temp;
}

// Takes the lock file of `path` for this process alone. A lock file that
// was removed or replaced while waiting for it no longer carries the name:
// the wait starts again on the new one. The kernel releases the lock of a
// process that dies, so a killed save never blocks the next one.
int PrendiLucchetto(const std::string& path) {
  const std::string nome = NomeLucchetto(path);
  for (;;) {
    const int fd = sys::Open(nome.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) return -1;
    int esito;
    do esito = flock(fd, LOCK_EX);
    while (esito != 0 && errno == EINTR);
    struct stat preso, attuale;
    if (esito != 0 || fstat(fd, &preso) != 0) {
      sys::Close(fd);
      return -1;
    }
    if (stat(nome.c_str(), &attuale) == 0 && attuale.st_ino == preso.st_ino &&
        attuale.st_dev == preso.st_dev)
      return fd;
    sys::Close(fd);
  }
}

// Gives the complete temporary file the name `path` only if no file has it,
// in one step. link() never replaces a name; file systems without hard links
// (the FAT family of memory cards) get an exclusive rename instead, and where
// even that is missing the name is claimed under a lock file beside it: the
// name is checked and the rename made while holding the lock, so the track's
// name only ever appears with the complete file. Consumes `temp` on success.
EsitoCreazione Rivendica(const std::string& temp, const std::string& path) {
  if (sys::Link(temp.c_str(), path.c_str()) == 0) {
    sys::Unlink(temp.c_str());
    return EsitoCreazione::Creato;
  }
  if (errno == EEXIST) return EsitoCreazione::GiaEsistente;
  if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS) return EsitoCreazione::Errore;
  if (sys::RenameNoReplace(temp.c_str(), path.c_str()) == 0)
    return EsitoCreazione::Creato;
  if (errno == EEXIST) return EsitoCreazione::GiaEsistente;
  if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) return EsitoCreazione::Errore;

  const int lucchetto = PrendiLucchetto(path);
  if (lucchetto < 0) return EsitoCreazione::Errore;
  struct stat st;
  EsitoCreazione esito = EsitoCreazione::Errore;
  if (lstat(path.c_str(), &st) == 0 || errno != ENOENT)
    esito = EsitoCreazione::GiaEsistente;
  else if (sys::Rename(temp.c_str(), path.c_str()) == 0)
    esito = EsitoCreazione::Creato;
  // Removed while still held: a waiter finds the name gone and starts over.
  sys::Unlink(NomeLucchetto(path).c_str());
  sys::Close(lucchetto);
  return esito;
}

}  // namespace

std::string CartellaDi(const std::string& path) {
  const size_t sep = path.find_last_of("/\\");
  return sep == std::string::npos ? std::string() : path.substr(0, sep + 1);
}

bool ScriviFileAtomico(const std::string& richiesto, const void* data, size_t size) {
  const iovec intero = {const_cast<void*>(data), size};
  return ScriviFileAtomico(richiesto, &intero, 1);
}

bool ScriviFileAtomico(const std::string& richiesto, const iovec* pezzi, size_t n) {
  std::string path;
  if (!SeguiCollegamenti(richiesto, path)) return false;
  struct stat vecchio;
  const Bersaglio bersaglio = Esamina(path, vecchio);
  if (bersaglio == Bersaglio::Rifiutato) return false;
  PulisciAvanzi(CartellaDi(path));
  const std::string temp = ScriviTemporaneo(
      path, pezzi, n, bersaglio == Bersaglio::Scrivibile ? &vecchio : nullptr);
  if (temp.empty()) return false;
  if (sys::Rename(temp.c_str(), path.c_str()) != 0) {
    sys::Unlink(temp.c_str());
    return false;
  }
  // The new name is in place; flushing the directory makes it survive a
  // power cut. Should that flush fail, the file is still complete.
  SincronizzaCartella(CartellaDi(path));
  return true;
}

EsitoCreazione CreaFileEsclusivo(const std::string& path, const void* data, size_t size) {
  const iovec intero = {const_cast<void*>(data), size};
  return CreaFileEsclusivo(path, &intero, 1);
}

EsitoCreazione CreaFileEsclusivo(const std::string& path, const iovec* pezzi, size_t n) {
  PulisciAvanzi(CartellaDi(path));
  const std::string temp = ScriviTemporaneo(path, pezzi, n, nullptr);
  if (temp.empty()) return EsitoCreazione::Errore;
  const EsitoCreazione esito = Rivendica(temp, path);
  if (esito != EsitoCreazione::Creato) sys::Unlink(temp.c_str());
  if (esito == EsitoCreazione::Creato) SincronizzaCartella(CartellaDi(path));
  return esito;
}

}  // namespace vektkk
