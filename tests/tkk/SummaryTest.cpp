// Summaries as the tool builds, reads, searches, compares and shows them.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "BadInput.h"
#include "Catalogue.h"
#include "Geodesy.h"
#include "NearestTracks.h"
#include "StagedFolder.h"
#include "SummaryBuild.h"
#include "SummaryDiff.h"
#include "SummaryRecords.h"
#include "TrackBuilder.h"
#include "TrackReader.h"

namespace tkk {
namespace {

struct TempDir {
  TempDir() {
    char name[] = "/tmp/tkk-summary-XXXXXX";
    path = mkdtemp(name);
  }
  ~TempDir() { EXPECT_EQ(system(("rm -rf " + path).c_str()), 0); }
  std::string Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path + "/" + name, std::ios::binary) << bytes;
    return path + "/" + name;
  }
  std::string Read(const std::string& name) const {
    std::ifstream in(path + "/" + name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  std::string path;
};

std::unique_ptr<IFileTkk> Square(const char* name, double lat, double lon, size_t layouts) {
  Circuit c;
  c.name = name;
  c.nation = "IT";
  for (size_t i = 0; i < layouts; ++i) {
    const double d = 0.004 / static_cast<double>(i + 1);
    c.layouts.push_back({layouts == 1 ? "" : "L" + std::to_string(i),
                         {{lat, lon}, {lat, lon + d}, {lat + d, lon + d}, {lat + d, lon}}});
  }
  return BuildTrack(c, NewTrackOptions());
}

// Monza (two layouts, a name to escape) and Imola saved as track files, with
// a file that is not a track and a map that is not a .tkk.
class TwoTracks : public testing::Test {
 protected:
  std::vector<std::string> Save() {
    std::vector<std::unique_ptr<IFileTkk>> tracks;
    tracks.push_back(Square("Monza & <Co>", 45.62, 9.28, 2));
    tracks.push_back(Square("Imola", 44.34, 11.71, 1));
    dir.Write("zz-broken.tkk", "not a track");
    dir.Write("notes.txt", "x");
    return SaveTracks(tracks, dir.path);
  }
  TempDir dir;
  const std::vector<std::string> saved = Save();
};

// The message of the bad input `f` throws, or "" when it throws none.
template <typename F>
std::string Why(F f) {
  try {
    f();
  } catch (const BadInput& e) {
    return e.what();
  }
  return "";
}

_SDatoRiassuntivo Record(const char* file, short variant, const char* name, uint32_t date) {
  _SDatoRiassuntivo r;
  memcpy(r.FileName, file, 8);
  strncpy(r.Name, name, sizeof r.Name);
  memcpy(r.Country, "IT", 2);
  r.VariantIdx = variant;
  r.Date.Valore = date;
  return r;
}

std::string Bytes(const std::vector<_SDatoRiassuntivo>& records) {
  return std::string(reinterpret_cast<const char*>(records.data()), records.size() * sizeof records[0]);
}

// A track saved with its logo reopens; a cut, empty, missing file or a
// folder does not.
TEST(TrackFiles, SavedTracksReopenAndUnreadableOnesAreBadInput) {
  TempDir dir;
  std::vector<std::unique_ptr<IFileTkk>> tracks;
  tracks.push_back(Square("Monza", 45.62, 9.28, 2));
  tracks[0]->SetTrackLogo(dir.Write("logo.png", std::string(20, 'x')));
  const std::vector<std::string> written = SaveTracks(tracks, dir.path);
  ASSERT_EQ(written.size(), 1u);
  const std::vector<LogoEntry> logos = ListLogos(written[0]);
  ASSERT_EQ(logos.size(), 1u);
  EXPECT_EQ(logos[0].name + "/" + std::to_string(logos[0].bytes), "logo.png/20");
  const auto back = OpenTrack(written[0]);
  EXPECT_EQ(back->GetVariantiTrack().size(), 2u);
  EXPECT_EQ(back->GetNomePista(), "L0");
  for (const std::string& notADir : {dir.path + "/missing", written[0]})
    EXPECT_EQ(Why([&] { SaveTracks(tracks, notADir); }), notADir + ": output folder does not exist");
  const std::string bytes = dir.Read(written[0].substr(dir.path.size() + 1));
  for (const std::string& bad : {dir.Write("cut.tkk", bytes.substr(0, bytes.size() - 5)),
                                 dir.Write("empty.tkk", ""), dir.path, dir.path + "/none.tkk"})
    EXPECT_THROW(OpenTrack(bad), BadInput) << bad;
}

TEST(SummaryInput, DegreesAndSummaryFiles) {
  EXPECT_EQ(ParseDegrees("-90", "latitude", 90) + ParseDegrees("180", "longitude", 180), 90.0);
  for (const char* bad : {"", "abc", "45x", "90.0001", "-91", "nan", "inf", "1e400", " "})
    EXPECT_THROW(ParseDegrees(bad, "latitude", 90), BadInput) << bad;
  EXPECT_EQ(Why([] { ParseDegrees("-91", "latitude", 90); }), "latitude -91 is out of range (-90 to 90)");
  TempDir dir;
  EXPECT_EQ(OpenSummary(dir.Write("empty.bin", ""))->GetNumRiassuntivi(), 0);
  EXPECT_EQ(OpenSummary(dir.Write("two.bin", std::string(256, '\0')))->GetNumRiassuntivi(), 2);
  for (const std::string& bad :
       {dir.Write("cut.bin", std::string(129, '\0')), dir.path + "/missing", dir.path})
    EXPECT_THROW(OpenSummary(bad), BadInput) << bad;
}

TEST_F(TwoTracks, SummaryHoldsThemInNameOrderVariantByVariantAndListsUnreadableOnes) {
  TempDir out, none;
  std::vector<size_t> progress;
  const SummaryBuild build =
      BuildSummary(dir.path, [&](size_t done, size_t total) { progress.push_back(done * total); });
  EXPECT_EQ(progress, (std::vector<size_t>{3, 6, 9}));
  ASSERT_EQ(build.tracks.size(), 2u);
  ASSERT_EQ(build.skipped.size(), 1u);
  EXPECT_EQ(build.skipped[0].path, dir.path + "/zz-broken.tkk");
  ASSERT_EQ(build.summary->GetNumRiassuntivi(), 3);
  // Name order: the two tracks as saved (GUID names grow with time).
  const size_t monza = saved[0] < saved[1] ? 0 : 1;
  EXPECT_EQ(build.tracks[monza].path, saved[0]);
  EXPECT_EQ(build.tracks[monza].variants.size(), 2u);
  for (short v = 0; v < 2; ++v) {
    const _SDatoRiassuntivo* r = nullptr;
    build.summary->GetDatoRiassuntivo(r, static_cast<int>(build.tracks[monza].firstRecord) + v);
    EXPECT_EQ(r->VariantIdx, v);
    EXPECT_EQ(std::string(r->Name), "L" + std::to_string(v));
  }
  WriteSummarySet(*build.summary, out.path);
  for (const std::string& name : SummarySetFiles()) EXPECT_FALSE(out.Read(name).empty()) << name;
  EXPECT_EQ(OpenSummary(out.path + "/by-guid.bin")->GetNumRiassuntivi(), 3);
  EXPECT_THROW(WriteSummarySet(*std::unique_ptr<IFileRiassuntivo>(IFileRiassuntivo::CreateMe()), none.path),
               BadInput);
  EXPECT_NO_THROW(WriteSummarySet(*OpenSummary(none.Write("one.bin", std::string(128, '\0'))), none.path));
  EXPECT_THROW(BuildSummary(dir.path + "/notes.txt"), BadInput);
}

// Columns line up by characters, not bytes.
TEST(ListSummary, EveryRecordInItsOrderAndAsATable) {
  TempDir dir;
  std::vector<_SDatoRiassuntivo> records = {Record("aaaaaaaa", 0, "Nürburgring", 0),
                                            Record("bbbbbbbb", 1, "Imola", 0)};
  records[1].Length = 4909.0f;
  records[1].RifLat = -338000000;
  const nlohmann::json list = ListSummary(*OpenSummary(dir.Write("s.bin", Bytes(records))));
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[1]["position"], 1);
  EXPECT_EQ(list[1]["fileName"], "bbbbbbbb");
  EXPECT_EQ(list[1]["variant"], 1);
  EXPECT_EQ(list[1]["lat"], -33.8);
  const std::string text = ListText(list);
  EXPECT_NE(text.find("\n1  bbbbbbbb    1  Imola        IT             -33.80000  0.00000  4.909 km  2015-"),
            std::string::npos)
      << text;
  EXPECT_EQ(text.substr(text.size() - 11), "2 variants\n");
}

TEST_F(TwoTracks, NearestFirstWithinReachAndLimited) {
  const SummaryBuild build = BuildSummary(dir.path);
  NearestQuery query;
  query.lat = 44.5;
  query.lon = 11.0;  // nearer Imola than Monza
  const nlohmann::json all = NearestTracks(*build.summary, query);
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0]["name"], "Imola");
  EXPECT_EQ(all[0]["nation"], "IT");
  for (size_t i = 1; i < all.size(); ++i) EXPECT_LE(all[i - 1]["distanceM"], all[i]["distanceM"]);
  EXPECT_NEAR(all[0]["distanceM"].get<double>(),
              HaversineM({44.5, 11.0, 0}, {all[0]["lat"], all[0]["lon"], 0}), 0.1);
  query.limit = 2;
  EXPECT_EQ(NearestTracks(*build.summary, query).size(), 2u);
  query.withinM = static_cast<int>(all[0]["distanceM"].get<double>()) + 1;
  EXPECT_EQ(NearestTracks(*build.summary, query).size(), 1u);
  query.withinM = 0;
  const std::string text = NearestText(all);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4);
  EXPECT_EQ(text.find('.'), std::string::npos) << text;  // whole metres
  EXPECT_EQ(NearestText(NearestTracks(*build.summary, query)), "no track within reach\n");
}

