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
static std::atomic<long> g_records{0};
extern "C" __attribute__((visibility("default"))) void syslog(int, const char*, ...) {
  g_records.fetch_add(1);
}

namespace {

// Eight threads for a second (or VEKTKK_THREADS_SECONDS), even ones in one
// shared folder, odd ones in folders of their own, do everything that reaches
// the generators: new variants without a GUID saved under generated names,
// summaries and their sorted sets, conversions of development tracks, the
// generators called directly; meanwhile one more thread keeps reporting
// through the event log. Every name must be unique in its folder and every
// file hold exactly its track: the same track saved again under that name
// gives the same bytes.
TEST(Threads, EveryOperationThatMakesIdentifiersFromEightThreads) {
  vek_evtcontext = evt_ctx_init("threads", EVT_FAC_USER);
  const char* s = getenv("VEKTKK_THREADS_SECONDS");
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(s != nullptr ? atoi(s) : 1);
  constexpr int kThreads = 8;
  std::vector<fixtures::TempDir> dirs(kThreads + 1);
  auto dir = [&](int t) { return dirs[static_cast<size_t>(t % 2 ? t : kThreads)].path(); };
  std::vector<std::vector<std::pair<std::shared_ptr<CFileTkk>, std::string>>> saved(kThreads);
  std::atomic<bool> stop{false};
  std::atomic<int> bad{0};
  std::thread reporter([&] {
    while (!stop) std::unique_ptr<IFileTkk>(IFileTkk::CreateMeUponFile("/absent/x.tkk", true, true));
  });
  std::vector<std::thread> running;
  for (int t = 0; t < kThreads; ++t)
    running.emplace_back([&, t] {
      std::unique_ptr<IFileRiassuntivo> summary(IFileRiassuntivo::CreateMe());
      while (std::chrono::steady_clock::now() < end) {
        std::shared_ptr<CFileTkk> track(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, false)));
        track->AddTagInfoVariante("GP", "Dev", _STagInfoVarianteTKK_fw(), _STagIndexesVarianteTKK());
        bad += track->GetGuidVariante(0).Valore == 0;
        saved[t].emplace_back(track, track->SalvaFileInPath(dir(t), nullptr));
        summary->AddVarianteTkk(track.get(), 0);
        const std::string set = dir(t) + "set" + std::to_string(t);
        summary->CreaFileLatLonSorted(set + ".bin", set + ".name.idx", set + ".guid.idx");
        // A development track whose finish line makes a maker's copy.
        std::unique_ptr<CFileTkk> dev(static_cast<CFileTkk*>(IFileTkk::CreateMe(false, true)));
        _STagInfoVarianteTKK_fw fw;
        fw.InfoBeacons.TipoBeaconInUso = BEACON_USER;
        memcpy(fw.NationCode, "ITA\0MB\0\0", 8);
        fw.InfoBeacons.LineeBeacon[3][0].LatI = 456200000;
        fw.InfoBeacons.LineeBeacon[3][0].LonI = 92800000;
        dev->AddTagInfoVariante("GP", "Monza", fw, _STagIndexesVarianteTKK());
        dev->TrasformaPistaUtenteInVek(dir(t), BEACON_OPTIC);  // false even after a good save
        bad += IGuidTkk::IsVek(IGuidTkk::GetGuidTkk(t % 2 == 0, false)) != (t % 2 == 0) ||
               IGuidNomeFile::GetNomeFile(true, false).size() != 8;
      }
      bad += summary->GetNumRiassuntivi() < 2;
    });
  for (std::thread& th : running) th.join();
  stop = true;
  reporter.join();
  EXPECT_EQ(bad, 0);
  EXPECT_GT(g_records.load(), 0);
  std::set<std::string> names;
  fixtures::TempDir scratch;
  for (int t = 0; t < kThreads; ++t)
    for (const auto& [track, name] : saved[t]) {
      ASSERT_TRUE(name.size() == 8 && names.insert(dir(t) + name).second)
          << "'" << name << "' failed or came twice in " << dir(t);
      ASSERT_EQ(name, track->SalvaFileInPath(scratch.path(), &name));
      ASSERT_EQ(fixtures::ReadAll(scratch.path() + name + ".tkk"), fixtures::ReadAll(dir(t) + name + ".tkk"))
          << dir(t) << name;
    }
  EXPECT_GT(names.size(), 2u * kThreads);
  evt_ctx_free(vek_evtcontext);
  vek_evtcontext = nullptr;
}

}  // namespace
