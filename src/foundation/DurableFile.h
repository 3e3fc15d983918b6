#ifndef VEKTKK_SRC_FOUNDATION_DURABLEFILE_H
#define VEKTKK_SRC_FOUNDATION_DURABLEFILE_H

#include <stddef.h>
#include <sys/uio.h>

#include <string>

// Writing files so that a cut of power at any moment leaves either the old
// file or the complete new one. The bytes go to a temporary file in the
// target's directory, are flushed to the device, and the temporary file then
// takes the target's name in one step; the directory is flushed last. On
// failure the target is untouched and no temporary file remains.
//
// A process killed mid-write leaves its temporary file behind, named
// ".<target>.tmp.<pid>.<n>.<ns>". The first save of each process into a
// directory removes those whose process is gone; nothing else is touched.
//
// Replacing keeps what truncating the file in place would keep: a target the
// caller may not open for writing is refused, the new file takes the old
// one's permission bits (and owner and group, where the process may set them),
// and a symbolic link is followed, so that the file it points to is replaced.
namespace vektkk {

// Replaces (or creates) `path` with `size` bytes from `data`.
bool ScriviFileAtomico(const std::string& path, const void* data, size_t size);
// The same with the bytes given as `n` pieces, written in order.
bool ScriviFileAtomico(const std::string& path, const iovec* pezzi, size_t n);

enum class EsitoCreazione { Creato, GiaEsistente, Errore };

// Creates `path` with the bytes only if no file of that name exists; the
// check and the creation are one step, also against other processes.
EsitoCreazione CreaFileEsclusivo(const std::string& path, const void* data, size_t size);
EsitoCreazione CreaFileEsclusivo(const std::string& path, const iovec* pezzi, size_t n);

// The directory part of `path` including its last separator ("" when none).
std::string CartellaDi(const std::string& path);

}  // namespace vektkk

#endif  // VEKTKK_SRC_FOUNDATION_DURABLEFILE_H
