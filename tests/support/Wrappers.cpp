// The executables' stand-ins, linked with --wrap (see tests/CMakeLists.txt):
// the recording event log, the clock, random numbers and sleeps,
// and the container's factories and file-system calls that tests make fail.
#include <errno.h>
#include <pthread.h>
#include <stdarg.h>
#include <unistd.h>

#include <deque>
#include <memory>

#include <glib.h>
extern "C" {
#include <evtlog.h>
}

#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagEncoderBin.h"
#include "support/EvtLogRecorder.h"
#include "support/FakeClock.h"
#include "support/PlatformFaults.h"

// The host's globals, as a host program defines them.
extern "C" {
EVTCONTEXT* vek_evtcontext = nullptr;
pthread_mutex_t vek_evtcontext_mutex = PTHREAD_MUTEX_INITIALIZER;
}

namespace {
std::vector<evtrec::Event> g_events;
bool g_frozen = false;
time_t g_now = 0;                                 // when frozen
long long g_sleptMicros = 0, g_usleepMicros = 0;  // slept since then, and in all
std::deque<int> g_rand;
int g_usleepCalls = 0;
bool g_failDecoder = false, g_plain = false, g_noLinks = false, g_noExclusiveRename = false;
unsigned g_renameDelayUs = 0;
unsigned long g_accessCalls = 0;

using Tag = std::pair<std::string, std::string>;
// Records are handed out as 1-based positions in the event list.
evtrec::Event& EventOf(EVTREC* record) { return g_events.at(reinterpret_cast<size_t>(record) - 1); }

// The real coder behind nothing but the one operation of the interface.
template <typename Coder>
struct Plain : Coder {
  explicit Plain(Coder* r) : real(r) {}
  bool decode(const unsigned char* b, size_t n, std::vector<SAtomTag>& atoms) {
    return real->decode(b, n, atoms);
  }
  bool append(std::vector<unsigned char>& out, const std::string& tag, const void* p, uint32_t n, int flag) {
    return real->append(out, tag, p, n, flag);
  }
  std::unique_ptr<Coder> real;
};
}  // namespace

std::string evtrec::Event::Message() const {
  for (const auto& tag : tags)
    if (tag.first == "msg") return tag.second;
  return "";
}
void evtrec::Reset(bool contextOpen) {
  g_events.clear();
  vek_evtcontext = contextOpen ? reinterpret_cast<EVTCONTEXT*>(&g_events) : nullptr;
}
const std::vector<evtrec::Event>& evtrec::Events() { return g_events; }
std::vector<std::string> evtrec::Reports() {
  std::vector<std::string> out;
  for (const Event& e : g_events) out.push_back(e.severity + " " + e.Message());
  return out;
}

void fakeclock::Freeze(time_t t) { g_frozen = true, g_now = t, g_sleptMicros = 0; }
void fakeclock::QueueRand(std::initializer_list<int> values) { g_rand.insert(g_rand.end(), values); }
int fakeclock::UsleepCalls() { return g_usleepCalls; }
long long fakeclock::UsleepMicros() { return g_usleepMicros; }
void fakeclock::Reset() { g_frozen = false, g_rand.clear(), g_usleepCalls = 0, g_usleepMicros = 0; }
tm fakeclock::MakeTm(int year, int month, int day, int hour, int minute, int second) {
  tm t{};  // padding zeroed too: tests compare whole tm
  t.tm_year = year - 1900, t.tm_mon = month - 1, t.tm_mday = day, t.tm_hour = hour, t.tm_min = minute,
  t.tm_sec = second;
  return t;
}
time_t fakeclock::Utc(int year, int month, int day, int hour, int minute, int second) {
  tm t = MakeTm(year, month, day, hour, minute, second);
  return timegm(&t);
}

void faults::FailDecoderCreation(bool fail) { g_failDecoder = fail; }
void faults::PlainContainer(bool plain) { g_plain = plain; }
void faults::NoHardLinks(bool noLinks, bool noExclusiveRename) {
  g_noLinks = noLinks, g_noExclusiveRename = noExclusiveRename;
}
void faults::SlowRename(unsigned microseconds) { g_renameDelayUs = microseconds; }
unsigned long faults::AccessCount(bool reset) { return reset ? g_accessCalls = 0 : g_accessCalls; }

