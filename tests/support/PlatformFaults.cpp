#include "support/PlatformFaults.h"

#include <errno.h>
#include <stdio.h>
#include <unistd.h>

#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagEncoderBin.h"

namespace faults {
namespace {
bool g_failDecoder = false;
bool g_failEncoder = false;
bool g_noLinks = false;
bool g_noExclusiveRename = false;
}  // namespace

void FailDecoderCreation(bool fail) { g_failDecoder = fail; }
void FailEncoderCreation(bool fail) { g_failEncoder = fail; }
void NoHardLinks(bool noLinks, bool noExclusiveRename) {
  g_noLinks = noLinks;
  g_noExclusiveRename = noExclusiveRename;
}

}  // namespace faults

// Mangled names of IAtomTagDecoderBin::CreateMe() and
// IAtomTagEncoderBin::CreateMe().
extern "C" {
IAtomTagDecoderBin* __real__ZN18IAtomTagDecoderBin8CreateMeEv();
IAtomTagEncoderBin* __real__ZN18IAtomTagEncoderBin8CreateMeEv();

IAtomTagDecoderBin* __wrap__ZN18IAtomTagDecoderBin8CreateMeEv() {
  return faults::g_failDecoder ? nullptr : __real__ZN18IAtomTagDecoderBin8CreateMeEv();
}

IAtomTagEncoderBin* __wrap__ZN18IAtomTagEncoderBin8CreateMeEv() {
  return faults::g_failEncoder ? nullptr : __real__ZN18IAtomTagEncoderBin8CreateMeEv();
}

int __real_link(const char* from, const char* to);
int __real_renameat2(int olddirfd, const char* from, int newdirfd, const char* to, unsigned flags);

int __wrap_link(const char* from, const char* to) {
  if (!faults::g_noLinks) return __real_link(from, to);
  errno = EPERM;
  return -1;
}

int __wrap_renameat2(int olddirfd, const char* from, int newdirfd, const char* to, unsigned flags) {
  if (!faults::g_noExclusiveRename) return __real_renameat2(olddirfd, from, newdirfd, to, flags);
  errno = EINVAL;
  return -1;
}
}
