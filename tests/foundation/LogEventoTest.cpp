#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/LogEvento.h"
#include "support/EvtLogRecorder.h"
#include "support/FakeClock.h"

namespace {

class LogEventoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    evtrec::Reset(true);
    fakeclock::Reset();
  }
  void TearDown() override { evtrec::Reset(false); }
};

TEST_F(LogEventoTest, OneRecordWithTheTwoTagsInOrder) {
  LogEvento(kError.Priorita, kError.Parola, "Can't open file %s", "/x");

  const std::vector<std::string> expectedCalls = {"evt_rec_init", "evt_tag_str", "evt_tag_str",
                                                  "evt_rec_add_tags", "evt_log"};
  EXPECT_EQ(evtrec::Calls(), expectedCalls);
  ASSERT_EQ(evtrec::Events().size(), 1u);
  const evtrec::Event& e = evtrec::Events()[0];
  EXPECT_EQ(e.priority, 3);
  EXPECT_EQ(e.severity, "ERROR");
  ASSERT_EQ(e.tags.size(), 2u);
  EXPECT_EQ(e.tags[0].first, "test:tag");
  EXPECT_EQ(e.tags[0].second, "value");
  EXPECT_EQ(e.tags[1].first, "msg");
  EXPECT_EQ(e.tags[1].second, "Can't open file /x");
  EXPECT_TRUE(e.logged);
}

TEST_F(LogEventoTest, SeverityPairsReachTheRecord) {
  const SeveritaEvento pairs[] = {kAlert, kError, kNotice, kInfo};
  const int expectedPriority[] = {1, 3, 5, 6};
  const char* expectedWord[] = {"ALERT", "ERROR", "NOTICE", "INFO"};
  for (const auto& p : pairs) LogEvento(p.Priorita, p.Parola, "x");
  ASSERT_EQ(evtrec::Events().size(), 4u);
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(evtrec::Events()[i].priority, expectedPriority[i]);
    EXPECT_EQ(evtrec::Events()[i].severity, expectedWord[i]);
  }
}

TEST_F(LogEventoTest, LongMessageIsCutAt1023Characters) {
  const std::string path(2000, 'p');
  LogEvento(kError.Priorita, kError.Parola, "Can't open file %s", path.c_str());
  ASSERT_EQ(evtrec::Events().size(), 1u);
  const std::string expected = ("Can't open file " + path).substr(0, 1023);
  EXPECT_EQ(evtrec::Events()[0].Message(), expected);
}

TEST_F(LogEventoTest, MutexIsHeldWhileTheRecordIsBuilt) {
  LogEvento(kInfo.Priorita, kInfo.Parola, "x");
  EXPECT_EQ(fakeclock::EvtMutexLocks(), 1);
  EXPECT_EQ(fakeclock::EvtMutexUnlocks(), 1);
  ASSERT_EQ(evtrec::Events().size(), 1u);
  EXPECT_TRUE(evtrec::Events()[0].mutexHeldAtInit);
}

TEST_F(LogEventoTest, ClosedContextDropsTheReportButTakesTheMutex) {
  evtrec::Reset(false);
  LogEvento(kError.Priorita, kError.Parola, "Zero length file %s", "/x");
  EXPECT_TRUE(evtrec::Calls().empty());
  EXPECT_EQ(fakeclock::EvtMutexLocks(), 1);
  EXPECT_EQ(fakeclock::EvtMutexUnlocks(), 1);
}

}  // namespace
