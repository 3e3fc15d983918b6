#include "support/FakeClock.h"

#include <unistd.h>

#include <deque>

#include "platform/VekEvtContext.h"

extern "C" {
time_t __real_time(time_t* out);
int __real_rand(void);
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);
}

namespace fakeclock {
namespace {
bool g_frozen = false;
time_t g_now = 0;                                       // when frozen
long long g_sleptMicros = 0, g_usleepMicros = 0;        // slept since then, and in all
std::deque<int> g_rand;
int g_usleepCalls = 0, g_locks = 0, g_unlocks = 0;      // on the host's event-log mutex
}  // namespace

void Freeze(time_t t) { g_frozen = true, g_now = t, g_sleptMicros = 0; }
void Unfreeze() { g_frozen = false; }
void QueueRand(std::initializer_list<int> values) { g_rand.insert(g_rand.end(), values); }
int UsleepCalls() { return g_usleepCalls; }
long long UsleepMicros() { return g_usleepMicros; }
int EvtMutexLocks() { return g_locks; }
int EvtMutexUnlocks() { return g_unlocks; }
int EvtMutexDepth() { return g_locks - g_unlocks; }

void Reset() {
  g_frozen = false;
  g_rand.clear();
  g_usleepCalls = g_locks = g_unlocks = 0, g_usleepMicros = 0;
}

tm MakeTm(int year, int month, int day, int hour, int minute, int second) {
  tm t{};
  t.tm_year = year - 1900; t.tm_mon = month - 1; t.tm_mday = day;
  t.tm_hour = hour; t.tm_min = minute; t.tm_sec = second;
  return t;
}

time_t Utc(int year, int month, int day, int hour, int minute, int second) {
  tm t = MakeTm(year, month, day, hour, minute, second);
  return timegm(&t);
}

}  // namespace fakeclock

using namespace fakeclock;

extern "C" {

time_t __wrap_time(time_t* out) {
  if (!g_frozen) return __real_time(out);
  const time_t now = g_now + static_cast<time_t>(g_sleptMicros / 1000000);
  if (out != nullptr) *out = now;
  return now;
}

// On 32-bit processors a 64-bit time_t makes the C library's headers call
// __time64 under the name time.
#if defined(__USE_TIME_BITS64) && __TIMESIZE == 32
time_t __real___time64(time_t* out);
time_t __wrap___time64(time_t* out) { return g_frozen ? __wrap_time(out) : __real___time64(out); }
#endif

int __wrap_rand(void) {
  if (g_rand.empty()) return __real_rand();
  const int value = g_rand.front();
  g_rand.pop_front();
  return value;
}

int __wrap_usleep(useconds_t micros) {
  ++g_usleepCalls, g_usleepMicros += micros, g_sleptMicros += micros;
  return 0;
}

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
  const int rc = __real_pthread_mutex_lock(mutex);
  g_locks += mutex == &vek_evtcontext_mutex;
  return rc;
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
  g_unlocks += mutex == &vek_evtcontext_mutex;
  return __real_pthread_mutex_unlock(mutex);
}

}  // extern "C"
