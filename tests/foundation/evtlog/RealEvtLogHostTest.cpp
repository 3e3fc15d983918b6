#include <gtest/gtest.h>
#include <errno.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>

#include <glib.h>
extern "C" {
#include <evtlog.h>
}

#include <vektkk.h>

// The host's globals. The project builds with hidden visibility, so they are
// exported explicitly: the library finds them in the executable's dynamic
// symbol table.
extern "C" {
__attribute__((visibility("default"))) EVTCONTEXT* vek_evtcontext = nullptr;
__attribute__((visibility("default"))) pthread_mutex_t vek_evtcontext_mutex = PTHREAD_MUTEX_INITIALIZER;
}

static std::vector<std::string> g_lines;

// Takes the place of the C library's syslog() for libevtlog: what the real
// eventlog library would send to the system log is kept here, with the
// priority's severity first and "held" while the host's mutex is held.
extern "C" __attribute__((visibility("default"))) void syslog(int priority, const char* format, ...) {
  char line[4096];
  va_list args;
  va_start(args, format);
  vsnprintf(line, sizeof line, format, args);
  va_end(args);
  const bool held = pthread_mutex_trylock(&vek_evtcontext_mutex) == EBUSY ||
                    pthread_mutex_unlock(&vek_evtcontext_mutex) != 0;
  g_lines.push_back(std::to_string(priority & 7) + (held ? " held " : " ") + line);
}

namespace {

// Reports reach syslog in the host's format with their priorities (an error
// and a notice), made under the host's mutex, each message cut to 1023
// characters; none while the context is closed.
TEST(RealEvtLogHost, RecordReachesSyslogInTheHostsFormat) {
  EVTCONTEXT* context = evt_ctx_init("test", EVT_FAC_USER);
  const std::string path = "/" + std::string(2000, 'x');
  for (EVTCONTEXT* open : {context, static_cast<EVTCONTEXT*>(nullptr)}) {
    vek_evtcontext = open;
    std::unique_ptr<CFileTkk> noLogos(static_cast<CFileTkk*>(IFileTkk::CreateMeUponFile(path, false, true)));
    std::vector<unsigned char> image(3, 1);
    EXPECT_EQ(noLogos->SaveTrackFileLogoBuffer(image, "/x.png") + image.size(), 3u);  // nothing read
  }
  EXPECT_EQ(g_lines,
            (std::vector<std::string>{
                "3 held ERROR; test:tag='value', msg='Can\\'t open file " + path.substr(0, 1007) + "'",
                "5 held NOTICE; test:tag='value', msg='Forced no logo hence read only'"}));
  evt_ctx_free(context);
}

}  // namespace
