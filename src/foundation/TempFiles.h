#ifndef VEKTKK_SRC_FOUNDATION_TEMPFILES_H
#define VEKTKK_SRC_FOUNDATION_TEMPFILES_H

#include <sys/types.h>

#include <string>

// The temporary files that saves write beside their targets, and what a
// killed save leaves of them.
namespace vektkk {

// Creates a new temporary file beside `target`, named
// ".<target>.tmp.<pid>.<n>.<ns>", with `mode` (less the umask). Returns its
// descriptor and name, or -1.
int ApriTemporaneo(const std::string& target, mode_t mode, std::string& temp);

// Removes, once per process and directory, the temporary files and name
// locks that saves killed in other processes left in `dir`: a temporary file
// whose process no longer runs, a lock file that nobody holds. Entries of
// other shapes are never touched.
void PulisciAvanzi(const std::string& dir);

// The lock file that claims `target` on file systems that can neither link
// nor rename without replacing: ".<target>.tmp.lock" beside it.
std::string NomeLucchetto(const std::string& target);

}  // namespace vektkk

#endif  // VEKTKK_SRC_FOUNDATION_TEMPFILES_H
