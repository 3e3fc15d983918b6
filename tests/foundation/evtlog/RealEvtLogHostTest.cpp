#include <gtest/gtest.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>

#include <string>
#include <vector>

#include <glib.h>
extern "C" {
#include <evtlog.h>
}

#include "foundation/LogEvento.h"

extern "C" {
EVTCONTEXT* vek_evtcontext = nullptr;
pthread_mutex_t vek_evtcontext_mutex = PTHREAD_MUTEX_INITIALIZER;
}

namespace {
std::vector<std::string> g_lines;
std::vector<int> g_priorities;
}  // namespace

// Takes the place of the C library's syslog() for libevtlog: what the real
// eventlog library would send to the system log is kept here. Exported (the
// project builds with hidden visibility) so that libevtlog binds to it.
extern "C" __attribute__((visibility("default"))) void syslog(int priority, const char* format,
                                                             ...) {
  char line[4096];
  va_list args;
  va_start(args, format);
  vsnprintf(line, sizeof line, format, args);
  va_end(args);
  g_priorities.push_back(priority);
  g_lines.emplace_back(line);
}

namespace {

class RealEvtLogHost : public ::testing::Test {
 protected:
  void SetUp() override {
    g_lines.clear();
    g_priorities.clear();
    pthread_mutex_lock(&vek_evtcontext_mutex);
    vek_evtcontext = evt_ctx_init("test", EVT_FAC_USER);
    pthread_mutex_unlock(&vek_evtcontext_mutex);
    ASSERT_NE(vek_evtcontext, nullptr);
  }
  void TearDown() override {
    pthread_mutex_lock(&vek_evtcontext_mutex);
    evt_ctx_free(vek_evtcontext);
    vek_evtcontext = nullptr;
    pthread_mutex_unlock(&vek_evtcontext_mutex);
  }
};

TEST_F(RealEvtLogHost, RecordReachesSyslogInTheHostsFormat) {
  LogEvento(kError.Priorita, kError.Parola, "Can't open file %s", "/x");
  ASSERT_EQ(g_lines.size(), 1u);
  EXPECT_EQ(g_lines[0], "ERROR; test:tag='value', msg='Can\\'t open file /x'");
  EXPECT_EQ(g_priorities[0] & 7, 3);
}

TEST_F(RealEvtLogHost, EachSeverityKeepsItsPriority) {
  LogEvento(kAlert.Priorita, kAlert.Parola, "Excluded, hence skipping!");
  LogEvento(kNotice.Priorita, kNotice.Parola, "Forced no logo hence read only");
  LogEvento(kInfo.Priorita, kInfo.Parola, "for track '%s' changed length", "Monza");
  ASSERT_EQ(g_lines.size(), 3u);
  EXPECT_EQ(g_lines[0], "ALERT; test:tag='value', msg='Excluded, hence skipping!'");
  EXPECT_EQ(g_lines[1], "NOTICE; test:tag='value', msg='Forced no logo hence read only'");
  EXPECT_EQ(g_lines[2], "INFO; test:tag='value', msg='for track \\'Monza\\' changed length'");
  EXPECT_EQ(g_priorities[0] & 7, 1);
  EXPECT_EQ(g_priorities[1] & 7, 5);
  EXPECT_EQ(g_priorities[2] & 7, 6);
}

TEST_F(RealEvtLogHost, ClosedContextSendsNothing) {
  pthread_mutex_lock(&vek_evtcontext_mutex);
  EVTCONTEXT* open = vek_evtcontext;
  vek_evtcontext = nullptr;
  pthread_mutex_unlock(&vek_evtcontext_mutex);
  LogEvento(kError.Priorita, kError.Parola, "dropped");
  vek_evtcontext = open;
  EXPECT_TRUE(g_lines.empty());
}

}  // namespace
