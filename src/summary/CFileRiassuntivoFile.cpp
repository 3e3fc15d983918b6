// The binary summary file, the cross-index file and the sorted sets.
// Every file is replaced atomically; nothing is reported.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <errno.h>
#include <string.h>

#include <memory>
#include <new>

#include "foundation/SistemaFile.h"
#include "foundation/DurableFile.h"
#include "foundation/LittleEndian.h"
#include "summary/CFileRiassuntivo.h"
#include "summary/Riassunto.h"

using vektkk::riassunto::Lista;
using vektkk::riassunto::Ordine;

namespace {

constexpr size_t kDim = sizeof(_SDatoRiassuntivo);

// A file of `size` bytes whose records alone would not fit in the machine's
// memory is not read (the answer is an empty summary, as for any file that
// cannot be read).
bool TroppoGrande(off_t size) {
  const long pagine = sysconf(_SC_PHYS_PAGES);
  const long pagina = sysconf(_SC_PAGESIZE);
  if (pagine <= 0 || pagina <= 0) return false;
  const double memoria = static_cast<double>(pagine) * static_cast<double>(pagina);
  return static_cast<double>(size) / kDim * (kDim + 2 * sizeof(void*)) > memoria;
}

// Reads exactly `size` bytes; false on an error or an early end.
bool LeggiEsatti(int fd, unsigned char* dove, size_t size) {
  while (size > 0) {
    const ssize_t n = vektkk::sys::Read(fd, dove, size);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    dove += n;
    size -= static_cast<size_t>(n);
  }
  return true;
}

void ScriviIndici(const std::vector<uint16_t>& indici, const std::string& path) {
  if (indici.empty()) return;
  std::vector<unsigned char> bytes(2 * indici.size());
  for (size_t i = 0; i < indici.size(); ++i) vektkk::EncodeFixed16(&bytes[2 * i], indici[i]);
  vektkk::ScriviFileAtomico(path, bytes.data(), bytes.size());
}

bool ScriviInsieme(const Lista& riassunti, Ordine primo, Ordine secondo, Ordine terzo,
                   const std::string& path1, const std::string& path2,
                   const std::string& path3) {
  if (riassunti.empty()) return false;
  try {
    const vektkk::riassunto::InsiemeOrdinato insieme = vektkk::riassunto::CalcolaInsieme(
        riassunti, primo, secondo, terzo, !path2.empty(), !path3.empty());
    CFileRiassuntivo::ScriviRiassuntivo(insieme.Primario, path1);
    if (!path2.empty()) ScriviIndici(insieme.Indice2, path2);
    if (!path3.empty()) ScriviIndici(insieme.Indice3, path3);
  } catch (const std::bad_alloc&) {
  }
  return true;
}

}  // namespace

void CFileRiassuntivo::ScriviRiassuntivo(const std::vector<_SDatoRiassuntivo*>& lista,
                                         const std::string& path) {
  try {
    size_t k = 0;
    for (const _SDatoRiassuntivo* r : lista) k += r != nullptr;
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[k * kDim + 1]);
    unsigned char* p = bytes.get();
    for (const _SDatoRiassuntivo* r : lista) {
      if (r == nullptr) continue;
      memcpy(p, r, kDim);
      p += kDim;
    }
    vektkk::ScriviFileAtomico(path, bytes.get(), k * kDim);
  } catch (const std::bad_alloc&) {
  }
}

void CFileRiassuntivo::LeggiRiassuntivo(const std::string& path) {
  SvuotaVarianti();
  // Not blocking on a FIFO: only a regular file is read.
  const int fd = vektkk::sys::Open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return;
  struct stat st;
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size % kDim != 0 ||
      TroppoGrande(st.st_size)) {
    vektkk::sys::Close(fd);
    return;
  }
  try {
    // One block for all the records, read in place.
    const size_t n = static_cast<size_t>(st.st_size) / kDim;
    if (n > 0) {
      Riassunti.reserve(n);
      Blocco = new _SDatoRiassuntivo[n];
      DimBlocco = n;
      if (LeggiEsatti(fd, reinterpret_cast<unsigned char*>(Blocco), n * kDim))
        for (size_t i = 0; i < n; ++i) Riassunti.push_back(Blocco + i);
      else
        SvuotaVarianti();
    }
  } catch (const std::bad_alloc&) {
    SvuotaVarianti();
  }
  vektkk::sys::Close(fd);
}

bool CFileRiassuntivo::SalvaFileDev(const std::string& path) {
  Applica();
  ScriviRiassuntivo(Riassunti, path);
  return true;
}

void CFileRiassuntivo::CalcolaAndScriviIdx(const std::vector<_SDatoRiassuntivo*>& a,
                                           const std::vector<_SDatoRiassuntivo*>& b,
                                           const std::string& path) {
  try {
    ScriviIndici(vektkk::riassunto::IndiciIncrociati(a, b), path);
  } catch (const std::bad_alloc&) {
  }
}

bool CFileRiassuntivo::CreaFileAlfabSortedSenzaNazione(const std::string& path1,
                                                       const std::string& path2,
                                                       const std::string& path3) {
  Applica();
  return ScriviInsieme(Riassunti, Ordine::AlfabeticoSenzaNazione, Ordine::LatLon, Ordine::Guid,
                       path1, path2, path3);
}

bool CFileRiassuntivo::CreaFileAlfabSortedConNazione(const std::string& path1,
                                                     const std::string& path2,
                                                     const std::string& path3) {
  Applica();
  return ScriviInsieme(Riassunti, Ordine::AlfabeticoConNazione, Ordine::LatLon, Ordine::Guid,
                       path1, path2, path3);
}

bool CFileRiassuntivo::CreaFileLatLonSorted(const std::string& path1, const std::string& path2,
                                            const std::string& path3) {
  Applica();
  return ScriviInsieme(Riassunti, Ordine::LatLon, Ordine::AlfabeticoSenzaNazione, Ordine::Guid,
                       path1, path2, path3);
}

bool CFileRiassuntivo::CreaFileGuidSorted(const std::string& path1, const std::string& path2,
                                          const std::string& path3) {
  Applica();
  return ScriviInsieme(Riassunti, Ordine::Guid, Ordine::AlfabeticoSenzaNazione, Ordine::LatLon,
                       path1, path2, path3);
}
