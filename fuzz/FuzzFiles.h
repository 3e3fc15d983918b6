// Files for the fuzz targets: a private directory per process, emptied
// after every input and removed at exit, and whole-file writes and reads.
#ifndef VEKTKK_FUZZ_FUZZFILES_H
#define VEKTKK_FUZZ_FUZZFILES_H

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

namespace fuzz {

using Bytes = std::vector<unsigned char>;

// The private directory, ending in "/": under $TMPDIR, else /dev/shm, else
// /tmp. Made on first use.
const std::string& Dir();
// Removes everything in Dir() (not the directory itself).
void EmptyDir();

bool WriteFile(const std::string& path, const unsigned char* data, size_t size);
inline bool WriteFile(const std::string& path, const Bytes& b) {
  return WriteFile(path, b.data(), b.size());
}
// The whole file; empty when it cannot be read.
Bytes ReadFile(const std::string& path);

// Rewrites the CRC of every complete atom so that mutations get past the
// container. Returns false when a logo's name holds a directory separator
// (the reader would write the image outside Dir()).
bool FixCrcs(Bytes& b);

}  // namespace fuzz

#endif  // VEKTKK_FUZZ_FUZZFILES_H
