// The summary in memory and on disk: orderings, building and editing,
// nearest searches, comparison rules, and the summary file, cross-index
// file, sorted sets and text listing byte by byte. One table per rule.
#include <gtest/gtest.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <tuple>

#include "IFileRiassuntivo.h"
#include "TrackMemoryRecords.h"
#include "summary/CFileRiassuntivo.h"
#include "summary/Riassunto.h"
#include "support/EvtLogRecorder.h"
#include "support/TrackFixtures.h"

using fixtures::Bytes;
using fixtures::ReadAll;
namespace rs = vektkk::riassunto;

namespace {

// A record with the fields that the tests look at.
_SDatoRiassuntivo Rec(const char* name, const char* country = "", int32_t lat = 0, int32_t lon = 0,
                      uint64_t guid = 0, const char* file = "aaaaaaaa", uint32_t date = 0) {
  _SDatoRiassuntivo r;
  memcpy(r.Name, name, strnlen(name, sizeof r.Name));
  memcpy(r.Country, country, strnlen(country, sizeof r.Country));
  r.RifLat = lat;
  r.RIfLon = lon;
  r.Guid.Valore = guid;
  memcpy(r.FileName, file, strnlen(file, sizeof r.FileName));
  r.Date.Valore = date;
  return r;
}

// The packed date word of a year (January 1st, midnight).
uint32_t Year(int year) { return static_cast<uint32_t>(year - 2015) << 26; }

// A summary that owns copies of the records (null pointers stay null).
std::unique_ptr<CFileRiassuntivo> Summary(std::initializer_list<const _SDatoRiassuntivo*> records) {
  std::unique_ptr<CFileRiassuntivo> s(new CFileRiassuntivo);
  for (const _SDatoRiassuntivo* r : records)
    s->Lista().push_back(r != nullptr ? new _SDatoRiassuntivo(*r) : nullptr);
  return s;
}

Bytes BytesOf(std::initializer_list<const _SDatoRiassuntivo*> records) {
  Bytes out;
  for (const _SDatoRiassuntivo* r : records)
    out.insert(out.end(), reinterpret_cast<const unsigned char*>(r),
               reinterpret_cast<const unsigned char*>(r + 1));
  return out;
}

// The five lists of a comparison as (list, file name) pairs, list by list.
using Pairs = std::vector<std::pair<int, std::string>>;
std::string NameOf(const std::string& name) { return name; }
std::string NameOf(const SPistaEstesa& t) {
  return t.NomeFileTkk + "/" + t.Country + "/" + t.State + "/" + t.Name;
}
template <typename Result>
Pairs Flat(const Result& c) {
  Pairs out;
  int l = 0;
  for (const auto* list : {&c.PisteUguali, &c.PisteQuiPiuRecenti, &c.PisteAltrovePiuRecenti, &c.PisteSoloQui,
                           &c.PisteSoloAltrove}) {
    for (const auto& track : *list) out.emplace_back(l, NameOf(track));
    ++l;
  }
  return out;
}

_SDatoRiassuntivo Full(const char* name, const char* country, const char* state, int32_t lat = 0) {
  _SDatoRiassuntivo r = Rec(name, country, lat);
  memcpy(r.State, state, strnlen(state, 4));
  return r;
}

TEST(SummaryOrderings, EachRule) {
  const std::string full28(28, 'N');
  struct Case {
    const char* what;
    rs::Ordine order;
    _SDatoRiassuntivo first, second;
  } const cases[] = {
      {"empty country first", rs::Ordine::AlfabeticoConNazione, Rec("Zeta", ""), Rec("Alfa", "AUT")},
      {"same country, by name", rs::Ordine::AlfabeticoConNazione, Rec("Alfa", "ITA"), Rec("Beta", "ITA")},
      {"country into state", rs::Ordine::AlfabeticoConNazione, Full("Z", "ITAL", "A"),
       Full("A", "ITAL", "B")},
      {"country into latitude", rs::Ordine::AlfabeticoConNazione, Full("Z", "ITAL", "ABCD", 1),
       Full("A", "ITAL", "ABCD", 2)},
      {"name into country", rs::Ordine::AlfabeticoSenzaNazione, Full(full28.c_str(), "A", ""),
       Full(full28.c_str(), "B", "")},
      {"bytes above 127 after ASCII", rs::Ordine::AlfabeticoSenzaNazione, Rec("zz"), Rec("\xC3\x89tretat")},
      {"shorter name first", rs::Ordine::AlfabeticoSenzaNazione, Rec("Monza"), Rec("Monza Junior")},
      {"negative latitude first", rs::Ordine::LatLon, Rec("", "", -1, 9), Rec("", "", 1, -9)},
      {"then longitude", rs::Ordine::LatLon, Rec("", "", 5, -3), Rec("", "", 5, 2)},
      {"GUID high word first", rs::Ordine::Guid, Rec("", "", 0, 0, 0x1FFFFFFFFull),
       Rec("", "", 0, 0, 0x200000000ull)},
      {"then GUID low word", rs::Ordine::Guid, Rec("", "", 0, 0, 0x300000001ull),
       Rec("", "", 0, 0, 0x300000002ull)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_TRUE(rs::Precede(c.order, c.first, c.second));
    EXPECT_FALSE(rs::Precede(c.order, c.second, c.first));
    _SDatoRiassuntivo a = c.first, b = c.second;
    EXPECT_EQ(rs::Ordina({&b, &a, nullptr}, c.order), (std::vector<uint32_t>{1, 0, 2}));
  }
  // Strings without a zero byte up to the end of the record stop there.
  _SDatoRiassuntivo ff;
  memset(static_cast<void*>(&ff), 0xFF, sizeof ff);
  const _SDatoRiassuntivo gg = ff;
  for (rs::Ordine o : {rs::Ordine::AlfabeticoConNazione, rs::Ordine::AlfabeticoSenzaNazione})
    EXPECT_FALSE(rs::Precede(o, ff, gg) || rs::Precede(o, gg, ff));
}

TEST(SummaryEdit, AddVarianteTkkCopiesTheVariant) {
  fixtures::TempDir dir;
  const std::string nome = "0k3f9zq1";
  ASSERT_EQ(fixtures::MakeRandomTrack(11)->SalvaFileInPath(dir.path(), &nome), nome);
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMeUponFile(dir.path() + nome + ".tkk", true, true));
  std::unique_ptr<IFileTkk> bad(IFileTkk::CreateMeUponFile(dir.path() + "missing.tkk", true, true));
  CFileTkk& file = dynamic_cast<CFileTkk&>(*track);
  const short n = static_cast<short>(file.GetTagsInfoVarianti().size());
  CFileRiassuntivo s;
  EXPECT_FALSE(s.IsThisFileTkkHere(nome));                           // names counted before the records come
  for (short i = -1; i <= n; ++i) s.AddVarianteTkk(track.get(), i);  // -1 and n are no variants
  s.AddVarianteTkk(nullptr, 0);
  s.AddVarianteTkk(bad.get(), 0);
  ASSERT_EQ(s.GetNumRiassuntivi(), n);
  for (short i = 0; i < n; ++i) {
    const _STagInfoVarianteTKK_fw& fw = file.GetTagInfoVariante(i)->InfoFw;
    const _SDatoRiassuntivo& r = *s.Lista()[static_cast<size_t>(i)];
    EXPECT_EQ(memcmp(r.Name, fw.NomeXDevice, 28) | memcmp(r.Country, fw.NationCode, 4) |
                  memcmp(r.State, fw.SubNationCode, 4) | memcmp(&r.RifLat, &fw.LatRif, 12),
              0);
    // Copies of the packed fields: a reference to one may be misaligned.
    EXPECT_EQ(
        std::make_tuple(float{r.Length}, unsigned{r.BeaconNumber}, int{r.BeaconType}, short{r.VariantIdx},
                        r.GetNomeFile(), uint64_t{r.Guid.Valore}, uint32_t{r.Date.Valore},
                        uint32_t{r.OffsetFw}, uint32_t{r.OffsetPti}),
        std::make_tuple(float{fw.Lunghezza}, fw.InfoBeacons.GetNumeroSplit(BEACON_IN_USO),
                        int{fw.InfoBeacons.TipoBeaconInUso}, i, nome, uint64_t{fw.Guid.Valore},
                        uint32_t{fw.DataModifica.Valore}, file.GetOffsetDatiFw(i), file.GetOffsetPti(i)));
  }
}

// A name shorter than 8 characters stands for 8 zero bytes. Removals in a
// row are applied together, keeping the order of the records left. The
// names of a and b start their search at the same slot of the table of names.
TEST(SummaryEdit, DeleteAndFindByFileName) {
  const _SDatoRiassuntivo a = Rec(""), b = Rec("", "", 0, 0, 0, "bbbbbc9e"), zero = Rec("", "", 0, 0, 0, "");
  const std::pair<std::vector<std::string>, std::string> cases[] = {{{"aaaaaaaa"}, "b0"},
                                                                    {{"aaaaaaaa.tkk"}, "b0"},
                                                                    {{"abc"}, "abaa"},
                                                                    {{""}, "abaa"},
                                                                    {{"cccccccc"}, "ab0aa"},
                                                                    {{"bbbbbc9e", "aaaaaaaa"}, "0"},
                                                                    {{"aaaaaaaa", "x", "", "bbbbbc9e"}, ""}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.first[0] + " ... " + c.first.back());
    std::unique_ptr<CFileRiassuntivo> s = Summary({&a, &b, &zero, &a, &a});
    EXPECT_EQ(s->IsThisFileTkkHere(c.first[0]), c.first[0] != "cccccccc");
    for (const std::string& name : c.first) {
      s->DelFileTkk(name);
      EXPECT_FALSE(s->IsThisFileTkkHere(name));
    }
    EXPECT_EQ(s->GetNumRiassuntivi(), static_cast<int>(c.second.size()));  // before the removals are applied
    std::vector<const _SDatoRiassuntivo*> left;
    s->GetDatiRiassuntivi(left);
    std::string files;
    for (const _SDatoRiassuntivo* r : left) files += r->FileName[0] != 0 ? r->FileName[0] : '0';
    EXPECT_EQ(files, c.second);
  }
  CFileRiassuntivo empty;
  EXPECT_EQ(empty.DelFileTkk("aaaaaaaa") + empty.IsThisFileTkkHere("aaaaaaaa"), 0);
}