// Variants are compared with the same variant of the other side; a date in
// 2030 or later never counts as newer.
TEST(DiffSummaries, EachVariantNewRemovedChangedEitherWayOrEqual) {
  TempDir dir;
  const uint32_t may = 0x24800000, june = 0x25000000, year2031 = 0x40000000;
  const std::vector<_SDatoRiassuntivo> before = {
      Record("aaaaaaaa", 0, "Two layouts", may), Record("aaaaaaaa", 1, "Short", may),
      Record("bbbbbbbb", 0, "Removed", may),     Record("cccccccc", 0, "Renamed", may),
      Record("dddddddd", 0, "Older", june),      Record("eeeeeeee", 0, "Far future", may)};
  std::vector<_SDatoRiassuntivo> after = {before[0], before[1], before[3],
                                          before[4], before[5], Record("ffffffff", 0, "Added", june)};
  strcpy(after[2].Name, "Renamed again");
  after[2].Date.Valore = june;
  after[3].Date.Valore = may;
  after[4].Date.Valore = year2031;
  const nlohmann::json diff = DiffSummaries(*OpenSummary(dir.Write("old.bin", Bytes(before))),
                                            *OpenSummary(dir.Write("new.bin", Bytes(after))));
  std::string files;
  for (const char* kind : {"equal", "removed", "new", "newer", "older"}) {
    files += std::string(kind) + ":";
    for (const auto& e : diff[kind])
      files += e["fileName"].get<std::string>() + "/" + e["variant"].dump() + " ";
  }
  EXPECT_EQ(files,
            "equal:aaaaaaaa/0 aaaaaaaa/1 removed:bbbbbbbb/0 new:ffffffff/0 newer:cccccccc/0 "
            "older:dddddddd/0 eeeeeeee/0 ");
  EXPECT_EQ(diff["newer"][0]["name"], "Renamed again");
  EXPECT_EQ(diff["removed"][0]["name"].get<std::string>() + diff["removed"][0]["nation"].get<std::string>(),
            "RemovedIT");
  const std::string text = DiffText(diff);
  EXPECT_NE(text.find("changed (newer)      cccccccc  0  IT    Renamed again"), std::string::npos) << text;
  EXPECT_NE(text.find("2 variants equal"), std::string::npos) << text;
}

