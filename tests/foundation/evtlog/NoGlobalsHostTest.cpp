// A host that never sets up an event log: it defines neither
// vek_evtcontext nor vek_evtcontext_mutex. The library still loads, and
// every operation gives its usual result without a record.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>

#include <vektkk.h>

namespace {

TEST(NoGlobalsHost, OperationsKeepTheirResults) {
  char dir[] = "/tmp/vektkk-noglobals-XXXXXX";
  const std::string path = std::string(mkdtemp(dir)) + "/";
  std::unique_ptr<IFileTkk> built(IFileTkk::CreateMe(false, false));
  _STagInfoVarianteTKK_fw fw;
  memset(fw.NationCode, 0, 8);
  ASSERT_TRUE(built->AddTagInfoVariante("GP", "Monza", fw, _STagIndexesVarianteTKK()));
  const std::string name = built->SalvaFileInPath(path, nullptr);
  // Refused and reported nowhere.
  std::unique_ptr<IFileTkk> readOnly(IFileTkk::CreateMeUponFile(path + name + ".tkk", true, false));
  EXPECT_EQ(std::make_pair(readOnly->IsGood(), readOnly->SalvaFileInPath(path, nullptr)),
            std::make_pair(true, std::string()));
  EXPECT_EQ(system(("rm -rf " + path).c_str()), 0);
}

}  // namespace
