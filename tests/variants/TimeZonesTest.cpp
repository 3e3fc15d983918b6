#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "IVarianteTkk.h"
#include "support/EvtLogRecorder.h"

namespace {

constexpr int kUntouched = 77;  // what the outputs held before the call
constexpr int kNone = 50;       // the zone is not determined

struct Case {
  const char* nation;
  const char* state;
  int hours, minutes;
  std::vector<std::string> reports;
};

void Check(const Case& c) {
  SCOPED_TRACE(std::string(c.nation) + "/" + c.state);
  evtrec::Reset(true);
  int hours = kUntouched, minutes = kUntouched;
  IVarianteTkk::GetTimeZoneFromNation(c.nation, c.state, hours, minutes);
  EXPECT_EQ(hours, c.hours);
  EXPECT_EQ(minutes, c.minutes);
  std::vector<std::string> reports;
  for (const auto& e : evtrec::Events()) {
    EXPECT_EQ(e.severity, "ERROR");
    reports.push_back(e.Message());
  }
  EXPECT_EQ(reports, c.reports);
  evtrec::Reset(false);
}

TEST(TimeZones, EveryNation) {
  const std::vector<std::pair<std::vector<std::string>, int>> groups = {
      {{"GB", "IE", "PT"}, 0},
      {{"FR", "MC", "LU", "CH", "NL", "ES", "AT", "BE", "CZ", "DE", "IT", "HR", "NO", "PL", "SE", "HU", "SK"}, 1},
      {{"FI", "TR", "ZA"}, 2},
      {{"AE"}, 4},
      {{"TH"}, 7},
      {{"CN", "SG", "TW", "MY"}, 8},
      {{"JP", "KR"}, 9},
      {{"PR"}, -4},
      {{"CO"}, -5},
  };
  for (const auto& g : groups)
    for (const auto& nation : g.first) Check({nation.c_str(), "XX", g.second, 0, {}});
  // Known to the table and refused all the same, like any unknown code.
  for (const char* nation : {"RU", "DK", "BR", "MX", "NZ", "it", "", "USA"})
    Check({nation, "", kNone, kUntouched, {std::string("Timezone not managed for nation ") + nation}});
}

TEST(TimeZones, EveryUnitedStatesState) {
  const std::vector<std::pair<std::vector<std::string>, int>> groups = {
      {{"AL", "CT", "DE", "FL", "GA", "ME", "MD", "MA", "NH", "NJ", "NY", "NC", "OH", "PA", "RI", "SC", "VT", "VA", "WV"}, -5},
      {{"AR", "IL", "IA", "LA", "MN", "MS", "MO", "ND", "OK", "TX", "WI"}, -6},
      {{"AZ", "CO", "MT", "NM", "UT", "WY"}, -7},
      {{"CA", "OR", "WA"}, -8},
      {{"AK"}, -9},
      {{"HI"}, -10},
      // Only the minutes are written for these nine: the hours stay 50.
      {{"ID", "IN", "KS", "KY", "MI", "NE", "NV", "SD", "TN"}, kNone},
  };
  size_t states = 0;
  for (const auto& g : groups)
    for (const auto& state : g.first) {
      Check({"US", state.c_str(), g.second, 0, {}});
      ++states;
    }
  EXPECT_EQ(states, 50u);
  Check({"US", "DC", kNone, 0, {"Timezone not managed in US for subNation DC"}});
  Check({"US", "al", kNone, 0, {"Timezone not managed in US for subNation al"}});

  // Called directly, unknown and unwritten states leave the hours as they were.
  int hours = kUntouched, minutes = kUntouched;
  IVarianteTkk::GetUSTimeZoneFromState("ID", hours, minutes);
  EXPECT_EQ(hours, kUntouched);
  EXPECT_EQ(minutes, 0);
}

TEST(TimeZones, AustraliaAndCanada) {
  const Case cases[] = {
      {"AU", "WA", 8, 0, {}},
      {"AU", "SA", 9, 30, {}},
      {"AU", "NT", 9, 30, {}},
      {"AU", "QLD", 10, 0, {}},
      {"AU", "NSW", 10, 0, {}},
      {"AU", "ACT", 10, 0, {}},
      {"AU", "VIC", 10, 0, {}},
      {"AU", "TAS", 10, 0, {}},
      {"AU", "WAU", kNone, kUntouched, {"Timezone not managed in Australia for subNation WAU"}},
      // Alberta gets its zone and a report; three provinces are reported twice.
      {"CA", "AB", -7, 0, {"Timezone not managed in Canada for sub nation AB"}},
      {"CA", "BC", kNone, kUntouched,
       {"Timezone not managed in Canada for sub nation BC", "Timezone not managed in Canada for sub nation BC"}},
      {"CA", "ON", kNone, kUntouched,
       {"Timezone not managed in Canada for sub nation ON", "Timezone not managed in Canada for sub nation ON"}},
      {"CA", "QC", kNone, kUntouched,
       {"Timezone not managed in Canada for sub nation QC", "Timezone not managed in Canada for sub nation QC"}},
      {"CA", "NS", kNone, kUntouched, {"Timezone not managed in Canada for sub nation NS"}},
  };
  for (const Case& c : cases) Check(c);
}

}  // namespace