TEST(SummaryEdit, GuidAndVariantFinders) {
  _SDatoRiassuntivo r = Rec("", "", 0, 0, 0x0000123456789ABCull);
  r.VariantIdx = -1;
  _UGuidTkk other = r.Guid;
  other.Valore ^= 1ull << 40;                                                   // high word differs
  EXPECT_TRUE(rs::STrovaGuidTkk(r.Guid)(&r) && rs::STrovaIdxVariante(-1)(&r));  // the index sign-extended
  EXPECT_FALSE(rs::STrovaGuidTkk(other)(&r) || rs::STrovaIdxVariante(0xFFFF)(&r));
  EXPECT_FALSE(rs::STrovaGuidTkk(r.Guid)(nullptr) || rs::STrovaIdxVariante(0)(nullptr));
}

// A record at the query point is 0 m away: a maxDist of 0 leaves it out.
// Results are appended to what the vector holds.
TEST(SummaryNearest, StrictThresholdAppendedResultsAndPlanarRule) {
  // `far` lies on the same parallel, 78 km east: only the distance tells.
  const _SDatoRiassuntivo at = Rec("", "", 456200000, 92800000), far = Rec("", "", 456200000, 102800000);
  std::unique_ptr<CFileRiassuntivo> s = Summary({nullptr, &at, &far});
  const std::pair<int, std::vector<int>> cases[] = {
      {1, {7, 1}}, {0, {7}}, {-5, {7}}, {77000, {7, 1}}, {79000, {7, 1, 2}}, {20000000, {7, 1, 2}}};
  for (const auto& c : cases) {
    std::vector<int> out{7};
    EXPECT_EQ(s->getNearestTracksByHeaversine(45.62, 9.28, c.first, out), static_cast<int>(c.second.size()));
    EXPECT_EQ(out, c.second) << c.first;
  }
  // The planar search takes raw values times 1e7 as degrees: the record at
  // 1e-7 degree is "nearest" to latitude 1e7; ties go to the lower position;
  // without a record the answer is the list's size.
  const _SDatoRiassuntivo raw1 = Rec("", "", 1, 0);
  EXPECT_EQ(Summary({&at, &raw1})->GetDatoRiassuntivoNearest(1e7, 0), 1);
  EXPECT_EQ(Summary({nullptr, &at, &at})->GetDatoRiassuntivoNearest(0, 0), 1);
  EXPECT_EQ(Summary({nullptr})->GetDatoRiassuntivoNearest(0, 0), 1);
}

