#ifndef VEKTKK_SRC_FOUNDATION_DURABLEFILE_H
#define VEKTKK_SRC_FOUNDATION_DURABLEFILE_H

#include <stddef.h>

#include <string>

// Writing files so that a cut of power at any moment leaves either the old
// file or the complete new one. The bytes go to a temporary file in the
// target's directory, are flushed to the device, and the temporary file then
// takes the target's name in one step; the directory is flushed last. On
// failure the target is untouched and no temporary file remains (a process
// killed mid-write may leave one, named ".<target>.tmp.<pid>.<n>.<ns>").
namespace vektkk {

// Replaces (or creates) `path` with `size` bytes from `data`.
bool ScriviFileAtomico(const std::string& path, const void* data, size_t size);

enum class EsitoCreazione { Creato, GiaEsistente, Errore };

// Creates `path` with the bytes only if no file of that name exists; the
// check and the creation are one step, also against other processes.
EsitoCreazione CreaFileEsclusivo(const std::string& path, const void* data, size_t size);

// The directory part of `path` including its last separator ("" when none).
std::string CartellaDi(const std::string& path);

}  // namespace vektkk

#endif  // VEKTKK_SRC_FOUNDATION_DURABLEFILE_H
