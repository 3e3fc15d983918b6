// Building, saving, reopening and checking tracks made from outlines.
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>

#include "BadInput.h"
#include "Geodesy.h"
#include "Report.h"
#include "TrackBuilder.h"
#include "TrackReader.h"
#include "Vocabulary.h"

namespace tkk {
namespace {

// A rough 1.2 km loop near Imola, starting west-bound, and a shorter one.
Circuit TwoLayouts() {
  Circuit c;
  c.name = "Circuito di prova";
  c.layouts.push_back({"Lungo", {{44.340, 11.716}, {44.340, 11.712}, {44.343, 11.712}, {44.343, 11.716}}});
  c.layouts.push_back({"", {{44.340, 11.716}, {44.341, 11.712}, {44.342, 11.716}}});
  return c;
}

struct TempDir {
  TempDir() {
    char name[] = "/tmp/tkk-test-XXXXXX";
    path = mkdtemp(name);
  }
  ~TempDir() { EXPECT_EQ(system(("rm -rf " + path).c_str()), 0); }
  std::string path;
};

TEST(TrackBuilder, EachLayoutBecomesAVariantWithItsGeometry) {
  NewTrackOptions options;
  options.nation = "IT";
  options.widthM = 15;
  const Circuit circuit = TwoLayouts();
  const auto track = BuildTrack(circuit, options);
  ASSERT_EQ(track->GetTagsInfoVarianti().size(), 2u);
  EXPECT_EQ(track->GetNamexSito(), "Circuito di prova");
  for (size_t i = 0; i < 2; ++i) {
    IVarianteTkk& v = *track->GetVariantiTrack()[i];
    const Layout& layout = circuit.layouts[i];
    const VariantGeometry g = GeometryOf(v);
    EXPECT_EQ(g.outline.size(), layout.points.size());
    EXPECT_NEAR(HaversineM(g.reference, Centroid(layout.points)), 0.0, 0.02);
    ASSERT_EQ(g.lines.size(), 1u);
    EXPECT_NEAR(HaversineM(g.lines[0].at, layout.points[0]), 0.0, 0.02);
    EXPECT_EQ(g.lines[0].widthM, 15u);
    EXPECT_NEAR(v.GetTrackLenght(), ClosedLengthM(layout.points), 0.01);
    EXPECT_EQ(v.GetTrackLenghtKey(), LUNGHEZZA_CUSTOM);
    int hours = 0, minutes = 0;
    EXPECT_TRUE(v.GetTrackTimeZone(hours, minutes));
    EXPECT_EQ(hours, 1);
  }
  EXPECT_EQ(track->GetVariantiTrack()[0]->GetNomeXDevice(), "Lungo");
  EXPECT_EQ(track->GetVariantiTrack()[1]->GetNomeXDevice(), "Circuito di prova");
  EXPECT_EQ(track->GetTagInfo()->InfoFw.InfoBeacons.TipoBeaconInUso, BEACON_USER);
  EXPECT_NE(track->GetGuidVariante(0).Valore, track->GetGuidVariante(1).Valore);
}

TEST(TrackBuilder, OvalsGetTheStandardKeyAndMakersTheirOwnSet) {
  NewTrackOptions options;
  options.type = TRACCIATO_OVAL;
  options.maker = true;
  Circuit circuit = TwoLayouts();
  circuit.nation = "US";
  circuit.state = "FL";  // from the map file, no option overrides it
  const auto track = BuildTrack(circuit, options);
  EXPECT_EQ(FixedText(track->GetTagInfo()->InfoFw.SubNationCode, 4), "FL");
  EXPECT_EQ(track->GetTimeZone(), -5);
  // 1.30 km of outline counts as 8/10 mi; the length stays the measured one.
  EXPECT_EQ(track->GetTrackLenghtKey(), LUNGHEZZA_8_10_MI);
  EXPECT_GT(track->GetTrackLenght(), 1300.0f);
  EXPECT_EQ(track->GetTagInfo()->InfoFw.InfoBeacons.TipoBeaconInUso, BEACON_SCRUTINEERING);
  EXPECT_TRUE(track->GetTrackIsReadOnly());
}

TEST(TrackBuilder, RefusesCodesAFileCannotHold) {
  NewTrackOptions options;
  options.nation = "ITALY";
  EXPECT_THROW(BuildTrack(TwoLayouts(), options), BadInput);
  EXPECT_EQ(CheckCode("NSW1", "state"), "NSW1");
  EXPECT_THROW(CheckCode("N-1", "state"), BadInput);
  EXPECT_EQ(CutUtf8("Nürburgring", 2), "N");  // not half of the ü
  EXPECT_EQ(CutUtf8("Nürburgring", 3), "Nü");
}

TEST(Vocabulary, TypesAndSurfacesByNameOrKey) {
  const std::pair<const char*, int> types[] = {{"kart track", 2}, {"Oval", 3}, {"3", 3}, {"10", 10}};
  for (const auto& t : types) EXPECT_EQ(ParseTrackType(t.first), t.second) << t.first;
  const std::pair<const char*, int> surfaces[] = {{"DIRT", 2}, {"16", 16}, {"Paved", 1}};
  for (const auto& s : surfaces) EXPECT_EQ(ParseSurface(s.first), s.second) << s.first;
  for (const char* bad : {"4", "0", "Tarmac", ""}) EXPECT_THROW(ParseTrackType(bad), BadInput) << bad;
  EXPECT_THROW(ParseSurface("3"), BadInput);
}

TEST(TrackFiles, SavedTracksReopenAndUnreadableOnesAreBadInput) {
  TempDir dir;
  std::vector<std::unique_ptr<IFileTkk>> tracks;
  tracks.push_back(BuildTrack(TwoLayouts(), NewTrackOptions()));
  std::ofstream(dir.path + "/logo.png", std::ios::binary) << std::string(20, 'x');
  tracks[0]->SetTrackLogo(dir.path + "/logo.png");
  const std::vector<std::string> written = SaveTracks(tracks, dir.path);
  ASSERT_EQ(written.size(), 1u);
  const std::vector<LogoEntry> logos = ListLogos(written[0]);
  ASSERT_EQ(logos.size(), 1u);
  EXPECT_EQ(logos[0].name, "logo.png");
  EXPECT_EQ(logos[0].bytes, 20u);
  const auto back = OpenTrack(written[0]);
  EXPECT_EQ(back->GetVariantiTrack().size(), 2u);
  EXPECT_EQ(back->GetNomePista(), "Lungo");
  EXPECT_THROW(SaveTracks(tracks, dir.path + "/missing"), BadInput);

  std::ifstream in(written[0], std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(in)), {});
  const std::string cut = dir.path + "/cut.tkk";
  std::ofstream(cut, std::ios::binary) << bytes.substr(0, bytes.size() - 5);
  const std::string empty = dir.path + "/empty.tkk";
  std::ofstream(empty, std::ios::binary).flush();
  for (const std::string& bad : {cut, empty, dir.path, dir.path + "/none.tkk"}) {
    EXPECT_THROW(OpenTrack(bad), BadInput) << bad;
  }
}

TEST(Report, ChecksExplainFailuresAndSkipTheMakersRuleForUsers) {
  Circuit far = TwoLayouts();
  far.layouts.resize(1);
  far.layouts[0].points.insert(far.layouts[0].points.begin(), GeoPoint{44.320, 11.716});
  far.nation = "US";
  const auto track = BuildTrack(far, NewTrackOptions());
  const nlohmann::json check = CheckTrack(*track, "t.tkk");
  EXPECT_FALSE(check["passed"].get<bool>());
  const auto& checks = check["checks"];
  ASSERT_EQ(checks.size(), 4u);
  EXPECT_TRUE(checks[0]["passed"].get<bool>());
  EXPECT_FALSE(checks[1]["passed"].get<bool>());
  EXPECT_EQ(checks[1]["message"].get<std::string>().rfind("lap is far from average point", 0), 0u);
  EXPECT_FALSE(checks[2]["passed"].get<bool>());  // a US finish line east of Greenwich
  EXPECT_EQ(checks[3]["message"], "not applicable: a user's track");

  const nlohmann::json info = DescribeTrack(*track, "/x/t.tkk", {});
  EXPECT_EQ(info["variants"][0]["nation"], "US");  // from the record, not the view
  EXPECT_EQ(info["variants"][0]["beaconTypeInUse"]["text"], "User");
  EXPECT_TRUE(info["fileName"].is_null());
}

}  // namespace
}  // namespace tkk
