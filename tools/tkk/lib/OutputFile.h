#ifndef VEKTKK_TOOLS_TKK_OUTPUTFILE_H
#define VEKTKK_TOOLS_TKK_OUTPUTFILE_H

#include <string>

namespace tkk {

// Writes `content` to `path` whole or not at all: into a temporary file in
// the same folder, then renamed over `path`. Throws BadInput when the folder
// is missing or not writable; no temporary file is left behind.
void WriteFileAtomically(const std::string& path, const std::string& content);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_OUTPUTFILE_H
