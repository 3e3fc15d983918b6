#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "CFileTkk.h"
#include "IVarianteTkk.h"

namespace {

TEST(Vocabolari, LengthKeysAreExactMatches) {
  const std::pair<unsigned, const char*> cases[] = {
      {804672, "1/20 mi"},    {1609344, "1/10 mi"},  {1788160, "1/9 mi"},  {2011680, "1/8 mi"},
      {2299063, "1/7 mi"},    {2682240, "1/6 mi"},   {3218689, "1/5 mi"},  {4023361, "1/4 mi"},
      {4828033, "3/10 mi"},   {5029201, "5/16 mi"},  {5364481, "1/3 mi"},  {6035041, "3/8 mi"},
      {6437378, "4/10 mi"},   {8046722, "1/2 mi"},   {9656067, "6/10 mi"}, {10058403, "5/8 mi"},
      {11040103, "0.686 mi"}, {11265411, "7/10 mi"}, {12070083, "3/4 mi"}, {12874756, "8/10 mi"},
      {16093445, "1 mi"},     {32186890, "2 mi"},    {0, "custom"},        {1609345, "custom"},
      {23, "custom"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(IVarianteTkk::OttieniStringaxLunghezzaKeyy(static_cast<_eTipoLunghezzaPista>(c.first)),
              c.second)
        << c.first;
}

TEST(Vocabolari, StrictLookupsGiveNothingForUnknownKeys) {
  struct Case {
    int key;
    const char* surface;  // non-strict; strict gives the same or ""
    const char* type;
  };
  const Case cases[] = {
      {0, "Paved", "Race Track"},  {1, "Paved", "Race Track"},   {2, "Dirt", "Kart Track"},
      {3, "Paved", "Oval"},        {4, "Ice", "Race Track"},     {5, "Paved", "Drag Strip"},
      {6, "Paved", "Rally"},       {7, "Paved", "Hill Climb"},   {8, "Water", "Motocross"},
      {9, "Paved", "Open Circuit"}, {10, "Paved", "ROval"},      {11, "Paved", "Race Track"},
      {16, "Combo", "Race Track"}, {-1, "Paved", "Race Track"},
  };
  const std::vector<int> knownSurfaces = {1, 2, 4, 8, 16};
  const std::vector<int> knownTypes = {1, 2, 3, 5, 6, 7, 8, 9, 10};
  auto known = [](const std::vector<int>& keys, int k) {
    return std::find(keys.begin(), keys.end(), k) != keys.end();
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.key);
    const auto surface = static_cast<_eTipoRoadSurfaceTkk>(c.key);
    const auto type = static_cast<_eTipoTracciatoTkk>(c.key);
    EXPECT_EQ(IVarianteTkk::OttieniStringaxFondoStradaleKeyy(surface, false), c.surface);
    EXPECT_EQ(IVarianteTkk::OttieniStringaxFondoStradaleKeyy(surface, true),
              known(knownSurfaces, c.key) ? c.surface : "");
    EXPECT_EQ(IVarianteTkk::OttieniStringaxTrackTypeCircuitKeyy(type, false), c.type);
    EXPECT_EQ(IVarianteTkk::OttieniStringaxTrackTypeCircuitKeyy(type, true),
              known(knownTypes, c.key) ? c.type : "");
  }
}

TEST(Vocabolari, ListsAppendWithoutClearing) {
  std::vector<std::string> types = {"mine"};
  IVarianteTkk::GetElencoStringheTrackType(types);
  IVarianteTkk::GetElencoStringheTrackType(types);
  ASSERT_EQ(types.size(), 19u);
  const std::vector<std::string> once = {"Race Track", "Kart Track", "Oval",         "Drag Strip", "Rally",
                                         "Hill Climb", "Motocross",  "Open Circuit", "ROval"};
  EXPECT_EQ(std::vector<std::string>(types.begin() + 1, types.begin() + 10), once);
  std::vector<std::string> surfaces;
  IVarianteTkk::GetElencoStringheFondoStradale(surfaces);
  EXPECT_EQ(surfaces, (std::vector<std::string>{"Paved", "Dirt", "Ice", "Water", "Combo"}));
}

// The two rules are kept separately: 0, 4, 8 and above 10 are both closed
// and open.
TEST(Vocabolari, ClosedAndOpenForEveryType) {
  const bool closed[] = {true, true, true, true, true, false, false, false, true, false, true, true, true};
  const bool open[] = {true, false, false, false, true, true, true, true, true, true, false, true, true};
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMe(false, false));
  for (int t = 0; t <= 12; ++t) {
    EXPECT_EQ(IVarianteTkk::IsTrackChiusoo(static_cast<_eTipoTracciatoTkk>(t)), closed[t]) << t;
    EXPECT_EQ(track->IsOpenTrack(static_cast<_eTipoTracciatoTkk>(t)), open[t]) << t;
  }
}

}  // namespace
