// The host's side of the library's event log.
#include "EventLog.h"

#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>

#include <glib.h>
extern "C" {
#include <evtlog.h>
}

#include <vektkk.h>

#define HOST_EXPORT __attribute__((visibility("default")))

extern "C" {
HOST_EXPORT EVTCONTEXT* vek_evtcontext = nullptr;
HOST_EXPORT pthread_mutex_t vek_evtcontext_mutex = PTHREAD_MUTEX_INITIALIZER;

// libevtlog hands every formatted record to syslog(3). A command-line tool
// wants them on the terminal instead, so it takes syslog's place.
HOST_EXPORT void syslog(int priority, const char* format, ...) {
  (void)priority;
  va_list args;
  va_start(args, format);
  fputs("tkk: library: ", stderr);
  vfprintf(stderr, format, args);
  fputc('\n', stderr);
  va_end(args);
}
}

namespace tkk {

void OpenEventLog() {
  pthread_mutex_lock(&vek_evtcontext_mutex);
  if (vek_evtcontext == nullptr) vek_evtcontext = evt_ctx_init("tkk", EVT_FAC_USER);
  pthread_mutex_unlock(&vek_evtcontext_mutex);
}

}  // namespace tkk