// A date in 2030 or later never counts as newer, except in the extended
// comparison, which compares the date words alone.
TEST(SummaryCompare, Rules) {
  // Dates here and there (0: the same record; 1: only Dummy differs), then the
  // list of each comparison (0 equal, 1 newer here, 2 newer elsewhere).
  struct Case {
    const char* what;
    uint32_t here, there;
    int basic, extended;
  } const cases[] = {
      {"identical", 0, 0, 0, 0},
      {"2031 against 2020", Year(2031), Year(2020), 2, 1},
      {"2030 against 2020", Year(2030), Year(2020), 2, 1},
      {"2020 against 2030", Year(2020), Year(2030), 1, 2},
      {"2029 against 2020", Year(2029), Year(2020), 1, 1},
      {"2020 against 2029", Year(2020), Year(2029), 2, 2},
      {"equal dates, Dummy differs", Year(2020), 1, 2, 2},
  };
  _SDatoRiassuntivo onlyHere = Rec("H", "", 0, 0, 0, "hhhhhhhh"),
                    onlyThere = Rec("E", "FRA", 0, 0, 0, "eeeeeeee");
  memcpy(onlyThere.State, "BY", 2);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    _SDatoRiassuntivo l = Rec("T", "ITA", 0, 0, 0, "tttttttt", c.here), r = l;
    if (c.there == 1)
      r.Dummy[0] = 1;
    else if (c.there != 0)
      r.Date.Valore = c.there;
    std::unique_ptr<CFileRiassuntivo> here = Summary({&l, &onlyHere}), there = Summary({&onlyThere, &r});
    SConfrontoPiste basic;
    SConfrontoPisteEsteso ext;
    EXPECT_TRUE(here->ConfrontaConAltro(*there, basic) && here->ConfrontaConAltroEsteso(*there, ext));
    EXPECT_EQ(Flat(basic), (Pairs{{c.basic, "tttttttt"}, {3, "hhhhhhhh"}, {4, "eeeeeeee"}}));
    // Lists 1 to 4 carry this side's record, list 5 the other side's.
    EXPECT_EQ(Flat(ext),
              (Pairs{{c.extended, "tttttttt/ITA//T"}, {3, "hhhhhhhh///H"}, {4, "eeeeeeee/FRA/BY/E"}}));
  }
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
  EXPECT_EQ(std::unique_ptr<IFileRiassuntivo>(IFileRiassuntivo::CreateMeUponDir("/"))->GetNumRiassuntivi(),
            0);
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