TEST(StagedFolder, FilesAppearTogetherOrNotAtAll) {
  TempDir out;
  out.Write("summary.bin", "old");
  {
    StagedFolder staged(out.path);
    std::ofstream(staged.Path("summary.bin")) << "new";
    EXPECT_THROW(staged.Commit({"summary.bin", "never-written"}), BadInput);
  }
  EXPECT_EQ(out.Read("summary.bin"), "old");
  {
    StagedFolder staged(out.path);
    std::ofstream(staged.Path("summary.bin")) << "new";
    std::ofstream(staged.Path("index.html")) << "page";
    staged.Commit({"summary.bin", "index.html"});
  }
  EXPECT_EQ(out.Read("summary.bin") + out.Read("index.html"), "newpage");
  EXPECT_EQ(system(("test $(ls -A " + out.path + " | wc -l) -eq 2").c_str()), 0) << "staging left behind";
  EXPECT_THROW(StagedFolder(out.path + "/missing"), BadInput);
}

// Rows in the summary's order (Monza saved first) come out by nation, site
// and variant; names are escaped and the page runs no script.
TEST_F(TwoTracks, CataloguePageHasARowAndAPicturePerVariantNamesEscapedNoScript) {
  const SummaryBuild build = BuildSummary(dir.path);
  std::vector<CatalogueRow> rows;
  for (const SummarisedTrack& track : build.tracks) {
    for (size_t v = 0; v < track.variants.size(); ++v) {
      CatalogueRow row;
      build.summary->GetDatoRiassuntivo(row.record, static_cast<int>(track.firstRecord + v));
      row.variant = &track.variants[v];
      row.geojson = "x.geojson";
      rows.push_back(row);
    }
  }
  const std::string page = CataloguePage(rows, 2);
  const auto count = [&page](const std::string& what) {
    size_t n = 0;
    for (size_t at = page.find(what); at != std::string::npos; at = page.find(what, at + 1)) ++n;
    return n;
  };
  EXPECT_EQ(page.rfind("<!DOCTYPE html>", 0), 0u);
  EXPECT_EQ(count("<tr class=\"variant\"") + count("<svg") + count("href=\"x.geojson\""), 9u);
  const size_t monza = page.find("\"name\">Monza");
  EXPECT_LT(page.find("\"name\">Imola<"), monza);
  EXPECT_LT(page.find(">L0 · Race Track<", monza), page.find(">L1 · Race Track<", monza));
  EXPECT_EQ(count("\"name\">Monza &amp; &lt;Co&gt;</span>"), 2u);
  EXPECT_EQ(count("3 variants of 2 track files") + count(" width=\"230\" height=\"181\""), 4u);
  EXPECT_EQ(count("<script") + count("on the logger") + count("<td />") + count("<div />") + count("<a />"),
            0u);  // HTML has no <x/>
}

}  // namespace
}  // namespace tkk
