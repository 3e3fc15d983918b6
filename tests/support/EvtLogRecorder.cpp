#include "support/EvtLogRecorder.h"

#include <pthread.h>
#include <stdarg.h>

#include <glib.h>
extern "C" {
#include <evtlog.h>
}

#include "support/FakeClock.h"

// The host's globals, as a host program defines them.
extern "C" {
EVTCONTEXT* vek_evtcontext = nullptr;
pthread_mutex_t vek_evtcontext_mutex = PTHREAD_MUTEX_INITIALIZER;
}

namespace evtrec {
namespace {
std::vector<Event> g_events;
int g_contextToken = 0;
using Tag = std::pair<std::string, std::string>;
// Records are handed out as 1-based positions in the event list.
Event& EventOf(EVTREC* record) { return g_events.at(reinterpret_cast<size_t>(record) - 1); }
}  // namespace

std::string Event::Message() const {
  for (const auto& tag : tags)
    if (tag.first == "msg") return tag.second;
  return "";
}

void Reset(bool contextOpen) {
  g_events.clear();
  vek_evtcontext = contextOpen ? reinterpret_cast<EVTCONTEXT*>(&g_contextToken) : nullptr;
}

const std::vector<Event>& Events() { return g_events; }

}  // namespace evtrec

using namespace evtrec;

extern "C" {

EVTREC* evt_rec_init(EVTCONTEXT*, int syslog_pri, const char* desc) {
  g_events.push_back(Event{syslog_pri, desc, {}, fakeclock::EvtMutexDepth() == 1, false});
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

int evt_log(EVTREC* e) {
  EventOf(e).logged = true;
  return 1;
}

}  // extern "C"
