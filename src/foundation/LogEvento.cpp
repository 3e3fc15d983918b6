#include "LogEvento.h"

#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>

// <evtlog.h> has no C++ guard of its own.
#include <glib.h>
extern "C" {
#include <evtlog.h>
}

// The host's globals, referenced weakly: a host that does not define them
// still loads the library, and the address of the missing mutex is null.
extern "C" {
extern EVTCONTEXT* vek_evtcontext __attribute__((weak));
extern pthread_mutex_t vek_evtcontext_mutex __attribute__((weak));
}

namespace {
constexpr size_t kMessageBuffer = 1024;  // 1023 characters and the terminator
}

void LogEvento(int priorita, const char* severita, const char* formato, ...) {
  pthread_mutex_t* mutex = &vek_evtcontext_mutex;
  if (mutex == nullptr) return;

  pthread_mutex_lock(mutex);
  EVTCONTEXT* context = vek_evtcontext;
  if (context != nullptr) {
    // The record is created before the message is formatted; libevtlog
    // releases record and tags in evt_log.
    EVTREC* record = evt_rec_init(context, priorita, severita);
    char message[kMessageBuffer];
    va_list args;
    va_start(args, formato);
    vsnprintf(message, sizeof message, formato, args);
    va_end(args);
    // The constant first tag is part of the record format that the hosts'
    // log consumers parse; it stays on every record.
    EVTTAG* tag = evt_tag_str("test:tag", "value");
    EVTTAG* msg = evt_tag_str("msg", message);
    evt_rec_add_tags(record, tag, msg, static_cast<EVTTAG*>(nullptr));
    evt_log(record);
  }
  pthread_mutex_unlock(mutex);
}
