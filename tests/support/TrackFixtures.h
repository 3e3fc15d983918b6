#pragma once

#include <stdint.h>

#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "CFileTkk.h"

namespace fixtures {

using Bytes = std::vector<unsigned char>;

// A fresh directory under the system's temporary directory, removed with
// everything in it when the object goes. path() ends with "/".
struct TempDir {
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return path_; }
  // Names of the entries in the directory, sorted.
  std::vector<std::string> Entries() const;
  std::string path_;
};

// Every entry of a directory with its bytes.
using Snapshot = std::map<std::string, std::vector<unsigned char>>;
Snapshot Take(const TempDir& dir);

Bytes ReadAll(const std::string& path);
void WriteAll(const std::string& path, const Bytes& bytes);

// A random track built in memory with the Add operations: 1 to 3 variants,
// shapes, road-surface lists, logos (over 9 bytes, so they are saved) and
// filled names and codes. The same seed gives the same track (GUIDs apart,
// which come from the clock unless the variant record carries one: these
// carry one).
std::unique_ptr<CFileTkk> MakeRandomTrack(uint32_t seed, bool readOnly = false);

// A small fixed track: one variant "Monza"/"GP" with a 3-point shape, one
// road-surface list and no logo.
std::unique_ptr<CFileTkk> MakeSmallTrack();

}  // namespace fixtures
