#include "StagedFolder.h"

#include <dirent.h>
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "BadInput.h"

namespace tkk {

StagedFolder::StagedFolder(const std::string& dir) : dir_(dir) {
  struct stat st;
  if (stat(dir.c_str(), &st) != 0) throw BadInput(dir + ": no such folder");
  if (!S_ISDIR(st.st_mode)) throw BadInput(dir + ": not a folder");
  std::string pattern = dir + "/.tkk-staging-XXXXXX";
  if (mkdtemp(&pattern[0]) == nullptr) {
    throw BadInput(dir + ": cannot write (" + strerror(errno) + ")");
  }
  staging_ = pattern;
}

StagedFolder::~StagedFolder() {
  if (DIR* d = opendir(staging_.c_str())) {
    while (dirent* e = readdir(d)) {
      if (strcmp(e->d_name, ".") != 0 && strcmp(e->d_name, "..") != 0)
        unlink(Path(e->d_name).c_str());
    }
    closedir(d);
  }
  rmdir(staging_.c_str());
}

std::string StagedFolder::Path(const std::string& name) const { return staging_ + "/" + name; }

void StagedFolder::Commit(const std::vector<std::string>& names) {
  struct stat st;
  for (const std::string& name : names) {
    if (stat(Path(name).c_str(), &st) != 0 || !S_ISREG(st.st_mode)) {
      throw BadInput(dir_ + "/" + name + ": cannot write");
    }
  }
  for (const std::string& name : names) {
    if (rename(Path(name).c_str(), (dir_ + "/" + name).c_str()) != 0) {
      throw BadInput(dir_ + "/" + name + ": cannot write (" + strerror(errno) + ")");
    }
  }
}

}  // namespace tkk
