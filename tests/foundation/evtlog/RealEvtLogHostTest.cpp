#include <gtest/gtest.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

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

TEST_F(RealEvtLogHost, EachSeverityKeepsItsPriority) {
  // A track opened without logos refuses changes (ALERT) and logo loading
  // (NOTICE).
  char dir[] = "/tmp/vektkk-evtlog-XXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  std::unique_ptr<IFileTkk> built(IFileTkk::CreateMe(false, false));
  const std::string name = "0k3f9zq1";
  _STagInfoVarianteTKK_fw fw;
  memset(fw.NationCode, 0, 8);
  ASSERT_TRUE(built->AddTagInfoVariante("", "", fw, _STagIndexesVarianteTKK()));
  ASSERT_EQ(built->SalvaFileInPath(std::string(dir) + "/", &name), name);
  const std::string path = std::string(dir) + "/" + name + ".tkk";
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMeUponFile(path, false, true));
  ASSERT_TRUE(track->IsGood());

  track->AddTagDatiLogo({1, 2, 3}, "a.png");
  std::vector<unsigned char> buffer;
  static_cast<CFileTkk*>(track.get())->SaveTrackFileLogoBuffer(buffer, path);
  unlink(path.c_str());
  rmdir(dir);

  ASSERT_EQ(g_lines.size(), 2u);
  EXPECT_EQ(g_lines[0], "ALERT; test:tag='value', msg='Excluded, hence skipping!'");
  EXPECT_EQ(g_lines[1], "NOTICE; test:tag='value', msg='Forced no logo hence read only'");
  EXPECT_EQ(g_priorities[0] & 7, 1);
  EXPECT_EQ(g_priorities[1] & 7, 5);
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
