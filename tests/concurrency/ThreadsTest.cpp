// Several host threads, each with its own objects and no lock of the host's,
// use the library at once. The identifier generators are shared by all of
// them; every name must still be unique and every file hold its own track.
// Run as it is in the ordinary suite, and under ThreadSanitizer by
// `make tsan` (longer, with VEKTKK_THREADS_SECONDS).
#include <gtest/gtest.h>
#include <pthread.h>
#include <stdlib.h>
#include <string.h>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

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
__attribute__((visibility("default"))) pthread_mutex_t vek_evtcontext_mutex =
    PTHREAD_MUTEX_INITIALIZER;
}

namespace {
std::atomic<long> g_records{0};
}  // namespace

extern "C" __attribute__((visibility("default"))) void syslog(int, const char*, ...) {
  g_records.fetch_add(1);
}

namespace {

using Clock = std::chrono::steady_clock;

std::chrono::milliseconds RunTime() {
  const char* s = getenv("VEKTKK_THREADS_SECONDS");
  return std::chrono::milliseconds(s != nullptr ? 1000 * atoi(s) : 1000);
}

// A file saved by one thread: which of its tracks, under which name, where.
struct Saved {
  CFileTkk* track;
  std::string dir;
  std::string name;
};

// Checks, once every thread has stopped, that the names are distinct within
// each directory and that each file holds exactly the track saved under it:
// the same track saved again under the same name gives the same bytes.
void ExpectEveryFileItsOwn(const std::vector<std::vector<Saved>>& perThread) {
  std::map<std::string, std::set<std::string>> names;
  fixtures::TempDir scratch;
  size_t files = 0;
  for (const std::vector<Saved>& saved : perThread) {
    for (const Saved& s : saved) {
      ++files;
      ASSERT_EQ(8u, s.name.size()) << "a save failed";
      ASSERT_TRUE(names[s.dir].insert(s.name).second) << s.name << " saved twice in " << s.dir;
      ASSERT_EQ(s.name, s.track->SalvaFileInPath(scratch.path(), &s.name));
      ASSERT_EQ(fixtures::ReadAll(scratch.path() + s.name + ".tkk"),
                fixtures::ReadAll(s.dir + s.name + ".tkk"))
          << s.dir << s.name;
    }
  }
  EXPECT_GT(files, perThread.size());
}

// Eight threads save under generated names, four into one shared folder and
// four into folders of their own.
TEST(Threads, GeneratedNameSavesFromEightThreads) {
  constexpr int kThreads = 8;
  constexpr int kTracksEach = 4;
  fixtures::TempDir shared;
  std::vector<std::unique_ptr<fixtures::TempDir>> own;
  std::vector<std::vector<std::unique_ptr<CFileTkk>>> tracks(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    own.emplace_back(new fixtures::TempDir);
    for (int k = 0; k < kTracksEach; ++k)
      tracks[t].push_back(fixtures::MakeRandomTrack(static_cast<uint32_t>(100 * t + k)));
  }
  std::vector<std::vector<Saved>> saved(kThreads);
  const Clock::time_point end = Clock::now() + RunTime();
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      const std::string dir = t % 2 == 0 ? shared.path() : own[t]->path();
      for (int i = 0; Clock::now() < end; ++i) {
        CFileTkk* track = tracks[t][i % kTracksEach].get();
        saved[t].push_back({track, dir, track->SalvaFileInPath(dir, nullptr)});
      }
    });
  }
  for (std::thread& th : threads) th.join();
  ExpectEveryFileItsOwn(saved);
}

// A development track whose finish line makes a maker's copy.
std::unique_ptr<CFileTkk> DevTrack() {
  std::unique_ptr<CFileTkk> t(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, true)));
  _STagInfoVarianteTKK_fw fw;
  memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
  fw.InfoBeacons.TipoBeaconInUso = BEACON_USER;
  fw.InfoBeacons.LineeBeacon[3][0].LatI = 456200000;
  fw.InfoBeacons.LineeBeacon[3][0].LonI = 92800000;
  t->AddTagInfoVariante("GP", "Monza", fw, _STagIndexesVarianteTKK());
  return t;
}

