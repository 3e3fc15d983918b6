#include <gtest/gtest.h>

#include "CDistanceCalculator.h"
#include "CFileTkk.h"
#include "TrackMemoryRecords.h"
#include "support/EvtLogRecorder.h"
#include "support/TrackFixtures.h"

namespace {

TEST(TrackLength, KeyIsTheStandardLengthBelow) {
  const std::pair<double, unsigned> cases[] = {
      {0.0, 0},         {-3.0, 0},         {50.0, 23},       {80.4672, 23},   {80.5, 804672},
      {160.9344, 804672}, {160.94, 1609344}, {1609.30, 12874756}, {1609.35, 16093445},
      {5000.0, 32186890}, {1e9, 32186890},
  };
  for (const auto& c : cases) EXPECT_EQ(CDistanceCalculator::GetLunghezzaFrazionaria(c.first), c.second) << c.first;
}

TEST(TrackLength, SettingKeyAndLengthTogether) {
  struct Case {
    bool hasKey;
    unsigned key;
    bool hasMetres;
    float metres;
    int32_t storedKey;
    float storedMetres;
  };
  const Case cases[] = {
      {true, 5364481, true, 999.0f, 5364481, 536.0f},  // whole metres of the key
      {true, 16093445, false, 0, 16093445, 1609.0f},
      {true, 12345, true, 777.5f, 0, 777.5f},          // not a key: the length counts
      {true, 0, true, 12.25f, 0, 12.25f},
      {false, 0, true, 3.5f, 0, 3.5f},
      {true, 12345, false, 0, 0, 0.0f},
      {false, 0, false, 0, 0, 0.0f},
  };
  for (const Case& c : cases) {
    _STagInfoVarianteTKK_fw fw;
    fw.TipoLunghezza = 42;
    fw.Lunghezza = 42.0f;
    const auto key = static_cast<_eTipoLunghezzaPista>(c.key);
    fw.ImpostaLunghezzaPista(c.hasKey ? &key : nullptr, c.hasMetres ? &c.metres : nullptr);
    EXPECT_EQ(fw.TipoLunghezza, c.storedKey) << c.key;
    EXPECT_EQ(fw.Lunghezza, c.storedMetres) << c.key;
  }
}

TEST(TrackLength, AssigningFromTheShapeReportsEachChangeOnce) {
  evtrec::Reset(true);
  auto t = fixtures::MakeSmallTrack();  // device name "Monza GP"
  t->SetTrackTypeCircuitKey(TRACCIATO_OVAL);
  const auto halfMile = LUNGHEZZA_1_2_MI;
  t->SetTrackLenght(&halfMile, nullptr);
  ASSERT_EQ(t->GetTrackLenght(), 804.0f);

  EXPECT_TRUE(t->AssignTrackLength());
  EXPECT_EQ(t->GetTrackLenghtKey(), 0u);
  EXPECT_EQ(t->GetTrackLenght(), 0.0f);  // the shape adds nothing to the length
  ASSERT_EQ(evtrec::Events().size(), 2u);
  EXPECT_EQ(evtrec::Events()[0].severity, "INFO");
  EXPECT_EQ(evtrec::Events()[0].priority, 6);
  EXPECT_EQ(evtrec::Events()[0].Message(),
            "for track 'Monza GP' changed fractionary length for track from 1/2 mi to custom");
  EXPECT_EQ(evtrec::Events()[1].Message(),
            "for track 'Monza GP' changed length for track from 804.00 m to 0.00 m");

  EXPECT_TRUE(t->AssignTrackLength());
  EXPECT_EQ(evtrec::Events().size(), 2u);

  // Other circuit types lose their key without a word.
  t->SetTrackTypeCircuitKey(TRACCIATO_RACE_TRACK);
  t->SetTrackLenght(&halfMile, nullptr);
  evtrec::Reset(true);
  t->AssignTrackLength();
  ASSERT_EQ(evtrec::Events().size(), 1u);
  EXPECT_EQ(evtrec::Events()[0].Message(), "for track 'Monza GP' changed length for track from 804.00 m to 0.00 m");
  evtrec::Reset(false);
}

}  // namespace
