// The summary record, the summary's factories, its life and its accessors.
#include "summary/CFileRiassuntivo.h"

#include <string.h>

#include <new>

_SDatoRiassuntivo::_SDatoRiassuntivo() {
  memset(static_cast<void*>(this), 0, sizeof *this);
  BeaconType = 1;
  Guid = _UGuidTkk();
  Date = _UDataOraTkk();
}

std::string _SDatoRiassuntivo::GetNomeFile() const {
  return std::string(FileName, sizeof FileName);
}

SPistaEstesa::SPistaEstesa() {
  memset(Country, 0, sizeof Country);
  memset(State, 0, sizeof State);
  memset(Name, 0, sizeof Name);
}

SPistaEstesa::SPistaEstesa(const std::string& nomeFile, const char* country,
                           const char* const& state, const char* name)
    : NomeFileTkk(nomeFile) {
  memcpy(Country, country, sizeof Country);
  memcpy(State, state, sizeof State);
  memcpy(Name, name, sizeof Name);
}

IFileRiassuntivo::~IFileRiassuntivo() {}

IFileRiassuntivo* IFileRiassuntivo::CreateMe() { return new (std::nothrow) CFileRiassuntivo(); }

IFileRiassuntivo* IFileRiassuntivo::CreateMeUponFile(const std::string& path) {
  try {
    return new CFileRiassuntivo(path);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

IFileRiassuntivo* IFileRiassuntivo::CreateMeUponDir(const std::string& dir) {
  IFileRiassuntivo* riassunto = CreateMe();
  if (riassunto != nullptr) riassunto->CreaDaDirettorio(dir);
  return riassunto;
}

CFileRiassuntivo::CFileRiassuntivo() {}

CFileRiassuntivo::CFileRiassuntivo(const std::string& path) { LeggiRiassuntivo(path); }

CFileRiassuntivo::~CFileRiassuntivo() { SvuotaVarianti(); }

void CFileRiassuntivo::Libera(_SDatoRiassuntivo* r) {
  const uintptr_t p = reinterpret_cast<uintptr_t>(r), inizio = reinterpret_cast<uintptr_t>(Blocco);
  if (Blocco == nullptr || p < inizio || p >= inizio + DimBlocco * sizeof *r) delete r;
}

void CFileRiassuntivo::SvuotaVarianti() {
  for (_SDatoRiassuntivo* r : Riassunti) Libera(r);
  Riassunti.clear();
  delete[] Blocco;
  Blocco = nullptr;
  DimBlocco = 0;
  Contati = false;
  NomiTolti.clear();
  Pendenti = 0;
}

std::vector<_SDatoRiassuntivo*>& CFileRiassuntivo::Lista() {
  Applica();
  Contati = false;
  return Riassunti;
}

void CFileRiassuntivo::GetDatiRiassuntivi(std::vector<const _SDatoRiassuntivo*>& out) {
  Applica();
  try {
    out.assign(Riassunti.begin(), Riassunti.end());
  } catch (const std::bad_alloc&) {
    out.clear();
  }
}

bool CFileRiassuntivo::GetDatoRiassuntivo(const _SDatoRiassuntivo*& out, int idx) {
  Applica();
  if (idx < 0 || static_cast<size_t>(idx) >= Riassunti.size()) {
    out = nullptr;
    return false;
  }
  out = Riassunti[static_cast<size_t>(idx)];
  return true;
}

int CFileRiassuntivo::GetNumRiassuntivi() {
  return static_cast<int>(Riassunti.size() - Pendenti);
}
