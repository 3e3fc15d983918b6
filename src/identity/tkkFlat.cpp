// Bit layouts of the two identifiers. Both embed a packed date word
// (_SDataOraTkk) whose spare top bit carries one of the flags:
//   track GUID:     word in bytes 2-5, type flag in its bit 31 (bit 47),
//                   development flag in bit 48, random in bytes 0-1;
//   file-name GUID: word in bytes 1-4, development flag in its bit 31
//                   (bit 39), type flag in bit 40, random in byte 0.
#include <string.h>

#include "DataOraTkk.h"
#include "foundation/LittleEndian.h"
#include "tkkFlat.h"

namespace {

const char kAlfabeto[] = "0123456789abcdefghijklmnopqrstuvwxyz";
constexpr unsigned kBase = 36;
constexpr int kCifre = 8;
constexpr uint32_t kSpareBit = 0x80000000u;

uint32_t PackTime(const struct tm* when, bool spareBit) {
  _UDataOraTkk word;
  word.Valore = spareBit ? kSpareBit : 0u;
  word.DataOra.CopiaDaTm(*when);
  return word.Valore;
}

// Writes only the six date and time members; the rest of `when` is the
// caller's and stays as it was.
void UnpackTime(uint32_t value, struct tm* when) {
  _UDataOraTkk word;
  word.Valore = value;
  when->tm_year = static_cast<int>(word.DataOra.Anno) + 115;
  when->tm_mon = static_cast<int>(word.DataOra.Mese);
  when->tm_mday = static_cast<int>(word.DataOra.Giorno) + 1;
  when->tm_hour = static_cast<int>(word.DataOra.Ore);
  when->tm_min = static_cast<int>(word.DataOra.Minuti);
  when->tm_sec = static_cast<int>(word.DataOra.Secondi);
}

}  // namespace

extern "C" {

int tkkIsTipoVek(int typeBit) { return typeBit == 0 ? 1 : 0; }

int tkkIsDev(int devBit) { return devBit != 0 ? 1 : 0; }

void tkkGenerateGuid(unsigned char* out8, int isVek, int isDev, const struct tm* when,
                     unsigned int random) {
  memset(out8, 0, 8);
  vektkk::EncodeFixed32(out8 + 2, PackTime(when, isVek == 0));
  out8[6] = static_cast<unsigned char>(isDev & 1);
  out8[0] = static_cast<unsigned char>(random);
  out8[1] = static_cast<unsigned char>(random >> 8);
}

void tkkDecodeGuid(const unsigned char* in8, unsigned char* isVek, unsigned char* isDev,
                   struct tm* when) {
  const uint32_t word = vektkk::DecodeFixed32(in8 + 2);
  *isVek = static_cast<unsigned char>(tkkIsTipoVek(static_cast<int>(word >> 31)));
  *isDev = static_cast<unsigned char>(in8[6] & 1);
  UnpackTime(word, when);
}

void tkkGenerateGuidNomeFile(unsigned char* out8, int isVek, int isDev, const struct tm* when,
                             int random) {
  memset(out8, 0, 8);
  // Only the lowest bit of isDev survives the shift into one byte.
  const bool devBit = (static_cast<unsigned char>(isDev << 7) & 0x80) != 0;
  vektkk::EncodeFixed32(out8 + 1, PackTime(when, devBit));
  out8[5] = static_cast<unsigned char>(tkkIsTipoVek(isVek));
  out8[0] = static_cast<unsigned char>(random);
}

void tkkDecodeGuidNomeFile(const unsigned char* in8, unsigned char* isVek, unsigned char* isDev,
                           struct tm* when) {
  const uint32_t word = vektkk::DecodeFixed32(in8 + 1);
  *isVek = static_cast<unsigned char>(tkkIsTipoVek(in8[5] & 1));
  *isDev = static_cast<unsigned char>(word >> 31);
  UnpackTime(word, when);
}

void tkkGetNomeFileFromGuid(char* out9, const unsigned char* in8) {
  uint64_t value = vektkk::DecodeFixed64(in8);
  int pos = kCifre - 1;
  // At least one digit; digits beyond the eighth would be dropped, but no
  // valid layout has any.
  do {
    out9[pos--] = kAlfabeto[value % kBase];
    value /= kBase;
  } while (value != 0 && pos >= 0);
  while (pos >= 0) out9[pos--] = '0';
  out9[kCifre] = '\0';
}

int tkkGetGuidFromNomeFile(unsigned char* out8, const char* in) {
  uint64_t value = vektkk::DecodeFixed64(out8);
  uint64_t weight = 1;
  int ok = 1;
  // The digits are added from the last one: a shorter text has none, and
  // nothing past its terminator is read.
  const size_t length = strnlen(in, kCifre);
  for (int pos = kCifre - 1; pos >= 0; --pos, weight *= kBase) {
    const char* found =
        static_cast<size_t>(pos) < length ? strchr(kAlfabeto, in[pos]) : nullptr;
    if (found == nullptr) {
      ok = 0;
      break;
    }
    value += static_cast<uint64_t>(found - kAlfabeto) * weight;
  }
  vektkk::EncodeFixed64(out8, value);
  return ok;
}

}  // extern "C"
