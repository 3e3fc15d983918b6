#include "support/PlatformFaults.h"

#include <errno.h>
#include <unistd.h>

#include <memory>

#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagEncoderBin.h"

namespace faults {
namespace {
bool g_failDecoder = false, g_failEncoder = false, g_plain = false;
bool g_noLinks = false, g_noExclusiveRename = false;
unsigned g_renameDelayUs = 0;
unsigned long g_accessCalls = 0;

// The real coder behind nothing but the one operation of the interface.
struct PlainDecoder : IAtomTagDecoderBin {
  std::unique_ptr<IAtomTagDecoderBin> real;
  bool decode(const unsigned char* buffer, size_t length, std::vector<SAtomTag>& atoms) override {
    return real->decode(buffer, length, atoms);
  }
};
struct PlainEncoder : IAtomTagEncoderBin {
  std::unique_ptr<IAtomTagEncoderBin> real;
  bool append(std::vector<unsigned char>& out, const std::string& tag, const void* payload,
              uint32_t size, int flag) override {
    return real->append(out, tag, payload, size, flag);
  }
};
template <typename Plain, typename Coder>
Coder* Wrap(bool fail, Coder* (*make)()) {
  if (fail) return nullptr;
  Coder* real = make();
  if (!g_plain) return real;
  Plain* plain = new Plain;
  plain->real.reset(real);
  return plain;
}
}  // namespace

void FailDecoderCreation(bool fail) { g_failDecoder = fail; }
void FailEncoderCreation(bool fail) { g_failEncoder = fail; }
void PlainContainer(bool plain) { g_plain = plain; }
void NoHardLinks(bool noLinks, bool noExclusiveRename) {
  g_noLinks = noLinks;
  g_noExclusiveRename = noExclusiveRename;
}
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
  return Wrap<PlainDecoder>(g_failDecoder, __real__ZN18IAtomTagDecoderBin8CreateMeEv);
}
IAtomTagEncoderBin* __wrap__ZN18IAtomTagEncoderBin8CreateMeEv() {
  return Wrap<PlainEncoder>(g_failEncoder, __real__ZN18IAtomTagEncoderBin8CreateMeEv);
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
