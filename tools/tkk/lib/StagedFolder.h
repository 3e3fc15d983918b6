#ifndef VEKTKK_TOOLS_TKK_STAGEDFOLDER_H
#define VEKTKK_TOOLS_TKK_STAGEDFOLDER_H

#include <string>
#include <vector>

namespace tkk {

// Files that appear in an output folder together or not at all. They are
// written into a hidden folder made inside the output folder (so that
// renaming them is one step each, on the same file system), and moved into
// place by Commit. Until then nothing in the output folder changes; an
// object destroyed without Commit removes its hidden folder and everything
// in it.
class StagedFolder {
 public:
  // Throws BadInput when `dir` is not a folder the tool can write into.
  explicit StagedFolder(const std::string& dir);
  ~StagedFolder();
  StagedFolder(const StagedFolder&) = delete;
  StagedFolder& operator=(const StagedFolder&) = delete;

  // The hidden folder, and where a file called `name` is to be written now.
  const std::string& Dir() const { return staging_; }
  // Where a file called `name` is to be written now.
  std::string Path(const std::string& name) const;
  // Moves `names` (all written beforehand, else BadInput and nothing moves)
  // into the output folder, replacing files of the same names.
  void Commit(const std::vector<std::string>& names);

 private:
  std::string dir_;
  std::string staging_;
};

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_STAGEDFOLDER_H
