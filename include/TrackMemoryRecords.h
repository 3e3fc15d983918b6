#ifndef VEKTKK_TRACKMEMORYRECORDS_H
#define VEKTKK_TRACKMEMORYRECORDS_H

// Records that a track file object keeps in memory beside the file records.

#include <string>
#include <vector>

#include "CFileTkk.h"
#include "TrackFileRecords.h"
#include "VekTkkExport.h"

class IFileTkk;

// One logo image.
struct VEKTKK_API SLogo {
  std::vector<unsigned char> Dati;  // the image bytes
  std::string NomeFile;             // full path of the external image file
};

// Additional texts of a track. They have no tag in the file: they live only
// as long as the object that holds them. Never converted between character
// sets.
struct VEKTKK_API STagDatiPlus {
  std::string Citta;
  std::string Address;
  std::string PostalCode;
  std::string Telephone;
  std::string URL;
  std::string Comment;
  std::string Nomignolo;
};

// One variant as a track file object holds it. The links point into the
// owner's lists (several variants may share one list) and are not owned.
struct VEKTKK_API STagsInfoVariante {
  const IFileTkk* Owner;
  std::string Nome;  // not read from the file
  _STagInfoVarianteTKK_fw InfoFw;
  _STagInfoVarianteTKK_sw InfoSw;
  _STagIndexesVarianteTKK Indici;
  CFileTkk::SFondiStradali* FondiStradali;
  CFileTkk::SPuntiTracciato* Punti;
  SLogo* Logo;
  std::string NomeFileLogoEsterno;
  STagDatiPlus* DatiPlus;

  // Default records (type 1, time zone 50, beacon type 1, no indexes) and no
  // links.
  explicit STagsInfoVariante(const IFileTkk* owner);
};

#endif  // VEKTKK_TRACKMEMORYRECORDS_H
