// A host that never sets up an event log: it defines neither
// vek_evtcontext nor vek_evtcontext_mutex. The library still loads, and
// every operation gives its usual result without a record.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <memory>

#include <vektkk.h>

namespace {

TEST(NoGlobalsHost, ReportingOperationsKeepTheirResults) {
  std::unique_ptr<IFileTkk> missing(IFileTkk::CreateMeUponFile("/nowhere/0k3f9zq1.tkk", false, false));
  ASSERT_TRUE(missing);
  EXPECT_FALSE(missing->IsGood());
  EXPECT_FALSE(missing->LeggiFile("/nowhere/x.tkk", false));

  char dir[] = "/tmp/vektkk-noglobals-XXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  std::unique_ptr<IFileTkk> built(IFileTkk::CreateMe(false, false));
  _STagInfoVarianteTKK_fw fw;
  memset(fw.NationCode, 0, 8);
  ASSERT_TRUE(built->AddTagInfoVariante("GP", "Monza", fw, _STagIndexesVarianteTKK()));
  const std::string name = built->SalvaFileInPath(std::string(dir) + "/", nullptr);
  ASSERT_EQ(name.size(), 8u);
  const std::string path = std::string(dir) + "/" + name + ".tkk";

  std::unique_ptr<IFileTkk> readOnly(IFileTkk::CreateMeUponFile(path, true, false));
  EXPECT_TRUE(readOnly->IsGood());
  EXPECT_EQ(readOnly->AddTagDatiLogo({1, 2, 3}, "a.png"), 0xFFFF);  // refused, reported nowhere
  EXPECT_EQ(readOnly->SalvaFileInPath(std::string(dir) + "/", nullptr), "");
  unlink(path.c_str());
  rmdir(dir);
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
