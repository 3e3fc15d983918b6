#include <gtest/gtest.h>
#include <locale.h>

#include <string>

#include "platform/IStrConv.h"

namespace {

// Switches LC_CTYPE for one test and restores it afterwards.
class LocaleScope {
 public:
  explicit LocaleScope(const char* name) : saved_(setlocale(LC_CTYPE, nullptr)) {
    ok_ = setlocale(LC_CTYPE, name) != nullptr;
  }
  ~LocaleScope() { setlocale(LC_CTYPE, saved_.c_str()); }
  bool ok() const { return ok_; }

 private:
  std::string saved_;
  bool ok_ = false;
};

const std::string kUtf8Text = "N\xC3\xBCrburgring Gro\xC3\x9F";  // Nürburgring Groß

TEST(IStrConv, CLocalePassesEverythingThrough) {
  LocaleScope scope("C");
  ASSERT_TRUE(scope.ok());
  EXPECT_EQ(IStrConv::convert_stringa_to_utf8(kUtf8Text), kUtf8Text);
  EXPECT_EQ(IStrConv::convert_utf8_to_stringa(kUtf8Text), kUtf8Text);
  const std::string binary("\xFF\x00\x80z", 4);
  EXPECT_EQ(IStrConv::convert_utf8_to_stringa(binary), binary);
}

TEST(IStrConv, Utf8LocalePassesThrough) {
  LocaleScope scope("C.UTF-8");
  if (!scope.ok()) GTEST_SKIP() << "no C.UTF-8 locale";
  EXPECT_EQ(IStrConv::convert_stringa_to_utf8(kUtf8Text), kUtf8Text);
  EXPECT_EQ(IStrConv::convert_utf8_to_stringa(kUtf8Text), kUtf8Text);
}

TEST(IStrConv, Latin1LocaleConvertsBothWays) {
  // The build generates this locale for the tests (LOCPATH).
  LocaleScope latin("en_US.ISO-8859-1");
  ASSERT_TRUE(latin.ok()) << "test locale en_US.ISO-8859-1 missing";
  const std::string latin1 = "N\xFCrburgring Gro\xDF";
  EXPECT_EQ(IStrConv::convert_stringa_to_utf8(latin1), kUtf8Text);
  EXPECT_EQ(IStrConv::convert_utf8_to_stringa(kUtf8Text), latin1);
  // Not representable in Latin-1: kept as it was rather than lost.
  const std::string euro = "\xE2\x82\xAC 10";
  EXPECT_EQ(IStrConv::convert_utf8_to_stringa(euro), euro);
  EXPECT_EQ(IStrConv::convert_utf8_to_stringa(""), "");
}

}  // namespace
