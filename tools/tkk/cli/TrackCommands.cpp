// The commands over single track files: info, check, new, export, render.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "BadInput.h"
#include "Command.h"
#include "Export.h"
#include "Import.h"
#include "OutputFile.h"
#include "Render.h"
#include "Report.h"
#include "TrackBuilder.h"
#include "TrackReader.h"
#include "Vocabulary.h"

namespace tkk {

Runner AttachInfo(CLI::App& app) {
  struct Args {
    std::string file;
    bool json = false;
  };
  auto args = std::make_shared<Args>();
  app.add_option("FILE", args->file, "Track file (.tkk)")->required();
  app.add_flag("--json", args->json, "Machine-readable output");
  return [args] {
    const std::unique_ptr<IFileTkk> track = OpenTrack(args->file);
    const nlohmann::json info = DescribeTrack(*track, args->file, ListLogos(args->file));
    std::cout << (args->json ? info.dump(2) + "\n" : InfoText(info));
    return kExitOk;
  };
}

Runner AttachCheck(CLI::App& app) {
  struct Args {
    std::vector<std::string> files;
    bool json = false;
  };
  auto args = std::make_shared<Args>();
  app.add_option("FILE", args->files, "Track files (.tkk)")->required();
  app.add_flag("--json", args->json, "Machine-readable output");
  return [args] {
    nlohmann::json results = nlohmann::json::array();
    for (const std::string& file : args->files) {
      const std::unique_ptr<IFileTkk> track = OpenTrack(file);
      results.push_back(CheckTrack(*track, file));
    }
    bool passed = true;
    for (const auto& r : results) passed = passed && r["passed"].get<bool>();
    if (args->json) {
      std::cout << results.dump(2) << "\n";
    } else {
      for (const auto& r : results) std::cout << CheckText(r);
    }
    return passed ? kExitOk : kExitCheckFailed;
  };
}

Runner AttachNew(CLI::App& app) {
  struct Args {
    std::vector<std::string> inputs;
    std::string dir;
    std::string type = "Race Track";
    std::string surface = "Paved";
    NewTrackOptions options;
    bool json = false;
  };
  auto args = std::make_shared<Args>();
  app.add_option("INPUT", args->inputs, "GeoJSON or GPX files, one track file each")->required();
  app.add_option("-o,--output", args->dir, "Folder for the new track files")->required();
  app.add_option("--name", args->options.name, "Site name (default: from the input)");
  app.add_option("--nation", args->options.nation, "Nation code, such as IT");
  app.add_option("--state", args->options.state, "State code, such as FL");
  app.add_option("--type", args->type, "Circuit type: a name such as \"Kart Track\", or its key")
      ->capture_default_str();
  app.add_option("--surface", args->surface, "Road surface: Paved, Dirt, Ice, Water, Combo")
      ->capture_default_str();
  app.add_option("--width", args->options.widthM, "Width of the finish line in metres")
      ->check(CLI::Range(1u, 1000u))
      ->capture_default_str();
  app.add_flag("--maker", args->options.maker, "A maker's (read-only) track");
  app.add_flag("--dev", args->options.dev, "A development track");
  app.add_flag("--json", args->json, "Machine-readable output");
  return [args] {
    NewTrackOptions options = args->options;
    options.type = ParseTrackType(args->type);
    options.surface = ParseSurface(args->surface);
    // Everything is read and built before anything is written, so that a bad
    // input leaves the output folder as it was.
    std::vector<std::unique_ptr<IFileTkk>> tracks;
    for (const std::string& input : args->inputs) tracks.push_back(BuildTrack(ReadCircuit(input), options));
    const std::vector<std::string> written = SaveTracks(tracks, args->dir);
    if (args->json) {
      std::cout << nlohmann::json(written).dump(2) << "\n";
    } else {
      for (size_t i = 0; i < written.size(); ++i) std::cout << written[i] << "  (" << args->inputs[i] << ")\n";
    }
    return kExitOk;
  };
}

Runner AttachExport(CLI::App& app) {
  struct Args {
    std::string file;
    std::string out;
    ExportFormat format = ExportFormat::kGeoJson;
  };
  auto args = std::make_shared<Args>();
  const std::map<std::string, ExportFormat> formats = {
      {"geojson", ExportFormat::kGeoJson}, {"gpx", ExportFormat::kGpx}, {"kml", ExportFormat::kKml}};
  app.add_option("FILE", args->file, "Track file (.tkk)")->required();
  app.add_option("--format", args->format, "geojson, gpx or kml")
      ->required()
      ->transform(CLI::CheckedTransformer(formats, CLI::ignore_case));
  app.add_option("-o,--output", args->out, "Output file (default: standard output)");
  return [args] {
    const std::unique_ptr<IFileTkk> track = OpenTrack(args->file);
    const std::string text = ExportTrack(*track, args->format);
    if (args->out.empty()) {
      std::cout << text;
    } else {
      WriteFileAtomically(args->out, text);
    }
    return kExitOk;
  };
}

Runner AttachRender(CLI::App& app) {
  struct Args {
    std::string file;
    std::string out;
    size_t variant = 0;
  };
  auto args = std::make_shared<Args>();
  app.add_option("FILE", args->file, "Track file (.tkk)")->required();
  app.add_option("-o,--output", args->out, "SVG file to write")->required();
  app.add_option("--variant", args->variant, "Variant to draw (0 is the main one)")->capture_default_str();
  return [args] {
    const std::unique_ptr<IFileTkk> track = OpenTrack(args->file);
    WriteFileAtomically(args->out, RenderSvg(*track, args->variant));
    return kExitOk;
  };
}

}  // namespace tkk
