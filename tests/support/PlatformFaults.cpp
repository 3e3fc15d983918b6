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
unsigned g_renameDelayUs = 0;
unsigned long g_accessCalls = 0;
}  // namespace

void FailDecoderCreation(bool fail) { g_failDecoder = fail; }
void FailEncoderCreation(bool fail) { g_failEncoder = fail; }
void NoHardLinks(bool noLinks, bool noExclusiveRename) {
  g_noLinks = noLinks;
  g_noExclusiveRename = noExclusiveRename;
}
void SlowRename(unsigned microseconds) { g_renameDelayUs = microseconds; }
void ResetAccessCount() { g_accessCalls = 0; }
unsigned long AccessCount() { return g_accessCalls; }

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
int __real_rename(const char* from, const char* to);
int __real_access(const char* path, int mode);
int __real_usleep(useconds_t us);

int __wrap_rename(const char* from, const char* to) {
  if (faults::g_renameDelayUs != 0) __real_usleep(faults::g_renameDelayUs);
  return __real_rename(from, to);
}

int __wrap_access(const char* path, int mode) {
  ++faults::g_accessCalls;
  return __real_access(path, mode);
}

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
