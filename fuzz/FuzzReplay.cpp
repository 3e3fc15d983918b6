// Replays corpora through a fuzz target's entry function without libFuzzer:
// every regular file of the directories (or the files) given on the command
// line is fed to LLVMFuzzerTestOneInput once. A fault aborts the process,
// as it would under the fuzzer; an empty corpus is an error, so that a
// corpus that failed to generate does not pass unnoticed.
#include <dirent.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "FuzzFiles.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

void Collect(const std::string& path, std::vector<std::string>& files) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0) return;
  if (S_ISREG(st.st_mode)) {
    files.push_back(path);
    return;
  }
  if (!S_ISDIR(st.st_mode)) return;
  DIR* d = opendir(path.c_str());
  if (d == nullptr) return;
  std::vector<std::string> names;
  while (const dirent* e = readdir(d))
    if (e->d_name[0] != '.') names.push_back(e->d_name);
  closedir(d);
  std::sort(names.begin(), names.end());
  for (const std::string& n : names) Collect(path + "/" + n, files);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> files;
  for (int i = 1; i < argc; ++i) Collect(argv[i], files);
  if (files.empty()) {
    fprintf(stderr, "no corpus files\n");
    return 1;
  }
  for (const std::string& f : files) {
    const fuzz::Bytes b = fuzz::ReadFile(f);
    LLVMFuzzerTestOneInput(b.data(), b.size());
  }
  printf("%zu inputs replayed\n", files.size());
  return 0;
}
