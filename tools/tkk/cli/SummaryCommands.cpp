// The commands over summaries: summary build|list, nearest, diff.
#include <unistd.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "BadInput.h"
#include "Catalogue.h"
#include "Command.h"
#include "NearestTracks.h"
#include "OutputFile.h"
#include "StagedFolder.h"
#include "SummaryBuild.h"
#include "SummaryDiff.h"
#include "SummaryRecords.h"

namespace tkk {

namespace {

// A bar that redraws itself in place; only on a terminal, so that a log or
// a pipe gets no control characters.
void ShowProgress(size_t done, size_t total) {
  constexpr size_t kWidth = 30;
  const size_t filled = total ? done * kWidth / total : kWidth;
  std::cerr << "\r[" << std::string(filled, '#') << std::string(kWidth - filled, '.') << "] "
            << done << "/" << total << " track files" << (done == total ? "\n" : "") << std::flush;
}

std::string BaseName(const std::string& path) {
  const std::string base = path.substr(path.find_last_of('/') + 1);
  return base.substr(0, base.size() - 4);  // without ".tkk"
}

struct BuildArgs {
  std::string dir;
  std::string out;
  bool html = false;
};

int RunBuild(const BuildArgs& args) {
  StagedFolder staged(args.out);
  const SummaryBuild build =
      BuildSummary(args.dir, isatty(2) ? Progress(ShowProgress) : Progress());
  if (build.tracks.empty()) {
    throw BadInput(args.dir + (build.skipped.empty()
                                   ? ": no track files (*.tkk)"
                                   : ": none of its track files can be read, such as " +
                                         build.skipped[0].path));
  }
  WriteSummarySet(*build.summary, staged.Dir());
  std::vector<std::string> written = SummarySetFiles();
  if (args.html) {
    std::vector<CatalogueRow> rows;
    for (const SummarisedTrack& track : build.tracks) {
      const std::string geojson = BaseName(track.path) + ".geojson";
      WriteFileAtomically(staged.Path(geojson), ExportGeoJson(track.variants));
      written.push_back(geojson);
      for (size_t v = 0; v < track.variants.size(); ++v) {
        CatalogueRow row;
        build.summary->GetDatoRiassuntivo(row.record, static_cast<int>(track.firstRecord + v));
        row.variant = &track.variants[v];
        row.geojson = geojson;
        if (row.record != nullptr) rows.push_back(row);
      }
    }
    WriteFileAtomically(staged.Path("index.html"), CataloguePage(rows, build.tracks.size()));
    written.push_back("index.html");
  }
  staged.Commit(written);

  std::cout << "summary of " << build.summary->GetNumRiassuntivi() << " variants of "
            << build.tracks.size() << " track files in " << args.out << "/\n";
  if (args.html) std::cout << "catalogue page: " << args.out << "/index.html\n";
  for (const SkippedTrack& s : build.skipped) std::cerr << "tkk: skipped " << s.reason << "\n";
  return build.skipped.empty() ? kExitOk : kExitCheckFailed;
}

}  // namespace

Runner AttachSummary(CLI::App& app) {
  struct Args {
    BuildArgs build;
    std::string summary;
    bool json = false;
  };
  auto args = std::make_shared<Args>();
  app.require_subcommand(1);
  CLI::App* build = app.add_subcommand(
      "build",
      "A summary of every track file of DIR, its sorted sets and, with --html, a catalogue page "
      "(exit 1 when a track file was skipped)");
  build->add_option("DIR", args->build.dir, "Folder of track files (.tkk)")->required();
  build->add_option("-o,--output", args->build.out, "Folder for the summary files")->required();
  build->add_flag("--html", args->build.html, "Also index.html and a GeoJSON export per track");
  CLI::App* list = app.add_subcommand("list", "The variants a summary holds");
  list->add_option("SUMMARY", args->summary, "Binary summary file (such as summary.bin)")
      ->required();
  list->add_flag("--json", args->json, "Machine-readable output");
  return [args, build] {
    if (*build) return RunBuild(args->build);
    const std::unique_ptr<IFileRiassuntivo> summary = OpenSummary(args->summary);
    const nlohmann::json records = ListSummary(*summary);
    std::cout << (args->json ? records.dump(2) + "\n" : ListText(records));
    return kExitOk;
  };
}

Runner AttachNearest(CLI::App& app) {
  struct Args {
    std::string summary;
    std::string lat;
    std::string lon;
    NearestQuery query;
    bool json = false;
  };
  auto args = std::make_shared<Args>();
  app.add_option("SUMMARY", args->summary, "Binary summary file (such as summary.bin)")->required();
  app.add_option("LAT", args->lat, "Latitude in degrees, north positive")->required();
  app.add_option("LON", args->lon, "Longitude in degrees, east positive")->required();
  app.add_option("--within", args->query.withinM, "Only tracks nearer than this many metres")
      ->check(CLI::NonNegativeNumber);
  app.add_option("--limit", args->query.limit, "At most this many tracks")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  app.add_flag("--json", args->json, "Machine-readable output");
  return [args] {
    NearestQuery query = args->query;
    query.lat = ParseDegrees(args->lat, "latitude", 90.0);
    query.lon = ParseDegrees(args->lon, "longitude", 180.0);
    const std::unique_ptr<IFileRiassuntivo> summary = OpenSummary(args->summary);
    const nlohmann::json tracks = NearestTracks(*summary, query);
    std::cout << (args->json ? tracks.dump(2) + "\n" : NearestText(tracks));
    return kExitOk;
  };
}

Runner AttachDiff(CLI::App& app) {
  struct Args {
    std::string older;
    std::string newer;
    bool json = false;
  };
  auto args = std::make_shared<Args>();
  app.add_option("OLD", args->older, "The earlier binary summary file")->required();
  app.add_option("NEW", args->newer, "The later binary summary file")->required();
  app.add_flag("--json", args->json, "Machine-readable output");
  return [args] {
    const std::unique_ptr<IFileRiassuntivo> older = OpenSummary(args->older);
    const std::unique_ptr<IFileRiassuntivo> newer = OpenSummary(args->newer);
    const nlohmann::json diff = DiffSummaries(*older, *newer);
    std::cout << (args->json ? diff.dump(2) + "\n" : DiffText(diff));
    return kExitOk;
  };
}

}  // namespace tkk
