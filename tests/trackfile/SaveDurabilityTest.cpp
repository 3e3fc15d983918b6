// Durability of saves: a save killed at any moment, cut short by a full
// device, refused by the directory, or racing other processes for generated
// names never leaves anything but the old file or the complete new one.
// Cases that need a process of their own (killed, limited, unprivileged) run
// the save in a forked child, which reports through its exit code.
#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <map>
#include <ostream>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "CFileTkk.h"
#include "support/PlatformFaults.h"
#include "support/TrackFixtures.h"

namespace {

using fixtures::Bytes;
using fixtures::TempDir;
using Snapshot = std::map<std::string, Bytes>;

const std::string kNome = "0k3f9zq1";
const std::string kTrack = kNome + ".tkk";

// The fixed track plus a shape of `points` points and one logo of
// `logoBytes` bytes, their contents drawn from `seed`.
std::unique_ptr<CFileTkk> MakeTrack(uint32_t seed, size_t points, size_t logoBytes) {
  std::unique_ptr<CFileTkk> track = fixtures::MakeSmallTrack();
  std::mt19937 rng(seed);
  std::vector<_t_s_lla_i> shape(points);
  for (auto& p : shape)
    p = {static_cast<int32_t>(rng()), static_cast<int32_t>(rng()),
         static_cast<int32_t>(rng() % 100000)};
  track->AddTagDatiPuntiTracciato(shape);
  Bytes image(logoBytes);
  for (auto& b : image) b = static_cast<unsigned char>(rng());
  track->AddTagDatiLogo(image, "logo.png");
  return track;
}

bool IsTemporary(const std::string& entry) {
  return entry[0] == '.' && entry.find(".tmp.") != std::string::npos;
}

// Every entry of `dir` with its bytes.
Snapshot Take(const std::string& dir) {
  Snapshot files;
  DIR* d = opendir(dir.c_str());
  if (d == nullptr) return files;
  while (const dirent* e = readdir(d)) {
    const std::string name = e->d_name;
    if (name != "." && name != "..") files[name] = fixtures::ReadAll(dir + name);
  }
  closedir(d);
  return files;
}

// The exit code of `body` run in a child process, or 128 + the signal that
// ended it. The child is killed if it takes more than 20 seconds.
int InChild(const std::function<int()>& body) {
  const pid_t pid = fork();
  if (pid == 0) {
    alarm(20);
    _exit(body());
  }
  if (pid < 0) return -1;
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// The three ways of saving under a name: given, generated, logos apart.
struct SaveWay {
  const char* label;
  std::string (*save)(CFileTkk&, const std::string& dir);
};
const SaveWay kGiven = {"Given", [](CFileTkk& t, const std::string& dir) {
                          return t.SalvaFileInPath(dir, &kNome);
                        }};
const SaveWay kGenerated = {"Generated", [](CFileTkk& t, const std::string& dir) {
                              return t.SalvaFileInPath(dir, nullptr);
                            }};
const SaveWay kLogoApart = {"LogoApart", [](CFileTkk& t, const std::string& dir) {
                              return t.SalvaFileInPathLogoEsterno(dir, kNome);
                            }};

std::string Label(const ::testing::TestParamInfo<SaveWay>& info) { return info.param.label; }
void PrintTo(const SaveWay& way, std::ostream* os) { *os << way.label; }

// --- Killed mid-save -------------------------------------------------------

class KilledSave : public ::testing::TestWithParam<SaveWay> {};

// A child saves two tracks in turn under one name until it is killed at a
// random moment. After every kill each file of that name is exactly as one of
// the two complete saves left it; anything else present is a temporary file.
TEST_P(KilledSave, LeavesOneCompleteVersion) {
  const SaveWay way = GetParam();
  TempDir dir;
  const std::unique_ptr<CFileTkk> tracks[2] = {MakeTrack(1, 2000, 40000),
                                               MakeTrack(2, 3000, 30000)};
  Snapshot clean[2];
  for (int i = 0; i < 2; ++i) {
    ASSERT_EQ(kNome, way.save(*tracks[i], dir.path()));
    clean[i] = Take(dir.path());
  }
  ASSERT_NE(clean[0].at(kTrack), clean[1].at(kTrack));

  std::mt19937 rng(20261122);
  std::uniform_int_distribution<int> delayUs(200, 4000);
  int current = 1;
  int changes = 0;
  for (int kill = 0; kill < 120; ++kill) {
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      alarm(20);
      // Start with the track the file does not hold, so that every save
      // completed before the kill changes it.
      for (int i = 1 - current;; i = 1 - i)
        if (way.save(*tracks[i], dir.path()) != kNome) _exit(1);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(delayUs(rng)));
    ::kill(pid, SIGKILL);
    int status = 0;
    waitpid(pid, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
        << "the saving child stopped by itself, status " << status;

    const Snapshot now = Take(dir.path());
    for (const auto& [name, version] : clean[0]) {
      ASSERT_EQ(1u, now.count(name)) << name << " is missing after kill " << kill;
      const Bytes& bytes = now.at(name);
      ASSERT_TRUE(bytes == version || bytes == clean[1].at(name))
          << name << " is neither complete version after kill " << kill << " ("
          << bytes.size() << " bytes)";
    }
    for (const auto& entry : now)
      ASSERT_TRUE(clean[0].count(entry.first) == 1 || IsTemporary(entry.first)) << entry.first;
    const int holds = now.at(kTrack) == clean[0].at(kTrack) ? 0 : 1;
    changes += holds != current;
    current = holds;
  }
  // Some kills must have come after a complete save, or the test saw nothing.
  EXPECT_GT(changes, 0);

  // The next process to save there removes what killed saves left, and
  // only that.
  ASSERT_EQ(0, InChild([&] { return way.save(*tracks[0], dir.path()) == kNome ? 0 : 1; }));
  EXPECT_EQ(clean[0], Take(dir.path()));
}

INSTANTIATE_TEST_SUITE_P(Ways, KilledSave, ::testing::Values(kGiven, kLogoApart), Label);

// --- Generated names on memory cards ------------------------------------------

// Without hard links and without RENAME_NOREPLACE a generated name was once
// claimed by an empty placeholder that the rename then replaced: a kill in
// between left an empty track. Renames are slowed to make that moment wide.
// Kills fall from a quarter of the time a child takes to save once to three
// times that, so that some come after complete saves on any processor (an
// emulated one is many times slower).
TEST(KilledGeneratedSave, NeverLeavesAnIncompleteTrack) {
  TempDir dir;
  const std::unique_ptr<CFileTkk> track = MakeTrack(8, 500, 2000);
  faults::NoHardLinks(true, true);
  faults::SlowRename(2000);
  TempDir probe;
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(0, InChild([&] { return track->SalvaFileInPath(probe.path(), nullptr).empty(); }));
  const int saveUs = static_cast<int>(std::chrono::duration_cast<std::chrono::microseconds>(
                                          std::chrono::steady_clock::now() - start)
                                          .count());
  std::mt19937 rng(20261124);
  std::uniform_int_distribution<int> delayUs(saveUs / 4, saveUs * 3);
  for (int kill = 0; kill < 60; ++kill) {
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      alarm(20);
      for (;;)
        if (track->SalvaFileInPath(dir.path(), nullptr).empty()) _exit(1);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(delayUs(rng)));
    ::kill(pid, SIGKILL);
    int status = 0;
    waitpid(pid, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the saving child stopped by itself, status " << status;
  }
  faults::SlowRename(0);
  ASSERT_EQ(0, InChild([&] { return track->SalvaFileInPath(dir.path(), nullptr).empty(); }));
  faults::NoHardLinks(false);
  const std::vector<std::string> entries = dir.Entries();
  EXPECT_GT(entries.size(), 1u);
  for (const std::string& entry : entries) {
    if (IsTemporary(entry)) {
      ADD_FAILURE() << entry << " was not cleaned up";
      continue;
    }
    const std::unique_ptr<IFileTkk> back(IFileTkk::CreateMeUponFile(dir.path() + entry, true, true));
    EXPECT_TRUE(back->IsGood()) << entry;
  }
}

// --- Generated names under contention ---------------------------------------

// Three processes save 100 tracks each into one directory at once. The name
// generator repeats names within a second and across processes, so names are
// claimed against each other: 300 files, none lost, each complete and
// carrying its own name, and no temporary file left.
TEST(GeneratedNames, ConcurrentSavesGiveDistinctCompleteFiles) {
  TempDir dir;
  constexpr int kChildren = 3;
  constexpr int kEach = 100;
  std::vector<pid_t> pids;
  for (int c = 0; c < kChildren; ++c) {
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      alarm(20);
      std::set<std::string> names;
      for (int i = 0; i < kEach; ++i) {
        const std::unique_ptr<CFileTkk> track =
            fixtures::MakeRandomTrack(static_cast<uint32_t>(1000 * c + i));
        const std::string name = track->SalvaFileInPath(dir.path(), nullptr);
        if (name.size() != 8 || !names.insert(name).second) _exit(1);
      }
      _exit(0);
    }
    pids.push_back(pid);
  }
  for (const pid_t pid : pids) {
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
  }

  const std::vector<std::string> entries = dir.Entries();
  EXPECT_EQ(static_cast<size_t>(kChildren * kEach), entries.size());
  for (const std::string& entry : entries) {
    ASSERT_EQ(12u, entry.size()) << entry;
    ASSERT_EQ(".tkk", entry.substr(8)) << entry;
    const std::unique_ptr<IFileTkk> back(IFileTkk::CreateMeUponFile(dir.path() + entry, true, true));
    ASSERT_TRUE(back != nullptr && back->IsGood()) << entry;
    EXPECT_FALSE(back->GetTagsInfoVarianti().empty()) << entry;
    EXPECT_EQ(entry.substr(0, 8), std::string(back->GetTagInfoFile().GuidNomeFile, 8));
  }
}

// --- Refused by the directory -----------------------------------------------

class RefusedSave : public ::testing::TestWithParam<SaveWay> {};

TEST_P(RefusedSave, MissingDirectoryCreatesNothing) {
  TempDir dir;
  const std::unique_ptr<CFileTkk> track = MakeTrack(3, 100, 1000);
  EXPECT_EQ("", GetParam().save(*track, dir.path() + "absent/"));
  EXPECT_TRUE(dir.Entries().empty());
}

// The directory exists but may not be written: as root (who ignores modes)
// the save runs in a child that first becomes "nobody".
TEST_P(RefusedSave, ReadOnlyDirectoryKeepsOldFile) {
  TempDir dir;
  const std::string ro = dir.path() + "ro/";
  ASSERT_EQ(0, mkdir(ro.c_str(), 0755));
  ASSERT_EQ(0, chmod(dir.path().c_str(), 0755));
  const std::unique_ptr<CFileTkk> old = MakeTrack(4, 100, 1000);
  ASSERT_FALSE(GetParam().save(*old, ro).empty());
  const Snapshot before = Take(ro);
  const bool root = geteuid() == 0;
  if (!root) {
    ASSERT_EQ(0, chmod(ro.c_str(), 0555));
  }

  const std::unique_ptr<CFileTkk> track = MakeTrack(5, 100, 1000);
  const int code = InChild([&] {
    const gid_t nobody = 65534;
    if (root && (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0))
      return 2;
    const std::string probe = ro + "probe";
    const int fd = open(probe.c_str(), O_WRONLY | O_CREAT, 0644);
    if (fd >= 0) {
      close(fd);
      unlink(probe.c_str());
      return 3;
    }
    return GetParam().save(*track, ro).empty() ? 0 : 1;
  });
  chmod(ro.c_str(), 0755);
  ASSERT_NE(2, code) << "could not drop privileges";
  ASSERT_NE(3, code) << "the directory is writable after all";
  EXPECT_EQ(0, code) << "the save did not fail";
  EXPECT_EQ(before, Take(ro));
}

INSTANTIATE_TEST_SUITE_P(Ways, RefusedSave, ::testing::Values(kGiven, kGenerated, kLogoApart),
                         Label);

// --- Replacing a file: the permissions of truncation -----------------------

class ReplacingSave : public ::testing::TestWithParam<SaveWay> {};

// A save used to rename a new file over the old one whatever the old one
// was: it turned a private file public, dropped its owner and replaced a
// link by a file. The new files keep mode, owner and group, and a link is
// followed to the file it names.
TEST_P(ReplacingSave, KeepsModeOwnerAndLinks) {
  TempDir dir;
  const std::unique_ptr<CFileTkk> old = MakeTrack(9, 100, 1000);
  const std::unique_ptr<CFileTkk> next = MakeTrack(10, 100, 1000);
  ASSERT_FALSE(GetParam().save(*old, dir.path()).empty());
  const bool root = geteuid() == 0;
  for (const std::string& entry : dir.Entries()) {
    const std::string path = dir.path() + entry;
    ASSERT_EQ(0, chmod(path.c_str(), 0640));
    ASSERT_TRUE(!root || chown(path.c_str(), 4321, 4322) == 0);
  }
  ASSERT_EQ(0, rename((dir.path() + kTrack).c_str(), (dir.path() + "real").c_str()));
  ASSERT_EQ(0, symlink("real", (dir.path() + kTrack).c_str()));

  ASSERT_FALSE(GetParam().save(*next, dir.path()).empty());
  struct stat st;
  ASSERT_EQ(0, lstat((dir.path() + kTrack).c_str(), &st));
  EXPECT_TRUE(S_ISLNK(st.st_mode)) << "the link was replaced";
  TempDir fresh;
  GetParam().save(*next, fresh.path());
  EXPECT_EQ(fixtures::ReadAll(fresh.path() + kTrack), fixtures::ReadAll(dir.path() + "real"));
  for (const std::string& entry : dir.Entries()) {
    ASSERT_EQ(0, lstat((dir.path() + entry).c_str(), &st));
    if (S_ISLNK(st.st_mode)) continue;
    EXPECT_EQ(0640u, st.st_mode & 07777) << entry;
    if (root) {
      EXPECT_EQ(4321u, st.st_uid) << entry;
      EXPECT_EQ(4322u, st.st_gid) << entry;
    }
  }
}

// A read-only track in a directory anyone may write was replaced by a
// process that could not have truncated it.
TEST_P(ReplacingSave, RefusesAFileTheCallerMayNotWrite) {
  TempDir dir;
  const std::unique_ptr<CFileTkk> old = MakeTrack(11, 100, 1000);
  ASSERT_FALSE(GetParam().save(*old, dir.path()).empty());
  ASSERT_EQ(0, chmod((dir.path() + kTrack).c_str(), 0444));
  ASSERT_EQ(0, chmod(dir.path().c_str(), 0777));
  const Snapshot before = Take(dir.path());
  const std::unique_ptr<CFileTkk> track = MakeTrack(12, 100, 1000);
  const int code = InChild([&] {
    const gid_t nobody = 65534;
    if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0))
      return 2;
    return GetParam().save(*track, dir.path()).empty() ? 0 : 1;
  });
  ASSERT_NE(2, code) << "could not drop privileges";
  EXPECT_EQ(0, code) << "the save did not fail";
  EXPECT_EQ(before, Take(dir.path()));
}