// Each set written as its records (here by the first letter of their names)
// and two indexes (positions in the other orders, one digit each).
TEST(SummarySortedSets, FilesAndIndexesWithDuplicates) {
  fixtures::TempDir dir;
  const std::string p = dir.path();
  // d twice (byte-identical), e once; orders: name e<d, lat d<e, GUID e<d, country d<e.
  const _SDatoRiassuntivo d = Rec("Monza", "FRA", 5, 0, 2), e = Rec("Adria", "ITA", 10, 0, 1);
  std::unique_ptr<CFileRiassuntivo> s = Summary({&d, &e, &d});
  CFileRiassuntivo empty;
  const auto read = [&p](const char* file, size_t step) {
    std::string out;
    const Bytes bytes = ReadAll(p + file);
    for (size_t i = 0; i < bytes.size(); i += step)
      out += step == 2 ? char('0' + bytes[i] + 256 * bytes[i + 1]) : char(bytes[i]);
    return out;
  };
  using Set = bool (IFileRiassuntivo::*)(const std::string&, const std::string&, const std::string&);
  const std::tuple<Set, const char*, const char*, const char*> cases[] = {
      {&IFileRiassuntivo::CreaFileAlfabSortedSenzaNazione, "AMM", "200", "011"},
      {&IFileRiassuntivo::CreaFileAlfabSortedConNazione, "MMA", "002", "110"},
      {&IFileRiassuntivo::CreaFileLatLonSorted, "MMA", "110", "110"},
      {&IFileRiassuntivo::CreaFileGuidSorted, "AMM", "011", "200"},
  };
  for (const auto& [set, names, i2, i3] : cases) {
    EXPECT_FALSE((empty.*set)(p + "s", p + "i2", p + "i3"));
    EXPECT_TRUE(dir.Entries().empty());
    EXPECT_TRUE((s.get()->*set)(p + "s", "", ""));  // no index asked for
    EXPECT_EQ(dir.Entries(), std::vector<std::string>{"s"});
    EXPECT_TRUE((s.get()->*set)(p + "s", p + "i2", p + "i3"));
    EXPECT_EQ(read("s", sizeof d) + read("i2", 2) + read("i3", 2), std::string(names) + i2 + i3);
    EXPECT_EQ(ReadAll(p + "s").size(), 3 * sizeof d);
    for (const char* f : {"s", "i2", "i3"}) unlink((p + f).c_str());
  }
}