extern "C" {
EVTREC* evt_rec_init(EVTCONTEXT*, int, const char* desc) {
  g_events.push_back(evtrec::Event{desc, {}});
  return reinterpret_cast<EVTREC*>(g_events.size());
}
EVTTAG* evt_tag_str(const char* tag, const char* value) {
  return reinterpret_cast<EVTTAG*>(new Tag(tag, value));
}
void evt_rec_add_tags(EVTREC* e, EVTTAG* first, ...) {
  va_list args;
  va_start(args, first);
  for (EVTTAG* t = first; t != nullptr; t = va_arg(args, EVTTAG*)) {
    EventOf(e).tags.push_back(*reinterpret_cast<Tag*>(t));
    delete reinterpret_cast<Tag*>(t);
  }
  va_end(args);
}
int evt_log(EVTREC*) { return 1; }

time_t __real_time(time_t* out);
int __real_rand(void);
// The wrapped names are the mangled IAtomTagDecoderBin::CreateMe() and IAtomTagEncoderBin::CreateMe().
IAtomTagDecoderBin* __real__ZN18IAtomTagDecoderBin8CreateMeEv();
IAtomTagEncoderBin* __real__ZN18IAtomTagEncoderBin8CreateMeEv();
int __real_link(const char* from, const char* to);
int __real_rename(const char* from, const char* to);
int __real_renameat2(int olddirfd, const char* from, int newdirfd, const char* to, unsigned flags);
int __real_access(const char* path, int mode);
int __real_usleep(useconds_t us);

time_t __wrap_time(time_t* out) {
  if (!g_frozen) return __real_time(out);
  const time_t now = g_now + static_cast<time_t>(g_sleptMicros / 1000000);
  if (out != nullptr) *out = now;
  return now;
}
// On 32-bit processors a 64-bit time_t makes the C library's headers call __time64 under the name time.
#if defined(__USE_TIME_BITS64) && __TIMESIZE == 32
time_t __real___time64(time_t* out);
time_t __wrap___time64(time_t* out) { return g_frozen ? __wrap_time(out) : __real___time64(out); }
#endif
int __wrap_rand(void) {
  const int value = g_rand.empty() ? __real_rand() : g_rand.front();
  if (!g_rand.empty()) g_rand.pop_front();
  return value;
}
int __wrap_usleep(useconds_t micros) {
  return ++g_usleepCalls, g_usleepMicros += micros, g_sleptMicros += micros, 0;
}
IAtomTagDecoderBin* __wrap__ZN18IAtomTagDecoderBin8CreateMeEv() {
  IAtomTagDecoderBin* real = g_failDecoder ? nullptr : __real__ZN18IAtomTagDecoderBin8CreateMeEv();
  return g_plain && real != nullptr ? new Plain<IAtomTagDecoderBin>(real) : real;
}
IAtomTagEncoderBin* __wrap__ZN18IAtomTagEncoderBin8CreateMeEv() {
  IAtomTagEncoderBin* real = __real__ZN18IAtomTagEncoderBin8CreateMeEv();
  return g_plain && real != nullptr ? new Plain<IAtomTagEncoderBin>(real) : real;
}
int __wrap_rename(const char* from, const char* to) {
  return g_renameDelayUs && __real_usleep(g_renameDelayUs), __real_rename(from, to);
}
int __wrap_access(const char* path, int mode) { return ++g_accessCalls, __real_access(path, mode); }
int __wrap_link(const char* from, const char* to) {
  return g_noLinks ? (errno = EPERM, -1) : __real_link(from, to);
}
int __wrap_renameat2(int olddirfd, const char* from, int newdirfd, const char* to, unsigned flags) {
  return g_noExclusiveRename ? (errno = EINVAL, -1) : __real_renameat2(olddirfd, from, newdirfd, to, flags);
}
}  // extern "C"