// Everything that reaches the generators, at once: new variants without a
// GUID, saves under generated names (some into one shared folder),
// conversions of development tracks, and the generators called directly;
// each thread also keeps a summary of its tracks and writes its sorted sets
// into the shared folder; meanwhile one more thread keeps reporting through
// the event log.
TEST(Threads, EveryOperationThatMakesIdentifiers) {
  constexpr int kWorkers = 4;
  pthread_mutex_lock(&vek_evtcontext_mutex);
  vek_evtcontext = evt_ctx_init("threads", EVT_FAC_USER);
  pthread_mutex_unlock(&vek_evtcontext_mutex);
  fixtures::TempDir shared;
  std::vector<std::unique_ptr<fixtures::TempDir>> own;
  for (int t = 0; t < kWorkers; ++t) own.emplace_back(new fixtures::TempDir);
  std::vector<std::vector<std::unique_ptr<CFileTkk>>> tracks(kWorkers);
  std::vector<std::vector<Saved>> saved(kWorkers);
  std::vector<std::vector<uint64_t>> guids(kWorkers);
  std::vector<int> badDecodes(kWorkers, 0);
  std::atomic<bool> stop{false};

  std::thread reporter([&] {
    while (!stop.load()) std::unique_ptr<IFileTkk>(IFileTkk::CreateMeUponFile("/absent/x.tkk", true, true));
  });
  const Clock::time_point end = Clock::now() + RunTime();
  std::vector<std::thread> threads;
  for (int t = 0; t < kWorkers; ++t) {
    threads.emplace_back([&, t] {
      const std::string dir = t % 2 == 0 ? shared.path() : own[t]->path();
      std::unique_ptr<IFileRiassuntivo> summary(IFileRiassuntivo::CreateMe());
      const std::string set = shared.path() + "set" + std::to_string(t);
      while (Clock::now() < end) {
        // A variant without GUID gets one from the generator.
        std::unique_ptr<CFileTkk> track(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, false)));
        track->AddTagInfoVariante("GP", "Dev", _STagInfoVarianteTKK_fw(), _STagIndexesVarianteTKK());
        guids[t].push_back(track->GetGuidVariante(0).Valore);
        saved[t].push_back({track.get(), dir, track->SalvaFileInPath(dir, nullptr)});
        summary->AddVarianteTkk(track.get(), 0);
        tracks[t].push_back(std::move(track));
        summary->CreaFileLatLonSorted(set + ".bin", set + ".name.idx", set + ".guid.idx");
        std::vector<int> near;
        summary->getNearestTracksByHeaversine(0.0, 0.0, 1000, near);
        badDecodes[t] += summary->GetNumRiassuntivi() != static_cast<int>(tracks[t].size());

        DevTrack()->TrasformaPistaUtenteInVek(dir, BEACON_OPTIC);

        tm when;
        bool vek = false, dev = true;
        IGuidTkk::GetDaGuidTkk(IGuidTkk::GetGuidTkk(t % 2 == 0, false), when, vek, dev);
        badDecodes[t] += vek != (t % 2 == 0) || dev;
        vek = false;
        dev = true;
        const std::string name = IGuidNomeFile::GetNomeFile(true, false);
        badDecodes[t] += !IGuidNomeFile::GetDaNomeFile(name, when, vek, dev) || !vek || dev;
      }
    });
  }
  for (std::thread& th : threads) th.join();
  stop = true;
  reporter.join();

  ExpectEveryFileItsOwn(saved);
  for (int t = 0; t < kWorkers; ++t) {
    EXPECT_EQ(0, badDecodes[t]);
    for (uint64_t g : guids[t]) ASSERT_NE(0u, g);
  }
  EXPECT_GT(g_records.load(), 0);
  pthread_mutex_lock(&vek_evtcontext_mutex);
  evt_ctx_free(vek_evtcontext);
  vek_evtcontext = nullptr;
  pthread_mutex_unlock(&vek_evtcontext_mutex);
}

}  // namespace