// Text fields escape ";", "%", control bytes and bad UTF-8 (surrogates,
// beyond U+10FFFF); bit fields of the GUID and the date are split; records
// sort by country, then name.
TEST(SummaryText, OneLinePerRecordSortedByCountryAndName) {
  fixtures::TempDir dir;
  _SDatoRiassuntivo r = Rec("Mon;za 100%\xC3\x89\xFF\n\xED\xA0\x80\xF4\x90\x80\x80", "ITA", 456200000,
                            92800000, 0x0001800000001234ull, "0k3f9zq1",
                            7u | 5u << 6 | 14u << 12 | 30u << 17 | 4u << 22 | 9u << 26 | 1u << 31);
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
  EXPECT_EQ(
      std::string(text.begin(), text.end()),
      "Name;Country;State;RifLat;RIfLon;RifAlt;Length;BeaconNumber;BeaconType;VariantIdx;FileName;Guid;Date;"
      "OffsetFw;OffsetPti;Dummy\nB\xC3\x89;FRA;;0;0;0;0.00;0;1;0;aaaaaaaa;0:0:0:0:0:0:0:0:0:0;0:0:0:0:0:0:0;"
      "0;0;" +
          std::string(88, '0') +
          "\nMon%3Bza "
          "100%25\xC3\x89%FF%0A%ED%A0%80%F4%90%80%80;ITA;;456200000;92800000;-12000;5793.46;3;2;-1;"
          "0k3f9zq1;4660:0:0:0:0:0:0:1:1:0;7:5:14:30:4:9:1;280;1234;ab" +
          std::string(86, '0') + "\n");
  // A file that cannot be written is reported; each null record too, and skipped.
  EXPECT_FALSE(CFileRiassuntivo::ScriviRiassuntivoTestuale({&r}, dir.path() + "no/t.txt"));
  EXPECT_TRUE(CFileRiassuntivo::ScriviRiassuntivoTestuale({nullptr, &first, nullptr, &r}, t));
  EXPECT_EQ(ReadAll(t), text);
  ASSERT_EQ(evtrec::Events().size(), 3u);
  EXPECT_EQ(evtrec::Events()[0].severity, "ERROR");
  EXPECT_EQ(evtrec::Events()[0].Message(), "file " + dir.path() + "no/t.txt is already open");
  EXPECT_EQ(evtrec::Events()[1].Message() + evtrec::Events()[2].Message(),
            "pvar empty pointerpvar empty pointer");
}

}  // namespace
