// A host that never sets up an event log: it defines neither
// vek_evtcontext nor vek_evtcontext_mutex. The library still loads, and an
// operation that reports gives its usual result without a record.
#include <gtest/gtest.h>

#include <vektkk.h>

namespace {

TEST(NoGlobalsHost, OperationsKeepTheirResults) {
  std::unique_ptr<IFileTkk> missing(IFileTkk::CreateMeUponFile("/absent/0k3f9zq1.tkk", true, false));
  EXPECT_FALSE(missing->IsGood() || missing->SalvaFileInPath("/absent/", nullptr) != "");
}

}  // namespace
