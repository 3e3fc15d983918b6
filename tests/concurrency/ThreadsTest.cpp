// Several host threads, each with its own objects and no lock of the host's,
// use the library at once. The identifier generators are shared by all of
// them; every name must still be unique and every file hold its own track.
// Run as it is in the ordinary suite, and under ThreadSanitizer by
// `make tsan` (longer, with VEKTKK_THREADS_SECONDS).
#include <gtest/gtest.h>
#include <pthread.h>
#include <string.h>

#include <atomic>
#include <chrono>
#include <set>
#include <thread>

#include "CFileTkk.h"
#include "GuidNomeFile.h"
#include "GuidTkk.h"
#include "IFileRiassuntivo.h"
#include "TrackMemoryRecords.h"
#include "support/TrackFixtures.h"

#include <glib.h>
extern "C" {
#include <evtlog.h>
}

// The host's event log, for real: the records end in the syslog() below.
extern "C" {
__attribute__((visibility("default"))) EVTCONTEXT* vek_evtcontext = nullptr;
__attribute__((visibility("default"))) pthread_mutex_t vek_evtcontext_mutex = PTHREAD_MUTEX_INITIALIZER;
}
namespace {
std::atomic<long> g_records{0};
}  // namespace
extern "C" __attribute__((visibility("default"))) void syslog(int, const char*, ...) {
  g_records.fetch_add(1);
}

namespace {

// Runs `work(thread, dir)` in `threads` threads for a second (or
// VEKTKK_THREADS_SECONDS), even threads in one shared folder, odd ones in
// folders of their own; `work` returns the track it saved and its name.
// Then every name must be unique in its folder and every file hold exactly
// its track: the same track saved again under that name gives the same bytes.
using Saved = std::pair<std::shared_ptr<CFileTkk>, std::string>;
void ExpectEveryFileItsOwn(int threads, const std::function<Saved(int, const std::string&)>& work) {
  const char* s = getenv("VEKTKK_THREADS_SECONDS");
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(s != nullptr ? atoi(s) : 1);
  std::vector<fixtures::TempDir> dirs(static_cast<size_t>(threads) + 1);
  std::vector<std::vector<Saved>> saved(dirs.size());
  std::vector<std::thread> running;
  auto dir = [&](int t) { return dirs[static_cast<size_t>(t % 2 ? t : threads)].path(); };
  for (int t = 0; t < threads; ++t)
    running.emplace_back([&, t] {
      while (std::chrono::steady_clock::now() < end) saved[t].push_back(work(t, dir(t)));
    });
  for (std::thread& th : running) th.join();
  std::set<std::string> names;
  fixtures::TempDir scratch;
  for (int t = 0; t < threads; ++t)
    for (const auto& [track, name] : saved[t]) {
      ASSERT_TRUE(name.size() == 8 && names.insert(dir(t) + name).second)
          << "'" << name << "' failed or came twice in " << dir(t);
      ASSERT_EQ(name, track->SalvaFileInPath(scratch.path(), &name));
      ASSERT_EQ(fixtures::ReadAll(scratch.path() + name + ".tkk"), fixtures::ReadAll(dir(t) + name + ".tkk"))
          << dir(t) << name;
    }
  EXPECT_GT(names.size(), 2u * static_cast<size_t>(threads));
}

TEST(Threads, GeneratedNameSavesFromEightThreads) {
  std::vector<std::shared_ptr<CFileTkk>> tracks;
  for (uint32_t k = 0; k < 32; ++k) tracks.push_back(fixtures::MakeRandomTrack(k));
  int turn[8] = {0};
  ExpectEveryFileItsOwn(8, [&](int t, const std::string& dir) {
    const auto& track = tracks[static_cast<size_t>(4 * t + turn[t]++ % 4)];
    return Saved(track, track->SalvaFileInPath(dir, nullptr));
  });
}

// Everything that reaches the generators, at once: new variants without a
// GUID, saves under generated names, conversions of development tracks, the
// generators called directly, and sorted sets written into the shared folder;
// meanwhile one more thread keeps reporting through the event log.
TEST(Threads, EveryOperationThatMakesIdentifiers) {
  vek_evtcontext = evt_ctx_init("threads", EVT_FAC_USER);
  std::atomic<bool> stop{false};
  std::atomic<int> bad{0};
  std::thread reporter([&] {
    while (!stop) std::unique_ptr<IFileTkk>(IFileTkk::CreateMeUponFile("/absent/x.tkk", true, true));
  });
  std::vector<std::shared_ptr<IFileRiassuntivo>> summaries;
  for (int t = 0; t < 4; ++t) summaries.emplace_back(IFileRiassuntivo::CreateMe());
  ExpectEveryFileItsOwn(4, [&](int t, const std::string& dir) {
    std::shared_ptr<CFileTkk> track(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, false)));
    track->AddTagInfoVariante("GP", "Dev", _STagInfoVarianteTKK_fw(), _STagIndexesVarianteTKK());
    bad += track->GetGuidVariante(0).Valore == 0;
    const std::string name = track->SalvaFileInPath(dir, nullptr);
    IFileRiassuntivo& summary = *summaries[static_cast<size_t>(t)];
    summary.AddVarianteTkk(track.get(), 0);
    const std::string set = dir + "set" + std::to_string(t);
    summary.CreaFileLatLonSorted(set + ".bin", set + ".name.idx", set + ".guid.idx");
    std::vector<int> near;
    summary.getNearestTracksByHeaversine(0.0, 0.0, 1000, near);
    // A development track whose finish line makes a maker's copy.
    std::unique_ptr<CFileTkk> dev(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, true)));
    _STagInfoVarianteTKK_fw fw;
    memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
    fw.InfoBeacons.TipoBeaconInUso = BEACON_USER;
    _SDatoCoordinateBeacon& finish = fw.InfoBeacons.LineeBeacon[3][0];
    finish.LatI = 456200000, finish.LonI = 92800000;
    dev->AddTagInfoVariante("GP", "Monza", fw, _STagIndexesVarianteTKK());
    dev->TrasformaPistaUtenteInVek(dir, BEACON_OPTIC);
    bad += IGuidTkk::IsVek(IGuidTkk::GetGuidTkk(t % 2 == 0, false)) != (t % 2 == 0) ||
           IGuidNomeFile::GetNomeFile(true, false).size() != 8;
    return Saved(track, name);
  });
  stop = true;
  reporter.join();
  EXPECT_EQ(bad, 0);
  EXPECT_GT(g_records.load(), 0);
  for (const auto& s : summaries) EXPECT_GT(s->GetNumRiassuntivi(), 1);
  evt_ctx_free(vek_evtcontext);
  vek_evtcontext = nullptr;
}

}  // namespace
