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

struct Tag {
  std::string name;
  std::string value;
};

std::vector<Event> g_events;
std::vector<std::string> g_calls;
int g_contextToken = 0;

Event& EventOf(EVTREC* record) { return g_events.at(reinterpret_cast<size_t>(record) - 1); }

}  // namespace

std::string Event::Message() const {
  for (const auto& tag : tags)
    if (tag.first == "msg") return tag.second;
  return "";
}

void Reset(bool contextOpen) {
  g_events.clear();
  g_calls.clear();
  vek_evtcontext = contextOpen ? reinterpret_cast<EVTCONTEXT*>(&g_contextToken) : nullptr;
}

const std::vector<Event>& Events() { return g_events; }
const std::vector<std::string>& Calls() { return g_calls; }

}  // namespace evtrec

using evtrec::g_calls;
using evtrec::g_events;

extern "C" {

// Records are handed out as 1-based positions in the event list.
EVTREC* evt_rec_init(EVTCONTEXT* ctx, int syslog_pri, const char* desc) {
  g_calls.push_back("evt_rec_init");
  if (ctx != reinterpret_cast<EVTCONTEXT*>(&evtrec::g_contextToken)) g_calls.back() += "(bad context)";
  evtrec::Event event;
  event.priority = syslog_pri;
  event.severity = desc;
  event.mutexHeldAtInit = fakeclock::EvtMutexDepth() == 1;
  g_events.push_back(event);
  return reinterpret_cast<EVTREC*>(g_events.size());
}

EVTTAG* evt_tag_str(const char* tag, const char* value) {
  g_calls.push_back("evt_tag_str");
  return reinterpret_cast<EVTTAG*>(new evtrec::Tag{tag, value});
}

void evt_rec_add_tags(EVTREC* e, EVTTAG* first, ...) {
  g_calls.push_back("evt_rec_add_tags");
  va_list args;
  va_start(args, first);
  for (EVTTAG* t = first; t != nullptr; t = va_arg(args, EVTTAG*)) {
    auto* tag = reinterpret_cast<evtrec::Tag*>(t);
    evtrec::EventOf(e).tags.emplace_back(tag->name, tag->value);
    delete tag;
  }
  va_end(args);
}

int evt_log(EVTREC* e) {
  g_calls.push_back("evt_log");
  evtrec::EventOf(e).logged = true;
  return 1;
}

}  // extern "C"