INSTANTIATE_TEST_SUITE_P(Ways, ReplacingSave, ::testing::Values(kGiven, kLogoApart), Label);

// --- Writing cut short --------------------------------------------------------

class ShortWrite : public ::testing::TestWithParam<SaveWay> {};

// A file-size limit below the new track's size makes write() fail part way,
// as a full device does. The old files stay exactly as they were and the
// partial temporary file goes.
TEST_P(ShortWrite, KeepsOldFiles) {
  TempDir dir;
  const std::unique_ptr<CFileTkk> old = MakeTrack(6, 100, 1000);
  ASSERT_FALSE(GetParam().save(*old, dir.path()).empty());
  const Snapshot before = Take(dir.path());

  // About 96 KB of shape and 200 KB of logo, over the limit either way.
  const std::unique_ptr<CFileTkk> big = MakeTrack(7, 7999, 200000);
  const int code = InChild([&] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {64 * 1024, 64 * 1024};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return 2;
    return GetParam().save(*big, dir.path()).empty() ? 0 : 1;
  });
  ASSERT_NE(2, code) << "could not set the file-size limit";
  EXPECT_EQ(0, code) << "the save did not fail";
  EXPECT_EQ(before, Take(dir.path()));
}

INSTANTIATE_TEST_SUITE_P(Ways, ShortWrite, ::testing::Values(kGiven, kGenerated, kLogoApart),
                         Label);

}  // namespace
