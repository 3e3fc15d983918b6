#include "support/PlatformFaults.h"

#include <errno.h>
#include <stdio.h>
#include <unistd.h>

#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagEncoderBin.h"

#include <memory>

namespace faults {
namespace {
bool g_failDecoder = false;
bool g_failEncoder = false;
bool g_plain = false;

class PlainDecoder : public IAtomTagDecoderBin {
 public:
  explicit PlainDecoder(IAtomTagDecoderBin* real) : real_(real) {}
  bool decode(const unsigned char* buffer, size_t length, std::vector<SAtomTag>& atoms) override {
    return real_->decode(buffer, length, atoms);
  }

 private:
  std::unique_ptr<IAtomTagDecoderBin> real_;
};

class PlainEncoder : public IAtomTagEncoderBin {
 public:
  explicit PlainEncoder(IAtomTagEncoderBin* real) : real_(real) {}
  bool append(std::vector<unsigned char>& out, const std::string& tag, const void* payload,
              uint32_t size, int flag) override {
    return real_->append(out, tag, payload, size, flag);
  }

 private:
  std::unique_ptr<IAtomTagEncoderBin> real_;
};
bool g_noLinks = false;
bool g_noExclusiveRename = false;
unsigned g_renameDelayUs = 0;
unsigned long g_accessCalls = 0;
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

// Mangled names of IAtomTagDecoderBin::CreateMe() and
// IAtomTagEncoderBin::CreateMe().
extern "C" {
IAtomTagDecoderBin* __real__ZN18IAtomTagDecoderBin8CreateMeEv();
IAtomTagEncoderBin* __real__ZN18IAtomTagEncoderBin8CreateMeEv();

IAtomTagDecoderBin* __wrap__ZN18IAtomTagDecoderBin8CreateMeEv() {
  if (faults::g_failDecoder) return nullptr;
  IAtomTagDecoderBin* real = __real__ZN18IAtomTagDecoderBin8CreateMeEv();
  return faults::g_plain ? new faults::PlainDecoder(real) : real;
}

IAtomTagEncoderBin* __wrap__ZN18IAtomTagEncoderBin8CreateMeEv() {
  if (faults::g_failEncoder) return nullptr;
  IAtomTagEncoderBin* real = __real__ZN18IAtomTagEncoderBin8CreateMeEv();
  return faults::g_plain ? new faults::PlainEncoder(real) : real;
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
