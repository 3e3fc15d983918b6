// The binary summary file, the cross-index file, the sorted sets and the
// text listing, byte by byte.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "summary/SummaryTestUtil.h"
#include "support/EvtLogRecorder.h"

using fixtures::Bytes;
using fixtures::ReadAll;
using namespace sumtest;

namespace {

Bytes BytesOf(std::initializer_list<const _SDatoRiassuntivo*> records) {
  Bytes out;
  for (const _SDatoRiassuntivo* r : records)
    out.insert(out.end(), reinterpret_cast<const unsigned char*>(r), reinterpret_cast<const unsigned char*>(r + 1));
  return out;
}

TEST(SummaryFile, NullEntriesAreSkippedAndRecordsReadBackUnchanged) {
  fixtures::TempDir dir;
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

// None of these is read, and none blocks (the FIFO) or is loaded (the sparse
// file larger than any memory).
TEST(SummaryFile, BadFilesGiveAnEmptySummaryWithoutAReport) {
  fixtures::TempDir dir;
  fixtures::WriteAll(dir.path() + "129", Bytes(129, 1));
  fixtures::WriteAll(dir.path() + "empty", Bytes());
  fixtures::WriteAll(dir.path() + "huge", Bytes());
  ASSERT_EQ(truncate((dir.path() + "huge").c_str(), off_t{1} << 40), 0);
  ASSERT_EQ(mkdir((dir.path() + "dir").c_str(), 0700), 0);
  ASSERT_EQ(mkfifo((dir.path() + "fifo").c_str(), 0600), 0);
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
  fixtures::TempDir dir;
  const _SDatoRiassuntivo a = Rec("Alfa", "ITA", 456200000, 92800000, 5, "0k3f9zq1", Year(2020)),
                          b = Rec("Beta", "", -5, 7, 9, "0k3f9zq2", 3);
  const Bytes golden = BytesOf({&a, &b, &a});
  const std::string p = dir.path() + "s";
  auto Try = [&](const Bytes& bytes, size_t records) {
    fixtures::WriteAll(p, bytes);
    std::unique_ptr<IFileRiassuntivo> s(IFileRiassuntivo::CreateMeUponFile(p));
    ASSERT_EQ(static_cast<size_t>(s->GetNumRiassuntivi()), records) << bytes.size();
    std::vector<int> near;
    s->getNearestTracksByHeaversine(45.62, 9.28, 100000, near);
    s->GetDatoRiassuntivoNearest(45.62, 9.28);
    // Computed in full, then refused by a target that is no regular file.
    s->CreaFileGuidSorted("/dev/null", "/dev/null", "/dev/null");
    s->CreaFileAlfabSortedConNazioneTestuale("/dev/null");
    SConfrontoPiste result;
    s->ConfrontaConAltro(*s, result);
    s->DelFileTkk("0k3f9zq1");
  };
  for (size_t n = 0; n <= golden.size(); ++n)
    Try(Bytes(golden.begin(), golden.begin() + static_cast<long>(n)), n % 128 == 0 ? n / 128 : 0);
  for (size_t i = 0; i < golden.size(); ++i) {
    Bytes flipped = golden;
    flipped[i] ^= 0xFF;
    Try(flipped, 3);
  }
}

TEST(SummaryFile, AccessorsStayInTheListAndDirectoriesAreNotRead) {
  const _SDatoRiassuntivo a = Rec("A");
  std::unique_ptr<CFileRiassuntivo> s = Summary({nullptr, &a});
  for (int idx : {-1, 0, 1, 2}) {
    const _SDatoRiassuntivo* out = &a;
    EXPECT_EQ(s->GetDatoRiassuntivo(out, idx), idx == 0 || idx == 1) << idx;
    EXPECT_EQ(out, idx == 1 ? s->Lista()[1] : nullptr) << idx;
  }
  std::vector<const _SDatoRiassuntivo*> all(3, &a);
  s->GetDatiRiassuntivi(all);
  EXPECT_EQ(all, (std::vector<const _SDatoRiassuntivo*>{nullptr, s->Lista()[1]}));
  EXPECT_FALSE(s->AddFromDir("/") || s->CreaDaDirettorio("/") || s->AggiungiDaDirettorio("/"));
  EXPECT_EQ(std::unique_ptr<IFileRiassuntivo>(IFileRiassuntivo::CreateMeUponDir("/"))->GetNumRiassuntivi(), 0);
}

// Positions count b's null entry; duplicates map to the first; an empty a
// writes no file.
TEST(SummaryFile, CrossIndexBytes) {
  fixtures::TempDir dir;
  _SDatoRiassuntivo x = Rec("X"), y = Rec("Y"), absent = Rec("Z"), x2 = x, x3 = x;
  CFileRiassuntivo::CalcolaAndScriviIdx({&x, &absent, &x2}, {nullptr, &y, &x2, &x3}, dir.path() + "idx");
  EXPECT_EQ(ReadAll(dir.path() + "idx"), (Bytes{2, 0, 0xFF, 0xFF, 2, 0}));
  CFileRiassuntivo::CalcolaAndScriviIdx({}, {&x}, dir.path() + "none");
  EXPECT_EQ(dir.Entries(), std::vector<std::string>{"idx"});
  // Positions are 16 bits: past 65535 they wrap, and 65535 itself reads as absent.
  std::vector<_SDatoRiassuntivo> many(70000);
  std::vector<_SDatoRiassuntivo*> b;
  for (_SDatoRiassuntivo& r : many) {
    r.RifLat = static_cast<int32_t>(b.size());
    b.push_back(&r);
  }
  CFileRiassuntivo::CalcolaAndScriviIdx({b[65540], &absent, b[65535], b[3]}, b, dir.path() + "idx");
  EXPECT_EQ(ReadAll(dir.path() + "idx"), (Bytes{4, 0, 0xFF, 0xFF, 0xFF, 0xFF, 3, 0}));
}

TEST(SummarySortedSets, FilesAndIndexesWithDuplicates) {
  fixtures::TempDir dir;
  const std::string p = dir.path();
  // d twice (byte-identical), e once; orders: name e<d, lat d<e, GUID e<d, country d<e.
  const _SDatoRiassuntivo d = Rec("Monza", "FRA", 5, 0, 2), e = Rec("Adria", "ITA", 10, 0, 1);
  std::unique_ptr<CFileRiassuntivo> s = Summary({&d, &e, &d});
  CFileRiassuntivo empty;
  using Set = bool (IFileRiassuntivo::*)(const std::string&, const std::string&, const std::string&);
  struct Case {
    Set set;
    Bytes file, i2, i3;
  } const cases[] = {
      {&IFileRiassuntivo::CreaFileAlfabSortedSenzaNazione, BytesOf({&e, &d, &d}), {2, 0, 0, 0, 0, 0}, {0, 0, 1, 0, 1, 0}},
      {&IFileRiassuntivo::CreaFileAlfabSortedConNazione, BytesOf({&d, &d, &e}), {0, 0, 0, 0, 2, 0}, {1, 0, 1, 0, 0, 0}},
      {&IFileRiassuntivo::CreaFileLatLonSorted, BytesOf({&d, &d, &e}), {1, 0, 1, 0, 0, 0}, {1, 0, 1, 0, 0, 0}},
      {&IFileRiassuntivo::CreaFileGuidSorted, BytesOf({&e, &d, &d}), {0, 0, 1, 0, 1, 0}, {2, 0, 0, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    EXPECT_FALSE((empty.*c.set)(p + "s", p + "i2", p + "i3"));
    EXPECT_TRUE(dir.Entries().empty());
    EXPECT_TRUE((s.get()->*c.set)(p + "s", "", ""));  // no index asked for
    EXPECT_EQ(dir.Entries(), std::vector<std::string>{"s"});
    EXPECT_TRUE((s.get()->*c.set)(p + "s", p + "i2", p + "i3"));
    EXPECT_EQ(ReadAll(p + "s"), c.file);
    EXPECT_EQ(ReadAll(p + "i2"), c.i2);
    EXPECT_EQ(ReadAll(p + "i3"), c.i3);
    for (const char* f : {"s", "i2", "i3"}) unlink((p + f).c_str());
  }
}

// Text fields escape ";", "%", control bytes and bad UTF-8 (surrogates,
// beyond U+10FFFF); bit fields of the
// GUID and the date are split; records sort by country, then name.
TEST(SummaryText, OneLinePerRecordSortedByCountryAndName) {
  fixtures::TempDir dir;
  _SDatoRiassuntivo r = Rec("Mon;za 100%\xC3\x89\xFF\n\xED\xA0\x80\xF4\x90\x80\x80", "ITA", 456200000, 92800000,
                            0x0001800000001234ull, "0k3f9zq1", 7u | 5u << 6 | 14u << 12 | 30u << 17 | 4u << 22 | 9u << 26 | 1u << 31);
  r.RifAlt = -12000;
  r.Length = 5793.456f;
  r.BeaconNumber = 3;
  r.BeaconType = 2;
  r.VariantIdx = -1;
  r.OffsetFw = 280;
  r.OffsetPti = 1234;
  r.Dummy[0] = 0xAB;
  _SDatoRiassuntivo first = Rec("B\xC3\x89", "FRA");  // a character up to the end of the field
  const std::string t = dir.path() + "t.txt";
  evtrec::Reset();
  ASSERT_TRUE(Summary({&r, &first})->CreaFileAlfabSortedConNazioneTestuale(t));
  const Bytes text = ReadAll(t);
  EXPECT_EQ(std::string(text.begin(), text.end()),
            "Name;Country;State;RifLat;RIfLon;RifAlt;Length;BeaconNumber;BeaconType;VariantIdx;FileName;Guid;Date;"
            "OffsetFw;OffsetPti;Dummy\nB\xC3\x89;FRA;;0;0;0;0.00;0;1;0;aaaaaaaa;0:0:0:0:0:0:0:0:0:0;0:0:0:0:0:0:0;0;0;" +
                std::string(88, '0') + "\nMon%3Bza 100%25\xC3\x89%FF%0A%ED%A0%80%F4%90%80%80;ITA;;456200000;92800000;-12000;5793.46;3;2;-1;"
                "0k3f9zq1;4660:0:0:0:0:0:0:1:1:0;7:5:14:30:4:9:1;280;1234;ab" + std::string(86, '0') + "\n");
  // A file that cannot be written is reported; each null record too, and skipped.
  EXPECT_FALSE(CFileRiassuntivo::ScriviRiassuntivoTestuale({&r}, dir.path() + "no/t.txt"));
  EXPECT_TRUE(CFileRiassuntivo::ScriviRiassuntivoTestuale({nullptr, &first, nullptr, &r}, t));
  EXPECT_EQ(ReadAll(t), text);
  ASSERT_EQ(evtrec::Events().size(), 3u);
  EXPECT_EQ(evtrec::Events()[0].severity, "ERROR");
  EXPECT_EQ(evtrec::Events()[0].Message(), "file " + dir.path() + "no/t.txt is already open");
  EXPECT_EQ(evtrec::Events()[1].Message() + evtrec::Events()[2].Message(), "pvar empty pointerpvar empty pointer");
}

}  // namespace
