// Construction, ownership and the plain accessors of the track file object.
#include "CFileTkk.h"

#include <string.h>

#include <new>

#include "CVarianteTkk.h"
#include "TrackMemoryRecords.h"
#include "platform/IStrConv.h"
#include "trackfile/TextFields.h"
#include "trackfile/TrackFileFormat.h"

using vektkk::tkk::kLunghezzaNome;

IFileTkk* IFileTkk::CreateMe(bool readOnly, bool dev) {
  return new (std::nothrow) CFileTkk(readOnly, dev);
}

IFileTkk* IFileTkk::CreateMeUponFile(const std::string& path, bool soloLettura, bool senzaLogo) {
  try {
    return new CFileTkk(path, soloLettura, senzaLogo);
  } catch (...) {
    return nullptr;
  }
}

CFileTkk::CFileTkk(bool readOnly, bool dev)
    : TrackIsReadOnly(readOnly),
      DevTrack(dev),
      Good(true),
      SoloLettura(false),
      SenzaLogo(false),
      DimTkk(0) {
  memset(NomeFileDaFileSystem, 0, sizeof NomeFileDaFileSystem);
}

CFileTkk::CFileTkk(const std::string& path, bool soloLettura, bool senzaLogo)
    : TrackIsReadOnly(false),
      DevTrack(false),
      Good(false),
      SoloLettura(soloLettura),
      SenzaLogo(senzaLogo),
      DimTkk(0) {
  memset(NomeFileDaFileSystem, 0, sizeof NomeFileDaFileSystem);
  // The file-system name is kept only when the last path component is
  // exactly 8 characters, a dot and an extension.
  const size_t sep = path.find_last_of("\\/");
  const long s = sep == std::string::npos ? -1 : static_cast<long>(sep);
  const size_t dot = path.find_last_of('.');
  if (dot != std::string::npos) {
    const long d = static_cast<long>(dot);
    if (d - s == static_cast<long>(kLunghezzaNome) + 1)
      memcpy(NomeFileDaFileSystem, path.data() + s + 1, kLunghezzaNome);
  }
  Good = LeggiFile(path, false);
}

CFileTkk::~CFileTkk() { Svuota(); }

namespace {

// Deletes every record of an owned list and empties it.
template <typename T>
void Libera(std::vector<T*>& list) {
  for (T* item : list) delete item;
  list.clear();
}

}  // namespace

void CFileTkk::RicostruisciViste() {
  Libera(VariantiTrack);
  try {
    VariantiTrack.reserve(TagsInfoVarianti.size());
    for (STagsInfoVariante* record : TagsInfoVarianti) VariantiTrack.push_back(new CVarianteTkk(record));
  } catch (const std::bad_alloc&) {
    // Out of memory: fewer views than variants, never a throw.
  }
}

void CFileTkk::Svuota() {
  Libera(VariantiTrack);
  Libera(TagsInfoVarianti);
  Libera(TagsDatiPlus);
  Libera(FondiStradali);
  Libera(PuntiTracciato);
  Libera(Loghi);
  DimTkk = 0;
}

STagsInfoVariante* CFileTkk::GetTagInfo() {
  return TagsInfoVarianti.empty() ? nullptr : TagsInfoVarianti.front();
}

bool CFileTkk::IsTrashed() const { return false; }

// A maker's track and a read-only track are one and the same thing.
bool CFileTkk::GetTrackIsReadOnly() const { return TrackIsReadOnly; }
bool CFileTkk::IsVekTrack() const { return TrackIsReadOnly; }
bool CFileTkk::IsDevTrack() const { return DevTrack; }

// Both point into the main variant's records, not into the view.
const std::string* CFileTkk::GetTrackLogo() const { return VistaMain().GetTrackLogo(); }
SLogo* CFileTkk::GetTrackLogoBuffer() const { return VistaMain().GetTrackLogoBuffer(); }

short CFileTkk::GetIdxVariante() const { return static_cast<short>(GetIdxMainVariante()); }

bool CFileTkk::IsGood() const {
  if (TrackIsReadOnly && DevTrack) return false;
  for (const STagsInfoVariante* v : TagsInfoVarianti) {
    if (v == nullptr) continue;
    const uint8_t tipo = v->InfoFw.InfoBeacons.TipoBeaconInUso;
    if (tipo == 0 || tipo > BEACON_USER) return false;
  }
  return Good;
}

int32_t CFileTkk::GetIdxMainVariante() const { return TagInfoFile.IdxMainVariante; }

void CFileTkk::SetTagInfoFile(const std::string& name, const _STagInfoFileTKK& info) {
  TagInfoFile = info;
  if (!name.empty())
    vektkk::CopiaCampo(TagInfoFile.NamexSito, sizeof TagInfoFile.NamexSito,
                       IStrConv::convert_stringa_to_utf8(name));
}

const _STagInfoFileTKK& CFileTkk::GetTagInfoFile() const { return TagInfoFile; }

_UGuidTkk CFileTkk::GetGuidVariante(short i) const {
  const STagsInfoVariante* v = GetTagInfoVariante(i);
  return v != nullptr ? v->InfoFw.Guid : _UGuidTkk();
}

std::vector<STagsInfoVariante*>& CFileTkk::GetTagsInfoVarianti() { return TagsInfoVarianti; }

STagsInfoVariante* CFileTkk::GetTagInfoVariante(short i) const {
  // The count is taken as a signed 16-bit number; negative indexes are the
  // caller's mistake and are answered with null rather than read.
  const short count = static_cast<short>(TagsInfoVarianti.size());
  if (i < 0 || i >= count) return nullptr;
  return TagsInfoVarianti[static_cast<size_t>(i)];
}

uint32_t CFileTkk::GetDimTkk() const { return DimTkk; }

void CFileTkk::GetNomeFile(char* out) const {
  memcpy(out, NomeFileDaFileSystem, sizeof NomeFileDaFileSystem);
}
