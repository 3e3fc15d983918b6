#include "foundation/DurableFile.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <time.h>
#include <unistd.h>

namespace vektkk {
namespace {

std::string NomeDi(const std::string& path) { return path.substr(CartellaDi(path).size()); }

bool ScriviTutto(int fd, const unsigned char* data, size_t size) {
  while (size > 0) {
    const ssize_t n = write(fd, data, size);
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    data += n;
    size -= static_cast<size_t>(n);
  }
  return true;
}

bool SincronizzaCartella(const std::string& dir) {
  const int fd = open(dir.empty() ? "." : dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return false;
  const bool ok = fsync(fd) == 0;
  close(fd);
  return ok;
}

// Opens a new temporary file beside `path`, created with mode 0666 less the
// umask like any file the library makes. The name comes from the process id,
// a counter and the clock: rand() belongs to the host and is never touched.
int ApriTemporaneo(const std::string& path, std::string& temp) {
  static unsigned long contatore = 0;
  for (int tentativo = 0; tentativo < 100; ++tentativo) {
    timespec ora;
    clock_gettime(CLOCK_MONOTONIC, &ora);
    char suffisso[64];
    snprintf(suffisso, sizeof suffisso, ".tmp.%ld.%lu.%ld", static_cast<long>(getpid()),
             ++contatore, static_cast<long>(ora.tv_nsec));
    temp = CartellaDi(path) + "." + NomeDi(path) + suffisso;
    const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0 || errno != EEXIST) return fd;
  }
  return -1;
}

// Writes the bytes to a new temporary file beside `path` and flushes them;
// returns its name, or "" (with nothing left behind) on failure.
std::string ScriviTemporaneo(const std::string& path, const void* data, size_t size) {
  std::string temp;
  const int fd = ApriTemporaneo(path, temp);
  if (fd < 0) return "";
  bool ok = ScriviTutto(fd, static_cast<const unsigned char*>(data), size);
  ok = ok && fsync(fd) == 0;
  ok = close(fd) == 0 && ok;
  if (!ok) {
    unlink(temp.c_str());
    return "";
  }
  return temp;
}

// Gives the complete temporary file the name `path` only if no file has
// it, in one step. link() never replaces a name; file systems without hard
// links (the FAT family of memory cards) get an exclusive rename instead, or,
// where even that is missing, an empty placeholder created exclusively and
// then replaced by the rename. Consumes `temp` on success.
EsitoCreazione Rivendica(const std::string& temp, const std::string& path) {
  if (link(temp.c_str(), path.c_str()) == 0) {
    unlink(temp.c_str());
    return EsitoCreazione::Creato;
  }
  if (errno == EEXIST) return EsitoCreazione::GiaEsistente;
  if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS) return EsitoCreazione::Errore;
  if (renameat2(AT_FDCWD, temp.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0)
    return EsitoCreazione::Creato;
  if (errno == EEXIST) return EsitoCreazione::GiaEsistente;
  if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) return EsitoCreazione::Errore;
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) return errno == EEXIST ? EsitoCreazione::GiaEsistente : EsitoCreazione::Errore;
  close(fd);
  if (rename(temp.c_str(), path.c_str()) == 0) return EsitoCreazione::Creato;
  unlink(path.c_str());
  return EsitoCreazione::Errore;
}

}  // namespace

std::string CartellaDi(const std::string& path) {
  const size_t sep = path.find_last_of("/\\");
  return sep == std::string::npos ? std::string() : path.substr(0, sep + 1);
}

bool ScriviFileAtomico(const std::string& path, const void* data, size_t size) {
  const std::string temp = ScriviTemporaneo(path, data, size);
  if (temp.empty()) return false;
  if (rename(temp.c_str(), path.c_str()) != 0) {
    unlink(temp.c_str());
    return false;
  }
  // The new name is in place; flushing the directory makes it survive a
  // power cut. Should that flush fail, the file is still complete.
  SincronizzaCartella(CartellaDi(path));
  return true;
}

EsitoCreazione CreaFileEsclusivo(const std::string& path, const void* data, size_t size) {
  const std::string temp = ScriviTemporaneo(path, data, size);
  if (temp.empty()) return EsitoCreazione::Errore;
  const EsitoCreazione esito = Rivendica(temp, path);
  if (esito != EsitoCreazione::Creato) unlink(temp.c_str());
  if (esito == EsitoCreazione::Creato) SincronizzaCartella(CartellaDi(path));
  return esito;
}

}  // namespace vektkk
