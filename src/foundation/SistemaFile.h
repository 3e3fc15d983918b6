#ifndef VEKTKK_SRC_FOUNDATION_SISTEMAFILE_H
#define VEKTKK_SRC_FOUNDATION_SISTEMAFILE_H

#include <stddef.h>
#include <sys/types.h>
#include <sys/uio.h>

// The calls that change or read the contents of files, all made through one
// table so that a test can make any of them fail with the error it chooses.
// The library's table holds the C library's own functions and is never
// changed; only tests put another one in its place.
namespace vektkk {
namespace sys {

struct Chiamate {
  int (*Open)(const char* path, int flags, mode_t mode);
  ssize_t (*Read)(int fd, void* buf, size_t n);
  ssize_t (*Readv)(int fd, const iovec* iov, int n);
  ssize_t (*Writev)(int fd, const iovec* iov, int n);
  int (*Fsync)(int fd);
  int (*Close)(int fd);
  int (*Rename)(const char* from, const char* to);
  int (*RenameNoReplace)(const char* from, const char* to);
  int (*Link)(const char* from, const char* to);
  int (*Unlink)(const char* path);
};

// The table in use.
const Chiamate& Sistema();
// The C library's table.
const Chiamate& SistemaReale();
// Puts `t` in place of the table (null: the C library's again). For tests.
void ImpostaSistema(const Chiamate* t);

inline int Open(const char* path, int flags, mode_t mode = 0) {
  return Sistema().Open(path, flags, mode);
}
inline ssize_t Read(int fd, void* buf, size_t n) { return Sistema().Read(fd, buf, n); }
inline ssize_t Readv(int fd, const iovec* iov, int n) { return Sistema().Readv(fd, iov, n); }
inline ssize_t Writev(int fd, const iovec* iov, int n) { return Sistema().Writev(fd, iov, n); }
inline int Fsync(int fd) { return Sistema().Fsync(fd); }
inline int Close(int fd) { return Sistema().Close(fd); }
inline int Rename(const char* from, const char* to) { return Sistema().Rename(from, to); }
// rename() that never replaces a name (EEXIST then); EINVAL where the file
// system cannot do it.
inline int RenameNoReplace(const char* from, const char* to) {
  return Sistema().RenameNoReplace(from, to);
}
inline int Link(const char* from, const char* to) { return Sistema().Link(from, to); }
inline int Unlink(const char* path) { return Sistema().Unlink(path); }

}  // namespace sys
}  // namespace vektkk

#endif  // VEKTKK_SRC_FOUNDATION_SISTEMAFILE_H
