#pragma once

#include <pthread.h>
#include <time.h>

#include <initializer_list>

// The unit-test executable is linked with --wrap for time, rand, usleep and
// the mutex calls, so every such call made by the library lands here. By
// default they behave as the C library does (usleep never really sleeps).
namespace fakeclock {

// time() returns `t`; every usleep() advances it by the time slept.
void Freeze(time_t t);
void Unfreeze();
// The next rand() results, in order; after them rand() is the C library's.
void QueueRand(std::initializer_list<int> values);
// Number of usleep() calls and microseconds asked for since Reset().
int UsleepCalls();
long long UsleepMicros();
// Lock and unlock calls on the host's event-log mutex since Reset(), and how
// many locks are currently held.
int EvtMutexLocks();
int EvtMutexUnlocks();
int EvtMutexDepth();
// Unfreezes, empties the rand queue and zeroes the counters.
void Reset();

// A calendar time with every other member zero (month 1-12), and the same
// time in UTC as time_t.
tm MakeTm(int year, int month, int day, int hour, int minute, int second);
time_t Utc(int year, int month, int day, int hour, int minute, int second);

}  // namespace fakeclock

