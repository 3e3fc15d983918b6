// The summary record, the binary summary file, the cross-index file and the
// sorted sets, byte by byte.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "summary/SummaryTestUtil.h"
#include "support/EvtLogRecorder.h"

using fixtures::Bytes;
using fixtures::ReadAll;
using fixtures::TempDir;
using namespace sumtest;

namespace {

TEST(SummaryFile, DefaultRecordAndItsFileName) {
  const _SDatoRiassuntivo r;
  const unsigned char* p = reinterpret_cast<const unsigned char*>(&r);
  for (size_t i = 0; i < sizeof r; ++i) EXPECT_EQ(p[i], i == 53 ? 1 : 0) << i;
  EXPECT_EQ(r.GetNomeFile(), std::string(8, '\0'));
}

TEST(SummaryFile, NullEntriesAreSkippedAndRecordsReadBackUnchanged) {
  TempDir dir;
  _SDatoRiassuntivo a = Rec("Alfa"), b = Rec("Beta", "ITA", -5, 7, 9, "0k3f9zq1", 3);
  b.Dummy[43] = 0xEE;  // kept as it is, also on the way back
  CFileRiassuntivo::ScriviRiassuntivo({nullptr, &a, nullptr, &b}, dir.path() + "s");
  EXPECT_EQ(ReadAll(dir.path() + "s"), BytesOf({&a, &b}));

  std::unique_ptr<IFileRiassuntivo> s(IFileRiassuntivo::CreateMeUponFile(dir.path() + "s"));
  ASSERT_EQ(s->GetNumRiassuntivi(), 2);
  EXPECT_TRUE(s->SalvaFileDev(dir.path() + "dev"));
  EXPECT_EQ(ReadAll(dir.path() + "dev"), BytesOf({&a, &b}));

  CFileRiassuntivo::ScriviRiassuntivo({}, dir.path() + "s");  // truncated, not removed
  EXPECT_EQ(dir.Entries(), (std::vector<std::string>{"dev", "s"}));
  EXPECT_TRUE(ReadAll(dir.path() + "s").empty());
}

TEST(SummaryFile, BadFilesGiveAnEmptySummaryWithoutAReport) {
  TempDir dir;
  fixtures::WriteAll(dir.path() + "129", Bytes(129, 1));
  fixtures::WriteAll(dir.path() + "empty", Bytes());
  ASSERT_EQ(mkdir((dir.path() + "dir").c_str(), 0700), 0);
  ASSERT_EQ(mkfifo((dir.path() + "fifo").c_str(), 0600), 0);  // must not block
  // Sparse, larger than any memory: not read.
  fixtures::WriteAll(dir.path() + "huge", Bytes());
  ASSERT_EQ(truncate((dir.path() + "huge").c_str(), off_t{1} << 40), 0);
  evtrec::Reset();
  for (const char* name : {"129", "empty", "missing", "dir", "fifo", "huge"}) {
    const _SDatoRiassuntivo r;
    std::unique_ptr<CFileRiassuntivo> s = Summary({&r});
    s->LeggiRiassuntivo(dir.path() + name);
    EXPECT_EQ(s->GetNumRiassuntivi(), 0) << name;
  }
  EXPECT_TRUE(evtrec::Events().empty());
}

// A summary file cut at every length, and with every byte flipped in turn:
// whole records only are read, and every operation works on whatever bytes
// they hold (the sanitizer run watches the reads).
TEST(SummaryFile, CutAndFlippedFilesReadAndWork) {
  TempDir dir;
  _SDatoRiassuntivo a = Rec("Alfa", "ITA", 456200000, 92800000, 5, "0k3f9zq1", Year(2020));
  _SDatoRiassuntivo b = Rec("Beta", "", -5, 7, 9, "0k3f9zq2", 3);
  const Bytes golden = BytesOf({&a, &b, &a});
  const std::string p = dir.path() + "s";
  auto Prova = [&](const Bytes& bytes, size_t atteso) {
    fixtures::WriteAll(p, bytes);
    std::unique_ptr<IFileRiassuntivo> s(IFileRiassuntivo::CreateMeUponFile(p));
    ASSERT_EQ(static_cast<size_t>(s->GetNumRiassuntivi()), atteso) << bytes.size();
    std::vector<int> near;
    s->getNearestTracksByHeaversine(45.62, 9.28, 100000, near);
    s->GetDatoRiassuntivoNearest(45.62, 9.28);
    // Computed in full, then refused by a target that is no regular file.
    s->CreaFileGuidSorted("/dev/null", "/dev/null", "/dev/null");
    s->CreaFileAlfabSortedConNazioneTestuale("/dev/null");
    SConfrontoPiste esito;
    s->ConfrontaConAltro(*s, esito);
    s->DelFileTkk("0k3f9zq1");
  };
  for (size_t n = 0; n <= golden.size(); ++n)
    Prova(Bytes(golden.begin(), golden.begin() + static_cast<long>(n)), n % 128 == 0 ? n / 128 : 0);
  for (size_t i = 0; i < golden.size(); ++i) {
    Bytes flipped = golden;
    flipped[i] ^= 0xFF;
    Prova(flipped, 3);
  }
}

TEST(SummaryFile, AccessorsAndReservedOperations) {
  const _SDatoRiassuntivo a = Rec("A");
  std::unique_ptr<CFileRiassuntivo> s = Summary({nullptr, &a});
  const _SDatoRiassuntivo* out = &a;
  EXPECT_FALSE(s->GetDatoRiassuntivo(out, -1));
  EXPECT_EQ(out, nullptr);
  out = &a;
  EXPECT_FALSE(s->GetDatoRiassuntivo(out, 2));
  EXPECT_EQ(out, nullptr);
  EXPECT_TRUE(s->GetDatoRiassuntivo(out, 0));
  EXPECT_EQ(out, nullptr);
  std::vector<const _SDatoRiassuntivo*> all(3, &a);
  s->GetDatiRiassuntivi(all);
  EXPECT_EQ(all, (std::vector<const _SDatoRiassuntivo*>{nullptr, s->Lista()[1]}));
  for (bool (IFileRiassuntivo::*op)(const std::string&) :
       {&IFileRiassuntivo::AddFromDir, &IFileRiassuntivo::CreaDaDirettorio,
        &IFileRiassuntivo::AggiungiDaDirettorio})
    EXPECT_FALSE((s.get()->*op)("/"));
  EXPECT_EQ(s->GetNumRiassuntivi(), 2);
  std::unique_ptr<IFileRiassuntivo> d(IFileRiassuntivo::CreateMeUponDir("/"));
  EXPECT_EQ(d->GetNumRiassuntivi(), 0);
}

TEST(SummaryFile, CrossIndexBytes) {
  TempDir dir;
  _SDatoRiassuntivo x = Rec("X"), y = Rec("Y"), absent = Rec("Z"), x2 = x, x3 = x;
  // Positions count b's null entry; duplicates map to the first.
  CFileRiassuntivo::CalcolaAndScriviIdx({&x, &absent, &x2}, {nullptr, &y, &x2, &x3},
                                        dir.path() + "idx");
  EXPECT_EQ(ReadAll(dir.path() + "idx"), (Bytes{2, 0, 0xFF, 0xFF, 2, 0}));
  CFileRiassuntivo::CalcolaAndScriviIdx({}, {&x}, dir.path() + "none");
  EXPECT_EQ(dir.Entries(), std::vector<std::string>{"idx"});
}

using Set = bool (IFileRiassuntivo::*)(const std::string&, const std::string&, const std::string&);
const Set kSets[] = {&IFileRiassuntivo::CreaFileAlfabSortedSenzaNazione,
                     &IFileRiassuntivo::CreaFileAlfabSortedConNazione,
                     &IFileRiassuntivo::CreaFileLatLonSorted, &IFileRiassuntivo::CreaFileGuidSorted};

TEST(SummarySortedSets, EmptyOneRecordAndEmptyPaths) {
  TempDir dir;
  const std::string p = dir.path();
  CFileRiassuntivo empty;
  const _SDatoRiassuntivo r = Rec("Uno");
  std::unique_ptr<CFileRiassuntivo> one = Summary({&r});
  for (Set set : kSets) {
    EXPECT_FALSE((empty.*set)(p + "s", p + "i2", p + "i3"));
    EXPECT_TRUE(dir.Entries().empty());
    EXPECT_TRUE((one.get()->*set)(p + "s", "", ""));
    EXPECT_EQ(dir.Entries(), std::vector<std::string>{"s"});
    EXPECT_TRUE((one.get()->*set)(p + "s", p + "i2", p + "i3"));
    EXPECT_EQ(ReadAll(p + "s"), BytesOf({&r}));
    EXPECT_EQ(ReadAll(p + "i2"), (Bytes{0, 0}));
    EXPECT_EQ(ReadAll(p + "i3"), (Bytes{0, 0}));
    for (const char* f : {"s", "i2", "i3"}) unlink((p + f).c_str());
  }
}

TEST(SummarySortedSets, FilesAndIndexesWithDuplicates) {
  TempDir dir;
  const std::string p = dir.path();
  // d twice (byte-identical), e once; orders: name e<d, lat d<e, GUID e<d,
  // country d<e ("FRA" < "ITA").
  const _SDatoRiassuntivo d = Rec("Monza", "FRA", 5, 0, 2), e = Rec("Adria", "ITA", 10, 0, 1);
  std::unique_ptr<CFileRiassuntivo> s = Summary({&d, &e, &d});
  struct Case {
    Set set;
    Bytes file, i2, i3;
  } const cases[] = {
      {kSets[0], BytesOf({&e, &d, &d}), {2, 0, 0, 0, 0, 0}, {0, 0, 1, 0, 1, 0}},
      {kSets[1], BytesOf({&d, &d, &e}), {0, 0, 0, 0, 2, 0}, {1, 0, 1, 0, 0, 0}},
      {kSets[2], BytesOf({&d, &d, &e}), {1, 0, 1, 0, 0, 0}, {1, 0, 1, 0, 0, 0}},
      {kSets[3], BytesOf({&e, &d, &d}), {0, 0, 1, 0, 1, 0}, {2, 0, 0, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    EXPECT_TRUE((s.get()->*c.set)(p + "s", p + "i2", p + "i3"));
    EXPECT_EQ(ReadAll(p + "s"), c.file);
    EXPECT_EQ(ReadAll(p + "i2"), c.i2);
    EXPECT_EQ(ReadAll(p + "i3"), c.i3);
  }
}

}  // namespace
