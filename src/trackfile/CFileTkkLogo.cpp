// Loading a logo image for the main variant.
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>

#include "CFileTkk.h"
#include "TrackMemoryRecords.h"
#include "foundation/SistemaFile.h"
#include "foundation/LogEvento.h"

std::string GetNomeFileEsterno(const std::string& /*path*/) { return std::string(); }

uint32_t CFileTkk::SaveTrackFileLogoBuffer(std::vector<unsigned char>& buffer,
                                           const std::string& path) {
  if (SenzaLogo) {
    LogEvento(kNotice.Priorita, kNotice.Parola, "Forced no logo hence read only");
    return 0;
  }
  buffer.clear();
  // Only a regular file is read; O_NONBLOCK keeps a FIFO from waiting.
  const int fd = vektkk::sys::Open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return 0;
  uint32_t letti = 0;
  struct stat st;
  if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0 &&
      static_cast<uint64_t>(st.st_size) <= 0xFFFFFFFFu) {
    try {
      buffer.resize(static_cast<size_t>(st.st_size));
      while (letti < buffer.size()) {
        const ssize_t n = vektkk::sys::Read(fd, buffer.data() + letti, buffer.size() - letti);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        letti += static_cast<uint32_t>(n);
      }
    } catch (const std::bad_alloc&) {
      // Nothing read: the size check below gives 0.
    }
    if (letti != buffer.size()) letti = 0;
  }
  vektkk::sys::Close(fd);
  if (letti == 0) buffer.clear();
  return letti;
}

void CFileTkk::SetTrackLogo(const std::string& path) {
  // Only the "no logo" flag stops this; a read-only object still takes a
  // logo in memory.
  if (SenzaLogo || TagsInfoVarianti.empty() || TagsInfoVarianti.front() == nullptr) return;
  STagsInfoVariante* main = TagsInfoVarianti.front();
  try {
    if (main->Logo == nullptr) {
      Loghi.reserve(Loghi.size() + 1);
      main->Logo = new SLogo;
      Loghi.push_back(main->Logo);
      // Both indexes are written as one 32-bit zero, whatever position the
      // new logo took; existing files carry this.
      main->Indici.IdxLogo = 0;
      main->Indici.IdxDatiPlus = 0;
    }
  } catch (const std::bad_alloc&) {
    return;
  }
  SLogo* logo = main->Logo;
  if (SaveTrackFileLogoBuffer(logo->Dati, path) > 0) {
    const size_t slash = path.find_last_of('/');
    if (slash != std::string::npos) logo->NomeFile = path.substr(slash + 1);
  } else {
    logo->NomeFile.clear();  // the failed read left the image empty
    main->Indici.IdxLogo = 0xFFFF;
    main->Indici.IdxDatiPlus = 0xFFFF;
  }
}
