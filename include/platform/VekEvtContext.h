#ifndef VEKTKK_PLATFORM_VEKEVTCONTEXT_H
#define VEKTKK_PLATFORM_VEKEVTCONTEXT_H

/* The host's event log. The library reports every problem as one record
 * through the eventlog library (libevtlog) into the context that the host
 * keeps in `vek_evtcontext`, while holding `vek_evtcontext_mutex`.
 *
 * A host that wants the reports defines both globals in its executable,
 * initialises the mutex, and sets the context (evt_ctx_init) under the
 * mutex whenever it likes; it may clear it again under the mutex. The library
 * references both weakly: a host that defines neither gets no records and
 * otherwise the same results. A host that defines the mutex must define the
 * context as well. The library looks both up in the executable's dynamic
 * symbol table: a host built with hidden visibility exports them
 * explicitly. */

#include <pthread.h>

/* Same declaration as in <evtlog.h>, so that hosts need neither that header
 * nor glib's include directories to name the context type. */
typedef struct __evtcontext EVTCONTEXT;

#ifdef __cplusplus
extern "C" {
#endif

extern EVTCONTEXT* vek_evtcontext;
extern pthread_mutex_t vek_evtcontext_mutex;

#ifdef __cplusplus
}
#endif

#endif /* VEKTKK_PLATFORM_VEKEVTCONTEXT_H */
