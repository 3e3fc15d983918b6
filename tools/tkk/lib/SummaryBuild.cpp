#include "SummaryBuild.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>

#include "BadInput.h"
#include "TrackReader.h"

namespace tkk {

namespace {

constexpr off_t kRecordBytes = sizeof(_SDatoRiassuntivo);

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

std::unique_ptr<IFileRiassuntivo> OpenSummary(const std::string& path) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0) throw BadInput(path + ": no such file");
  if (S_ISDIR(st.st_mode)) throw BadInput(path + ": is a directory, not a summary file");
  if (!S_ISREG(st.st_mode)) throw BadInput(path + ": not a summary file");
  if (st.st_size % kRecordBytes != 0) {
    throw BadInput(path + ": not a summary file (" + std::to_string(st.st_size) +
                   " bytes is not a whole number of 128-byte records)");
  }
  std::unique_ptr<IFileRiassuntivo> summary(IFileRiassuntivo::CreateMeUponFile(path));
  if (summary->GetNumRiassuntivi() != st.st_size / kRecordBytes)
    throw BadInput(path + ": cannot be read");
  return summary;
}

std::vector<std::string> TrackFilesIn(const std::string& dir) {
  struct stat st;
  if (stat(dir.c_str(), &st) != 0) throw BadInput(dir + ": no such folder");
  if (!S_ISDIR(st.st_mode)) throw BadInput(dir + ": not a folder of track files");
  DIR* d = opendir(dir.c_str());
  if (d == nullptr) throw BadInput(dir + ": cannot be read");
  std::vector<std::string> names;
  while (dirent* e = readdir(d)) {
    if (e->d_name[0] != '.' && EndsWith(e->d_name, ".tkk")) names.push_back(e->d_name);
  }
  closedir(d);
  std::sort(names.begin(), names.end());
  for (std::string& name : names) name = dir + "/" + name;
  return names;
}

SummaryBuild BuildSummary(const std::string& dir, const Progress& progress) {
  const std::vector<std::string> files = TrackFilesIn(dir);
  SummaryBuild build;
  build.summary.reset(IFileRiassuntivo::CreateMe());
  for (size_t i = 0; i < files.size(); ++i) {
    try {
      const std::unique_ptr<IFileTkk> track = OpenTrack(files[i]);
      if (!track->IsGood())
        throw BadInput(files[i] + ": IsGood is false, the summary cannot hold it");
      SummarisedTrack entry;
      entry.path = files[i];
      entry.firstRecord = static_cast<size_t>(build.summary->GetNumRiassuntivi());
      entry.variants = ExportModel(*track);
      for (size_t v = 0; v < entry.variants.size(); ++v) {
        build.summary->AddVarianteTkk(track.get(), static_cast<short>(v));
      }
      build.tracks.push_back(std::move(entry));
    } catch (const BadInput& e) {
      build.skipped.push_back(SkippedTrack{files[i], e.what()});
    }
    if (progress) progress(i + 1, files.size());
  }
  return build;
}

const std::vector<std::string>& SummarySetFiles() {
  static const std::vector<std::string> names = {"summary.bin",
                                                 "summary.txt",
                                                 "by-name-nation.bin",
                                                 "by-name-nation.latlon.idx",
                                                 "by-name-nation.guid.idx",
                                                 "by-name.bin",
                                                 "by-name.latlon.idx",
                                                 "by-name.guid.idx",
                                                 "by-position.bin",
                                                 "by-position.name.idx",
                                                 "by-position.guid.idx",
                                                 "by-guid.bin",
                                                 "by-guid.name.idx",
                                                 "by-guid.position.idx"};
  return names;
}

void WriteSummarySet(IFileRiassuntivo& summary, const std::string& dir) {
  if (summary.GetNumRiassuntivi() == 0) throw BadInput("no track to put in the summary");
  const auto at = [&dir](const char* name) { return dir + "/" + name; };
  summary.SalvaFileDev(at("summary.bin"));
  summary.CreaFileAlfabSortedConNazioneTestuale(at("summary.txt"));
  summary.CreaFileAlfabSortedConNazione(at("by-name-nation.bin"), at("by-name-nation.latlon.idx"),
                                        at("by-name-nation.guid.idx"));
  summary.CreaFileAlfabSortedSenzaNazione(at("by-name.bin"), at("by-name.latlon.idx"),
                                          at("by-name.guid.idx"));
  // The position and GUID sets index into the order by name without nation:
  // that is the alphabetical order the devices browse.
  summary.CreaFileLatLonSorted(at("by-position.bin"), at("by-position.name.idx"),
                               at("by-position.guid.idx"));
  summary.CreaFileGuidSorted(at("by-guid.bin"), at("by-guid.name.idx"), at("by-guid.position.idx"));
  struct stat st;
  for (const std::string& name : SummarySetFiles()) {
    if (stat((dir + "/" + name).c_str(), &st) != 0)
      throw BadInput(dir + "/" + name + ": cannot write");
  }
}

}  // namespace tkk
