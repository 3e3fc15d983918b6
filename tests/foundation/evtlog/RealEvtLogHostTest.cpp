#include <gtest/gtest.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>

#include <memory>
#include <string>
#include <vector>

#include <glib.h>
extern "C" {
#include <evtlog.h>
}

#include <vektkk.h>

// The host's globals. The project builds with hidden visibility, so they are
// exported explicitly: the library finds them in the executable's dynamic
// symbol table.
#define HOST_EXPORT __attribute__((visibility("default")))
extern "C" {
HOST_EXPORT EVTCONTEXT* vek_evtcontext = nullptr;
HOST_EXPORT pthread_mutex_t vek_evtcontext_mutex = PTHREAD_MUTEX_INITIALIZER;
}

namespace {
std::vector<std::string> g_lines;
std::vector<int> g_priorities;
}  // namespace

// Takes the place of the C library's syslog() for libevtlog: what the real
// eventlog library would send to the system log is kept here.
extern "C" HOST_EXPORT void syslog(int priority, const char* format, ...) {
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
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMeUponFile("/x", false, false));
  EXPECT_FALSE(track->IsGood());
  ASSERT_EQ(g_lines.size(), 1u);
  EXPECT_EQ(g_lines[0], "ERROR; test:tag='value', msg='Can\\'t open file /x'");
  EXPECT_EQ(g_priorities[0] & 7, 3);
}

TEST_F(RealEvtLogHost, ClosedContextSendsNothing) {
  pthread_mutex_lock(&vek_evtcontext_mutex);
  EVTCONTEXT* open = vek_evtcontext;
  vek_evtcontext = nullptr;
  pthread_mutex_unlock(&vek_evtcontext_mutex);
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMeUponFile("/x", false, false));
  vek_evtcontext = open;
  EXPECT_FALSE(track->IsGood());
  EXPECT_TRUE(g_lines.empty());
}

}  // namespace
