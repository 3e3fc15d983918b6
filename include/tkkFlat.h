#ifndef VEKTKK_TKKFLAT_H
#define VEKTKK_TKKFLAT_H

/* Plain functions with unmangled names for hosts that cannot use the class
 * interface. They keep no state, never allocate, never report and do not test
 * their pointers; the caller passes the time. GUIDs and file-name GUIDs are
 * 8-byte buffers; flags are integers used as booleans. */

#include <time.h>

#include "VekTkkExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/* 1 for 0, 0 for any other value (the stored type flag is 0 for the maker's
 * own track type). */
VEKTKK_API int tkkIsTipoVek(int typeBit);
/* 1 for any non-zero value, else 0. */
VEKTKK_API int tkkIsDev(int devBit);

/* Packs a track GUID; only the low 16 bits of `random` and the lowest bit of
 * `isDev` are used. */
VEKTKK_API void tkkGenerateGuid(unsigned char* out8, int isVek, int isDev, const struct tm* when,
                                unsigned int random);
/* Unpacks a track GUID; of `when` only year, month, day, hour, minute and
 * second are written. */
VEKTKK_API void tkkDecodeGuid(const unsigned char* in8, unsigned char* isVek, unsigned char* isDev,
                              struct tm* when);

/* Packs a file-name GUID; only the low 8 bits of `random` and the lowest bit
 * of `isDev` are used. */
VEKTKK_API void tkkGenerateGuidNomeFile(unsigned char* out8, int isVek, int isDev,
                                        const struct tm* when, int random);
/* Unpacks a file-name GUID, writing `when` as tkkDecodeGuid does. */
VEKTKK_API void tkkDecodeGuidNomeFile(const unsigned char* in8, unsigned char* isVek,
                                      unsigned char* isDev, struct tm* when);

/* Writes the 8-character base-36 name of a file-name GUID and a terminating
 * null into `out9` (at least 9 characters). */
VEKTKK_API void tkkGetNomeFileFromGuid(char* out9, const unsigned char* in8);
/* Reads the first 8 characters of `in` as base-36 digits and adds the value
 * into `out8`, which the caller sets to zero. Returns 0 at the first character
 * outside the alphabet, leaving the digits added so far; non-zero on
 * success. */
VEKTKK_API int tkkGetGuidFromNomeFile(unsigned char* out8, const char* in);

#ifdef __cplusplus
}
#endif

#endif /* VEKTKK_TKKFLAT_H */
