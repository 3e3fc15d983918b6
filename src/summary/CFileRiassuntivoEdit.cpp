// Building and editing the summary.
#include <string.h>

#include <algorithm>
#include <memory>
#include <new>

#include "CFileTkk.h"
#include "TrackMemoryRecords.h"
#include "summary/CFileRiassuntivo.h"
#include "summary/Riassunto.h"

using vektkk::riassunto::ChiaveNome;
using vektkk::riassunto::STrovaNomeFile;

void CFileRiassuntivo::AddVarianteTkk(const IFileTkk* track, short idx) {
  const CFileTkk* file = dynamic_cast<const CFileTkk*>(track);
  if (file == nullptr || !file->IsGood()) return;
  const STagsInfoVariante* variante = file->GetTagInfoVariante(idx);
  if (variante == nullptr) return;
  const _STagInfoVarianteTKK_fw& info = variante->InfoFw;
  Applica();
  try {
    std::unique_ptr<_SDatoRiassuntivo> r(new _SDatoRiassuntivo);
    memcpy(r->Name, info.NomeXDevice, sizeof r->Name);
    memcpy(r->Country, info.NationCode, sizeof r->Country);
    memcpy(r->State, info.SubNationCode, sizeof r->State);
    // The reference point: the 12 bytes after the length, as they are.
    memcpy(&r->RifLat, &info.LatRif, 12);
    r->Length = info.Lunghezza;
    r->BeaconNumber = static_cast<uint8_t>(info.InfoBeacons.GetNumeroSplit(BEACON_IN_USO));
    r->BeaconType = info.InfoBeacons.TipoBeaconInUso;
    r->VariantIdx = idx;
    file->GetNomeFile(r->FileName);
    r->Guid = info.Guid;
    r->Date = info.DataModifica;
    r->OffsetFw = file->GetOffsetDatiFw(idx);
    r->OffsetPti = file->GetOffsetPti(idx);
    Riassunti.push_back(r.get());
    const _SDatoRiassuntivo* nuovo = r.release();
    if (Contati) PerNome.Aggiungi(ChiaveNome(nuovo->FileName));
  } catch (const std::bad_alloc&) {
    Contati = false;
  }
}

void CFileRiassuntivo::Conta() {
  if (Contati) return;
  PerNome.Costruisci(Riassunti);
  Contati = true;
}

void CFileRiassuntivo::Applica() {
  if (NomiTolti.empty()) return;
  // One pass that frees the records of the removed names and closes the
  // gaps, keeping the order of the others. The table of names, kept since
  // the names were removed, marks them.
  _SDatoRiassuntivo** const lista = Riassunti.data();
  const size_t n = Riassunti.size();
  size_t tenuti = 0;
  for (size_t i = 0; i < n; ++i) {
    _SDatoRiassuntivo* r = lista[i];
    if (PerNome.ToltoInPosizione(i, r))
      Libera(r);
    else
      lista[tenuti++] = r;
  }
  Riassunti.resize(tenuti);
  for (uint64_t nome : NomiTolti) PerNome.TogliSegno(nome);
  // Positions have moved: the table searches by name from now on.
  PerNome.DimenticaPosizioni();
  NomiTolti.clear();
  Pendenti = 0;
}

int CFileRiassuntivo::DelFileTkk(const std::string& nome) {
  const uint64_t chiave = ChiaveNome(STrovaNomeFile(nome).Nome);
  try {
    Conta();
    const uint32_t quanti = PerNome.Togli(chiave);
    if (quanti > 0) {
      NomiTolti.push_back(chiave);
      Pendenti += quanti;
    }
  } catch (const std::bad_alloc&) {
    // No memory for the tables: remove the records at once.
    Contati = false;
    Applica();
    PerNome.TogliSegno(chiave);
    const STrovaNomeFile trova(nome);
    auto fine = std::remove_if(Riassunti.begin(), Riassunti.end(), [&](_SDatoRiassuntivo* r) {
      if (!trova(r)) return false;
      Libera(r);
      return true;
    });
    Riassunti.erase(fine, Riassunti.end());
  }
  return GetNumRiassuntivi();
}

bool CFileRiassuntivo::IsThisFileTkkHere(const std::string& nome) {
  const STrovaNomeFile trova(nome);
  try {
    Conta();
    return PerNome.Quanti(ChiaveNome(trova.Nome)) > 0;
  } catch (const std::bad_alloc&) {
    Contati = false;
    Applica();
    return std::find_if(Riassunti.begin(), Riassunti.end(), trova) != Riassunti.end();
  }
}

bool CFileRiassuntivo::AddFromDir(const std::string& dir) { return AggiungiDaDirettorio(dir); }

bool CFileRiassuntivo::CreaDaDirettorio(const std::string&) { return false; }

bool CFileRiassuntivo::AggiungiDaDirettorio(const std::string&) { return false; }
