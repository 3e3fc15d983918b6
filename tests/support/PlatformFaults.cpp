#include "support/PlatformFaults.h"

#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagEncoderBin.h"

namespace faults {
namespace {
bool g_failDecoder = false;
bool g_failEncoder = false;
}  // namespace

void FailDecoderCreation(bool fail) { g_failDecoder = fail; }
void FailEncoderCreation(bool fail) { g_failEncoder = fail; }

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
}
