#ifndef VEKTKK_SRC_SUMMARY_CFILERIASSUNTIVO_H
#define VEKTKK_SRC_SUMMARY_CFILERIASSUNTIVO_H

#include <stdint.h>

#include <string>
#include <vector>

#include "IFileRiassuntivo.h"
#include "summary/TabellaPosizioni.h"

// The summary object behind IFileRiassuntivo. Internal: hosts reach it only
// through the interface. It owns its records, each allocated singly.
//
// Every operation gives the results of the summary's literal algorithms
// (linear searches, first match wins, positions count null entries), but at near-linear cost: records are found again through hash
// tables of their bytes or file names instead of linear scans. DelFileTkk
// counts a name's records out at once and leaves them in the list; the next
// operation that looks at the list takes out, in one pass, all the records
// of the names removed since: the same records, in the same order, as one
// search from the start per removal gives.
class CFileRiassuntivo : public IFileRiassuntivo {
 public:
  CFileRiassuntivo();
  // Starts empty and reads the binary summary file at `path`.
  explicit CFileRiassuntivo(const std::string& path);
  ~CFileRiassuntivo() override;
  CFileRiassuntivo(const CFileRiassuntivo&) = delete;
  CFileRiassuntivo& operator=(const CFileRiassuntivo&) = delete;

  bool ConfrontaConAltro(IFileRiassuntivo& altro, SConfrontoPiste& esito) override;
  bool ConfrontaConAltroEsteso(IFileRiassuntivo& altro, SConfrontoPisteEsteso& esito) override;
  bool SalvaFileDev(const std::string& path) override;
  bool CreaFileAlfabSortedSenzaNazione(const std::string& path1, const std::string& path2,
                                       const std::string& path3) override;
  bool CreaFileAlfabSortedConNazione(const std::string& path1, const std::string& path2,
                                     const std::string& path3) override;
  bool CreaFileLatLonSorted(const std::string& path1, const std::string& path2,
                            const std::string& path3) override;
  bool CreaFileGuidSorted(const std::string& path1, const std::string& path2,
                          const std::string& path3) override;
  void AddVarianteTkk(const IFileTkk* track, short idx) override;
  int DelFileTkk(const std::string& nome) override;
  bool IsThisFileTkkHere(const std::string& nome) override;
  void GetDatiRiassuntivi(std::vector<const _SDatoRiassuntivo*>& out) override;
  bool GetDatoRiassuntivo(const _SDatoRiassuntivo*& out, int idx) override;
  int GetNumRiassuntivi() override;
  void LeggiRiassuntivo(const std::string& path) override;
  int GetDatoRiassuntivoNearest(double lat, double lon) override;
  int getNearestTracksByHeaversine(double lat, double lon, int maxDist,
                                   std::vector<int>& out) override;
  bool CreaFileAlfabSortedConNazioneTestuale(const std::string& path) override;
  bool AddFromDir(const std::string& dir) override;
  bool CreaDaDirettorio(const std::string& dir) override;
  bool AggiungiDaDirettorio(const std::string& dir) override;

  // Frees every record and empties the list.
  void SvuotaVarianti();
  // Writes the non-null records of `lista`, packed, as a binary summary file
  // (atomic replacement; an empty list gives an empty file). Silent.
  static void ScriviRiassuntivo(const std::vector<_SDatoRiassuntivo*>& lista,
                                const std::string& path);
  // Writes, for every non-null record of `a`, the position of the first
  // byte-identical record of `b` (null entries counted, modulo 65536) or
  // 0xFFFF, as little-endian uint16. Nothing is written when `a` is empty.
  static void CalcolaAndScriviIdx(const std::vector<_SDatoRiassuntivo*>& a,
                                  const std::vector<_SDatoRiassuntivo*>& b,
                                  const std::string& path);
  // The text listing of `lista`. False, after an ERROR report, when the file
  // could not be written.
  static bool ScriviRiassuntivoTestuale(const std::vector<_SDatoRiassuntivo*>& lista,
                                        const std::string& path);

  // The record list itself (for the library's own tests and tools), which
  // the caller may change.
  std::vector<_SDatoRiassuntivo*>& Lista();

 private:
  // Takes out the records of the names that DelFileTkk removed.
  void Applica();
  // Frees a record (those read from a file go with their block).
  void Libera(_SDatoRiassuntivo* r);
  // Counts the records of each name, when they are not counted yet.
  void Conta();

  std::vector<_SDatoRiassuntivo*> Riassunti;
  // The records of the last file read, allocated together.
  _SDatoRiassuntivo* Blocco = nullptr;
  size_t DimBlocco = 0;
  // Records per file name, while Contati; names removed and not yet taken
  // out of the list, and how many records they hold.
  vektkk::riassunto::ContaNomi PerNome;
  bool Contati = false;
  std::vector<uint64_t> NomiTolti;
  size_t Pendenti = 0;
};

#endif  // VEKTKK_SRC_SUMMARY_CFILERIASSUNTIVO_H
