#pragma once

#include <time.h>

#include <initializer_list>

// The library's calls of time, rand and usleep land in support/Wrappers.cpp.
// By default they behave as the C library does (usleep never really sleeps).
namespace fakeclock {

void Freeze(time_t t);  // time() returns `t`; every usleep() advances it by the time slept
void QueueRand(std::initializer_list<int> values);  // the next rand() results, then the C library's
// Since Reset(): usleep() calls and microseconds asked for.
int UsleepCalls();
long long UsleepMicros();
void Reset();  // unfreezes, empties the rand queue and zeroes the counters
// A calendar time with every other member zero (month 1-12), and the same time in UTC as time_t.
tm MakeTm(int year, int month, int day, int hour, int minute, int second);
time_t Utc(int year, int month, int day, int hour, int minute, int second);

}  // namespace fakeclock
