#ifndef VEKTKK_SRC_TRACKFILE_LOGOFILES_H
#define VEKTKK_SRC_TRACKFILE_LOGOFILES_H

#include <stdint.h>

#include <string>
#include <unordered_map>
#include <vector>

#include "TrackMemoryRecords.h"

// Logos of a track file: embedded as "lgo" atoms (file name, a zero byte,
// the image) and kept as image files beside the track file.
namespace vektkk {

// The numbers already given to the images of one read, per name without the
// number: the next image of that name looks for a free number from there on,
// not from 1 again, so a file with many logos of one name costs linear time.
using NumeriLogo = std::unordered_map<std::string, unsigned long>;

// Completes a logo read from the track file at `trackPath` whose "lgo"
// payload stored the name `nome` (UTF-8) before the image already in
// logo.Dati: sets its NomeFile, and writes the image beside the track file
// when it has more than 5 bytes: under its own name when no such file exists
// yet, or, with `nuovoNomeLogo`, under the first free numbered name (base +
// n + extension). NomeFile keeps the name without a number.
void CompletaLogo(SLogo& logo, const std::string& nome, const std::string& trackPath,
                  bool nuovoNomeLogo, NumeriLogo& numeri);

// Whether a logo is saved, in the track file or as a file of its own: it
// has a name and an image of more than 9 bytes.
bool LogoDaSalvare(const SLogo* logo);

// The "lgo" payload of a logo: the file-name part of its NomeFile in UTF-8,
// a zero byte, then the image.
std::vector<unsigned char> PayloadLogo(const SLogo& logo);

// The file-name part of a path: what follows the last "/" or "\\".
std::string NomeSenzaCartella(const std::string& path);

}  // namespace vektkk

#endif  // VEKTKK_SRC_TRACKFILE_LOGOFILES_H
