#include "support/PlatformFaults.h"

#include <errno.h>
#include <unistd.h>

#include <memory>

#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagEncoderBin.h"

namespace faults {
namespace {
bool g_failDecoder = false, g_failEncoder = false, g_plain = false, g_noLinks = false, g_noExclusiveRename = false;
unsigned g_renameDelayUs = 0;
unsigned long g_accessCalls = 0;

// The real coder behind nothing but the one operation of the interface.
struct PlainDecoder : IAtomTagDecoderBin {
  explicit PlainDecoder(IAtomTagDecoderBin* r) : real(r) {}
  bool decode(const unsigned char* b, size_t n, std::vector<SAtomTag>& atoms) override { return real->decode(b, n, atoms); }
  std::unique_ptr<IAtomTagDecoderBin> real;
};
struct PlainEncoder : IAtomTagEncoderBin {
  explicit PlainEncoder(IAtomTagEncoderBin* r) : real(r) {}
  bool append(std::vector<unsigned char>& out, const std::string& tag, const void* p, uint32_t n, int flag) override {
    return real->append(out, tag, p, n, flag);
  }
  std::unique_ptr<IAtomTagEncoderBin> real;
};
}  // namespace

void FailDecoderCreation(bool fail) { g_failDecoder = fail; }
void FailEncoderCreation(bool fail) { g_failEncoder = fail; }
void PlainContainer(bool plain) { g_plain = plain; }
void NoHardLinks(bool noLinks, bool noExclusiveRename) { g_noLinks = noLinks, g_noExclusiveRename = noExclusiveRename; }
void SlowRename(unsigned microseconds) { g_renameDelayUs = microseconds; }
void ResetAccessCount() { g_accessCalls = 0; }
unsigned long AccessCount() { return g_accessCalls; }

}  // namespace faults

using namespace faults;

// The wrapped names are the mangled IAtomTagDecoderBin::CreateMe() and
// IAtomTagEncoderBin::CreateMe().
extern "C" {
IAtomTagDecoderBin* __real__ZN18IAtomTagDecoderBin8CreateMeEv();
IAtomTagEncoderBin* __real__ZN18IAtomTagEncoderBin8CreateMeEv();
int __real_link(const char* from, const char* to);
int __real_rename(const char* from, const char* to);
int __real_renameat2(int olddirfd, const char* from, int newdirfd, const char* to, unsigned flags);
int __real_access(const char* path, int mode);
int __real_usleep(useconds_t us);

IAtomTagDecoderBin* __wrap__ZN18IAtomTagDecoderBin8CreateMeEv() {
  IAtomTagDecoderBin* real = g_failDecoder ? nullptr : __real__ZN18IAtomTagDecoderBin8CreateMeEv();
  return g_plain && real != nullptr ? new PlainDecoder(real) : real;
}
IAtomTagEncoderBin* __wrap__ZN18IAtomTagEncoderBin8CreateMeEv() {
  IAtomTagEncoderBin* real = g_failEncoder ? nullptr : __real__ZN18IAtomTagEncoderBin8CreateMeEv();
  return g_plain && real != nullptr ? new PlainEncoder(real) : real;
}
int __wrap_rename(const char* from, const char* to) {
  if (g_renameDelayUs != 0) __real_usleep(g_renameDelayUs);
  return __real_rename(from, to);
}
int __wrap_access(const char* path, int mode) {
  ++g_accessCalls;
  return __real_access(path, mode);
}
int __wrap_link(const char* from, const char* to) {
  if (!g_noLinks) return __real_link(from, to);
  errno = EPERM;
  return -1;
}
int __wrap_renameat2(int olddirfd, const char* from, int newdirfd, const char* to, unsigned flags) {
  if (!g_noExclusiveRename) return __real_renameat2(olddirfd, from, newdirfd, to, flags);
  errno = EINVAL;
  return -1;
}
}
