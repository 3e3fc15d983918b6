// The text listing of a summary, as docs/summary-format.md describes it:
// one line per record, sixteen columns separated by ";", independent of the
// locale.
#include <stdio.h>
#include <string.h>

#include <charconv>
#include <cmath>
#include <new>

#include "foundation/LittleEndian.h"
#include "foundation/LogEvento.h"
#include "summary/CFileRiassuntivo.h"
#include "summary/Riassunto.h"
#include "foundation/DurableFile.h"

namespace vektkk {
namespace riassunto {
namespace {

const char kIntestazione[] =
    "Name;Country;State;RifLat;RIfLon;RifAlt;Length;BeaconNumber;BeaconType;VariantIdx;"
    "FileName;Guid;Date;OffsetFw;OffsetPti;Dummy\n";

// Length of the well-formed UTF-8 sequence of several bytes at p, or 0.
size_t SequenzaUtf8(const unsigned char* p, size_t n) {
  const unsigned char c = p[0];
  size_t len;
  unsigned char min2 = 0x80, max2 = 0xBF;
  if (c >= 0xC2 && c <= 0xDF) {
    len = 2;
  } else if (c >= 0xE0 && c <= 0xEF) {
    len = 3;
    if (c == 0xE0) min2 = 0xA0;
    if (c == 0xED) max2 = 0x9F;
  } else if (c >= 0xF0 && c <= 0xF4) {
    len = 4;
    if (c == 0xF0) min2 = 0x90;
    if (c == 0xF4) max2 = 0x8F;
  } else {
    return 0;
  }
  if (len > n || p[1] < min2 || p[1] > max2) return 0;
  for (size_t i = 2; i < len; ++i)
    if (p[i] < 0x80 || p[i] > 0xBF) return 0;
  return len;
}

// A text field up to its first zero byte (at most `dim` bytes). Well-formed
// UTF-8 stays as it is; ";", "%", control bytes and bytes that are not
// well-formed UTF-8 become "%" and two upper-case hex digits.
void Testo(std::string& out, const char* campo, size_t dim) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(campo);
  const size_t n = strnlen(campo, dim);
  for (size_t i = 0; i < n;) {
    const unsigned char c = p[i];
    if (c >= 0x80) {
      const size_t len = SequenzaUtf8(p + i, n - i);
      if (len > 0) {
        out.append(campo + i, len);
        i += len;
        continue;
      }
    } else if (c >= 0x20 && c != 0x7F && c != ';' && c != '%') {
      out += static_cast<char>(c);
      ++i;
      continue;
    }
    static const char kHex[] = "0123456789ABCDEF";
    out += '%';
    out += kHex[c >> 4];
    out += kHex[c & 0xF];
    ++i;
  }
}

void Intero(std::string& out, long long v) {
  char buf[24];
  const std::to_chars_result r = std::to_chars(buf, buf + sizeof buf, v);
  out.append(buf, r.ptr);
}

// Bit fields of a word, from the least significant, joined by ":".
void Campi(std::string& out, uint64_t word, const int* larghezze, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    if (i > 0) out += ':';
    Intero(out, static_cast<long long>(word & ((uint64_t{1} << larghezze[i]) - 1)));
    word >>= larghezze[i];
  }
}

void Riga(std::string& out, const _SDatoRiassuntivo& r) {
  Testo(out, r.Name, sizeof r.Name);
  out += ';';
  Testo(out, r.Country, sizeof r.Country);
  out += ';';
  Testo(out, r.State, sizeof r.State);
  for (const int32_t v : {r.RifLat, r.RIfLon, r.RifAlt}) {
    out += ';';
    Intero(out, v);
  }
  out += ';';
  const double lunghezza = r.Length;
  if (std::isnan(lunghezza)) {
    out += "nan";
  } else {
    char buf[64];
    const std::to_chars_result t =
        std::to_chars(buf, buf + sizeof buf, lunghezza, std::chars_format::fixed, 2);
    out.append(buf, t.ptr);
  }
  const long long numeri[] = {r.BeaconNumber, r.BeaconType, r.VariantIdx};
  for (const long long v : numeri) {
    out += ';';
    Intero(out, v);
  }
  out += ';';
  Testo(out, r.FileName, sizeof r.FileName);
  out += ';';
  // GUID: random number, seconds, minutes, hours, day - 1, month 0-11,
  // years since 2015, type flag, development flag, bits 49-63.
  static const int kGuid[] = {16, 6, 6, 5, 5, 4, 5, 1, 1, 15};
  Campi(out, DecodeFixed64(r.Guid.Byte), kGuid, sizeof kGuid / sizeof kGuid[0]);
  out += ';';
  // Date: seconds, minutes, hours, day - 1, month 0-11, years since 2015,
  // spare bit.
  static const int kData[] = {6, 6, 5, 5, 4, 5, 1};
  Campi(out, r.Date.Valore, kData, sizeof kData / sizeof kData[0]);
  const long long offset[] = {r.OffsetFw, r.OffsetPti};
  for (const long long v : offset) {
    out += ';';
    Intero(out, v);
  }
  out += ';';
  static const char kHex[] = "0123456789abcdef";
  for (const unsigned char b : r.Dummy) {
    out += kHex[b >> 4];
    out += kHex[b & 0xF];
  }
  out += '\n';
}

}  // namespace

std::string TestoRiassuntivo(const Lista& lista, size_t& nulli) {
  std::string out(kIntestazione);
  out.reserve(out.size() + lista.size() * 256);
  nulli = 0;
  for (const _SDatoRiassuntivo* r : lista) {
    if (r == nullptr)
      ++nulli;
    else
      Riga(out, *r);
  }
  return out;
}

}  // namespace riassunto
}  // namespace vektkk

bool CFileRiassuntivo::ScriviRiassuntivoTestuale(const std::vector<_SDatoRiassuntivo*>& lista,
                                                 const std::string& path) {
  size_t nulli = 0;
  bool scritto = false;
  try {
    const std::string testo = vektkk::riassunto::TestoRiassuntivo(lista, nulli);
    scritto = vektkk::ScriviFileAtomico(path, testo.data(), testo.size());
  } catch (const std::bad_alloc&) {
  }
  if (!scritto) {
    LogEvento(kError.Priorita, kError.Parola, "file %s is already open", path.c_str());
    return false;
  }
  for (size_t i = 0; i < nulli; ++i) LogEvento(kError.Priorita, kError.Parola, "pvar empty pointer");
  return true;
}

bool CFileRiassuntivo::CreaFileAlfabSortedConNazioneTestuale(const std::string& path) {
  Applica();
  std::vector<_SDatoRiassuntivo*> ordinati;
  try {
    const std::vector<uint32_t> ordine =
        vektkk::riassunto::Ordina(Riassunti, vektkk::riassunto::Ordine::AlfabeticoConNazione);
    ordinati.reserve(ordine.size());
    for (uint32_t p : ordine) ordinati.push_back(Riassunti[p]);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return ScriviRiassuntivoTestuale(ordinati, path);
}
