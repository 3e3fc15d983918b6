// A host that never sets up an event log: it defines neither
// vek_evtcontext nor vek_evtcontext_mutex. The library still loads, and
// every operation gives its usual result without a record.
#include <gtest/gtest.h>
#include <string.h>

#include "DataOraTkk.h"
#include "GuidNomeFile.h"
#include "GuidTkk.h"
#include "foundation/LogEvento.h"

namespace {

TEST(NoGlobalsHost, ReportingIsANoOp) {
  LogEvento(kError.Priorita, kError.Parola, "Can't open file %s", "/nowhere");
  LogEvento(kAlert.Priorita, kAlert.Parola, "Excluded, hence skipping!");
  SUCCEED();
}

TEST(NoGlobalsHost, IdentifiersStillWork) {
  const _UGuidTkk guid = IGuidTkk::GetGuidTkk(false, true);
  EXPECT_FALSE(IGuidTkk::IsVek(guid));
  const std::string name = IGuidNomeFile::GetNomeFile(true, false);
  tm t;
  memset(&t, 0, sizeof t);
  bool isVek = false, isDev = true;
  ASSERT_TRUE(IGuidNomeFile::GetDaNomeFile(name, t, isVek, isDev));
  EXPECT_TRUE(isVek);
  EXPECT_FALSE(isDev);
}

}  // namespace
