// The summary in memory and on disk: orderings, building and editing,
// nearest searches, comparison rules, and the summary file, cross-index
// file, sorted sets and text listing byte by byte. One table per rule. Then
// real circuits (read from the shared data set at test time) through it all.
#include <gtest/gtest.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <nlohmann/json.hpp>
#include <tuple>

#include "Coordinate.h"
#include "TrackMemoryRecords.h"
#include "summary/CFileRiassuntivo.h"
#include "summary/Riassunto.h"
#include "summary/TabellaPosizioni.h"
#include "support/EvtLogRecorder.h"
#include "support/TrackFixtures.h"

using namespace fixtures;
namespace rs = vektkk::riassunto;
using O = rs::Ordine;

namespace {

// A record with the fields that the tests look at; a country of more than 4
// bytes runs on into State.
_SDatoRiassuntivo Rec(const char* name, const char* country = "", int32_t lat = 0, int32_t lon = 0,
                      uint64_t guid = 0, const char* file = "aaaaaaaa", uint32_t date = 0) {
  _SDatoRiassuntivo r;
  memcpy(r.Name, name, strnlen(name, sizeof r.Name));
  memcpy(reinterpret_cast<char*>(&r) + offsetof(_SDatoRiassuntivo, Country), country, strnlen(country, 8));
  r.RifLat = lat, r.RIfLon = lon, r.Guid.Valore = guid;
  memcpy(r.FileName, file, strnlen(file, sizeof r.FileName));
  r.Date.Valore = date;
  return r;
}

// The packed date word of a year (January 1st, midnight).
uint32_t Year(uint32_t year) { return static_cast<uint32_t>(year - 2015) << 26; }

// A summary that owns copies of the records (null pointers stay null).
std::unique_ptr<CFileRiassuntivo> Summary(std::initializer_list<const _SDatoRiassuntivo*> records) {
  std::unique_ptr<CFileRiassuntivo> s(new CFileRiassuntivo);
  for (const _SDatoRiassuntivo* r : records)
    s->Lista().push_back(r != nullptr ? new _SDatoRiassuntivo(*r) : nullptr);
  return s;
}

Bytes BytesOf(const std::vector<_SDatoRiassuntivo>& records) {
  const auto* p = reinterpret_cast<const unsigned char*>(records.data());
  return Bytes(p, p + records.size() * sizeof records[0]);
}

// The four sorted sets, each with its order and, for the records of the
// sorted-set test, its records' first letters and its two indexes.
using Set = bool (IFileRiassuntivo::*)(const std::string&, const std::string&, const std::string&);
const std::tuple<Set, O, const char*, const char*, const char*> kSets[] = {
    {&IFileRiassuntivo::CreaFileAlfabSortedSenzaNazione, O::AlfabeticoSenzaNazione, "AMM", "200", "011"},
    {&IFileRiassuntivo::CreaFileAlfabSortedConNazione, O::AlfabeticoConNazione, "MMA", "002", "110"},
    {&IFileRiassuntivo::CreaFileLatLonSorted, O::LatLon, "MMA", "110", ""},
    {&IFileRiassuntivo::CreaFileGuidSorted, O::Guid, "AMM", "011", "200"}};

// The five lists of a comparison, each entry as its list's number and name.
std::string NameOf(const std::string& name) { return name; }
std::string NameOf(const SPistaEstesa& t) {
  return t.NomeFileTkk + "/" + t.Country + "/" + t.State + "/" + t.Name;
}
template <typename Result>
std::string Flat(const Result& c) {
  std::string out;
  int l = 0;
  for (const auto* list : {&c.PisteUguali, &c.PisteQuiPiuRecenti, &c.PisteAltrovePiuRecenti, &c.PisteSoloQui,
                           &c.PisteSoloAltrove}) {
    for (const auto& track : *list) out += std::to_string(l) + NameOf(track) + " ";
    ++l;
  }
  return out;
}

TEST(SummaryOrderings, EachRule) {
  const std::string n28(28, 'N');  // a name with no zero byte
  const std::tuple<const char*, O, _SDatoRiassuntivo, _SDatoRiassuntivo> cases[] = {
      {"empty country first", O::AlfabeticoConNazione, Rec("Zeta", ""), Rec("Alfa", "AUT")},
      {"same country, by name", O::AlfabeticoConNazione, Rec("Alfa", "ITA"), Rec("Beta", "ITA")},
      {"country into state", O::AlfabeticoConNazione, Rec("Z", "ITALA"), Rec("A", "ITALB")},
      {"name into state", O::AlfabeticoSenzaNazione, Rec(n28.c_str(), "ITALA"), Rec(n28.c_str(), "ITALB")},
      {"bytes above 127 after ASCII", O::AlfabeticoSenzaNazione, Rec("zz"), Rec("\xC3\x89tretat")},
      {"shorter name first", O::AlfabeticoSenzaNazione, Rec("Monza"), Rec("Monza Junior")},
      {"negative latitude first", O::LatLon, Rec("", "", -1, 9), Rec("", "", 1, -9)},
      {"then longitude", O::LatLon, Rec("", "", 5, -3), Rec("", "", 5, 2)},
      {"GUID high word first", O::Guid, Rec("", "", 0, 0, 0x1FFFFFFFFull), Rec("", "", 0, 0, 0x200000000ull)},
      {"then GUID low word", O::Guid, Rec("", "", 0, 0, 0x300000001ull), Rec("", "", 0, 0, 0x300000002ull)},
  };
  for (const auto& [what, order, first, second] : cases) {
    SCOPED_TRACE(what);
    EXPECT_TRUE(rs::Precede(order, first, second));
    EXPECT_FALSE(rs::Precede(order, second, first) || rs::Precede(order, first, first));
    _SDatoRiassuntivo a = first, b = second, last = Rec("\xFF", "\xFF", INT32_MAX, 0, ~0ull);
    EXPECT_EQ(rs::Ordina({&b, &a, &last, nullptr}, order), (std::vector<uint32_t>{1, 0, 2, 3}));
  }
  _SDatoRiassuntivo full[3];  // no zero byte to the end: equal, and what follows is not read
  memset(static_cast<void*>(full), 0xFF, 2 * sizeof *full);
  EXPECT_FALSE(rs::Precede(O::AlfabeticoSenzaNazione, full[1], full[0]));
  full[0].Name[0] = 'A';  // countries equal to the record's end: the names decide
  EXPECT_TRUE(rs::Precede(O::AlfabeticoConNazione, full[0], full[1]));
}

// The fast sort keeps the pairwise rules, ties in list order, on records
// that share long prefixes, run on past their fields and hold bytes above 127.
TEST(SummaryOrderings, SortAgreesWithTheRules) {
  std::mt19937 rng(7);
  const unsigned char bytes[] = {0, 'B', 0x80, 0xFF};  // mostly 'A': long shared prefixes
  std::vector<_SDatoRiassuntivo> records(300);
  rs::Lista list;
  for (_SDatoRiassuntivo& r : records) {
    auto* p = reinterpret_cast<unsigned char*>(&r);
    for (size_t i = 0, n = rng() % 48; i < n; ++i) p[i] = rng() % 8 ? 'A' : bytes[rng() % 4];
    r.RifLat = static_cast<int32_t>(rng() % 3) - 1, r.RIfLon = static_cast<int32_t>(rng() % 3) - 1;
    r.Guid.Valore = uint64_t{rng() % 3} << 62 | rng() % 3;  // high words up to 0x80000000
    list.push_back(&r);
  }
  list.push_back(nullptr);
  for (O order : {O::AlfabeticoConNazione, O::AlfabeticoSenzaNazione, O::LatLon, O::Guid}) {
    std::vector<uint32_t> expected(list.size());
    std::iota(expected.begin(), expected.end(), 0u);
    std::stable_sort(expected.begin(), expected.end() - 1,
                     [&](uint32_t x, uint32_t y) { return rs::Precede(order, *list[x], *list[y]); });
    EXPECT_EQ(rs::Ordina(list, order), expected) << static_cast<int>(order);
  }
}

TEST(SummaryEdit, AddVarianteTkkCopiesTheVariant) {
  TempDir dir;
  const std::string nome = "0k3f9zq1";
  ASSERT_EQ(MakeRandomTrack(11)->SalvaFileInPath(dir.path(), &nome), nome);
  std::unique_ptr<IFileTkk> track(IFileTkk::CreateMeUponFile(dir.path() + nome + ".tkk", true, true));
  std::unique_ptr<IFileTkk> bad(IFileTkk::CreateMeUponFile(dir.path() + "missing.tkk", true, true));
  CFileTkk& file = dynamic_cast<CFileTkk&>(*track);
  const short n = static_cast<short>(file.GetTagsInfoVarianti().size());
  CFileRiassuntivo s;
  for (short i = -1; i <= n; ++i) s.AddVarianteTkk(track.get(), i);  // -1 and n are no variants
  s.AddVarianteTkk(nullptr, 0);
  s.AddVarianteTkk(bad.get(), 0);
  // Folders are not read: a host adds each variant itself.
  EXPECT_FALSE(s.AddFromDir(dir.path()) || s.CreaDaDirettorio(dir.path()) ||
               s.AggiungiDaDirettorio(dir.path()));
  ASSERT_EQ(s.GetNumRiassuntivi(), n);
  for (short i = 0; i < n; ++i) {
    const _STagInfoVarianteTKK_fw& fw = file.GetTagInfoVariante(i)->InfoFw;
    _SDatoRiassuntivo e;  // every field as the variant gives it, Dummy zero
    memcpy(e.Name, fw.NomeXDevice, 28), memcpy(e.Country, fw.NationCode, 4),
        memcpy(e.FileName, nome.data(), 8);
    memcpy(e.State, fw.SubNationCode, 4), memcpy(&e.RifLat, &fw.LatRif, 12);
    e.Length = fw.Lunghezza, e.BeaconType = fw.InfoBeacons.TipoBeaconInUso, e.VariantIdx = i;
    e.BeaconNumber = static_cast<uint8_t>(fw.InfoBeacons.GetNumeroSplit(BEACON_IN_USO)), e.Guid = fw.Guid;
    e.Date = fw.DataModifica, e.OffsetFw = file.GetOffsetDatiFw(i), e.OffsetPti = file.GetOffsetPti(i);
    EXPECT_EQ(memcmp(&e, s.Lista()[static_cast<size_t>(i)], sizeof e), 0) << i;
  }
  // Variants added after the names were counted are found and removed by
  // name, and a name added again after its removal stays.
  const _SDatoRiassuntivo a = Rec("");
  std::unique_ptr<CFileRiassuntivo> late = Summary({&a});
  auto files = [&] {
    std::vector<const _SDatoRiassuntivo*> left;
    late->GetDatiRiassuntivi(left);
    std::string out;
    for (const _SDatoRiassuntivo* r : left) out += r->GetNomeFile() + " ";
    return out;
  };
  EXPECT_FALSE(late->IsThisFileTkkHere(nome));
  for (int i = 0; i < 2 * n; ++i) late->AddVarianteTkk(track.get(), static_cast<short>(i % n));
  EXPECT_TRUE(late->IsThisFileTkkHere(nome));
  EXPECT_EQ(late->DelFileTkk(nome), 1);
  late->AddVarianteTkk(track.get(), 0);  // added again while its removal is pending
  EXPECT_EQ(late->DelFileTkk("aaaaaaaa"), 1);
  EXPECT_EQ(files(), nome + " ");
}

// A name shorter than 8 characters stands for 8 zero bytes. Removals in a
// row are applied together, keeping the order of the records left. The
// names of a and b start their search at the same slot of the table of names.
TEST(SummaryEdit, DeleteAndFindByFileName) {
  const _SDatoRiassuntivo a = Rec(""), b = Rec("", "", 0, 0, 0, "bbbbbc9e"), zero = Rec("", "", 0, 0, 0, "");
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"aaaaaaaa"}, "b0"},    {{"aaaaaaaa.tkk"}, "b0"},        {{"abc"}, "abaa"},
      {{"cccccccc"}, "ab0aa"}, {{"bbbbbc9e", "aaaaaaaa"}, "0"}, {{"aaaaaaaa", "x", "", "bbbbbc9e"}, ""}};
  for (const auto& c : cases) {
    std::unique_ptr<CFileRiassuntivo> s = Summary({&a, &b, &zero, &a, &a});
    EXPECT_EQ(s->IsThisFileTkkHere(c.first[0]), c.first[0] != "cccccccc");
    for (const std::string& name : c.first) {
      s->DelFileTkk(name);
      EXPECT_FALSE(s->IsThisFileTkkHere(name));
    }
    EXPECT_EQ(s->GetNumRiassuntivi(), static_cast<int>(c.second.size()));  // before the removals are applied
    std::vector<const _SDatoRiassuntivo*> left(2, &a);                     // emptied first
    s->GetDatiRiassuntivi(left);
    std::string files;
    for (const _SDatoRiassuntivo* r : left) files += r->FileName[0] != 0 ? r->FileName[0] : '0';
    EXPECT_EQ(files, c.second);
  }
  CFileRiassuntivo empty;
  EXPECT_EQ(empty.DelFileTkk("aaaaaaaa") + empty.IsThisFileTkkHere("aaaaaaaa"), 0);
  // Names added later grow the table, which moves the slots of the names counted first.
  rs::ContaNomi names;
  _SDatoRiassuntivo first = Rec("", "", 0, 0, 0, "cccccccc");  // a name whose slot moves on growing
  names.Costruisci({&first});
  for (uint64_t name = 1; name <= 8; ++name) names.Aggiungi(name);
  names.Togli(rs::ChiaveNome(first.FileName));
  EXPECT_TRUE(names.ToltoInPosizione(0, &first));
  // The finders by GUID (both words) and by variant index (sign-extended) pass over null entries.
  _SDatoRiassuntivo g = Rec("", "", 0, 0, 0x0123456789ABCDEFull);
  _UGuidTkk low = g.Guid, high = g.Guid;
  low.Valore ^= 1, high.Valore ^= 1ull << 32, g.VariantIdx = -1;
  EXPECT_TRUE(rs::STrovaGuidTkk(g.Guid)(&g) && rs::STrovaIdxVariante(-1)(&g));
  EXPECT_FALSE(rs::STrovaGuidTkk(low)(&g) || rs::STrovaGuidTkk(high)(&g) ||
               rs::STrovaIdxVariante(65535)(&g) || rs::STrovaGuidTkk(g.Guid)(nullptr) ||
               rs::STrovaIdxVariante(-1)(nullptr));
}

// A record at the query point is 0 m away: a maxDist of 0 leaves it out.
// Results are appended to what the vector holds.
TEST(SummaryNearest, StrictThresholdAndAppendedResults) {
  // `far` lies on the same parallel, 78 km east: only the distance tells.
  const _SDatoRiassuntivo at = Rec("", "", 456200000, 92800000),
                          far = Rec("", "", 456200000, 102800000, 0, "ffffffff");
  std::unique_ptr<CFileRiassuntivo> s = Summary({nullptr, &at, &far}), tie = Summary({&far, &at, &at});
  EXPECT_EQ(tie->GetDatoRiassuntivoNearest(45.62, 9.28), 1);  // the first of equal ones
  tie->DelFileTkk("ffffffff");                                // applied before the search
  EXPECT_EQ(tie->GetDatoRiassuntivoNearest(45.62, 9.28), 0);
  const std::pair<int, std::vector<int>> cases[] = {
      {1, {7, 1}}, {0, {7}}, {77000, {7, 1}}, {79000, {7, 1, 2}}};
  for (const auto& c : cases) {
    std::vector<int> out{7};
    EXPECT_EQ(s->getNearestTracksByHeaversine(45.62, 9.28, c.first, out), static_cast<int>(c.second.size()));
    EXPECT_EQ(out, c.second) << c.first;
  }
}

// A date in 2030 or later never counts as newer, except in the extended
// comparison, which compares the date words alone.
TEST(SummaryCompare, Rules) {
  // Years here and there (0: the same record; 1: only Dummy differs), then the
  // list of each comparison (0 equal, 1 newer here, 2 newer elsewhere).
  const uint32_t cases[][4] = {{0, 0, 0, 0},       {2031, 2020, 2, 1}, {2030, 2020, 2, 1}, {2020, 2030, 1, 2},
                               {2029, 2020, 1, 1}, {2020, 2029, 2, 2}, {2020, 1, 2, 2},    {2031, 1, 2, 2}};
  _SDatoRiassuntivo onlyHere = Rec("H", "", 0, 0, 0, "hhhhhhhh"),
                    onlyThere = Rec("E", "FRA", 0, 0, 0, "eeeeeeee"),
                    gone = Rec("G", "", 0, 0, 0, "gggggggg"), gone2 = Rec("F", "", 0, 0, 0, "ffffffff");
  for (const auto& [hereYear, thereYear, basicList, extendedList] : cases) {
    SCOPED_TRACE(testing::Message() << hereYear << " against " << thereYear);
    _SDatoRiassuntivo l = Rec("T", "ITA", 0, 0, 0, "tttttttt", hereYear != 0 ? Year(hereYear) : 0), r = l;
    if (thereYear == 1)
      r.Dummy[0] = 1;
    else if (thereYear != 0)
      r.Date.Valore = Year(thereYear);
    std::unique_ptr<CFileRiassuntivo> here = Summary({&l, &gone, &onlyHere, &gone2}),
                                      there = Summary({&onlyThere, &r});
    SConfrontoPiste basic;
    SConfrontoPisteEsteso ext;
    here->DelFileTkk("gggggggg");  // each removal still pending is applied before the comparison
    EXPECT_TRUE(here->ConfrontaConAltro(*there, basic));
    here->DelFileTkk("ffffffff");
    EXPECT_TRUE(here->ConfrontaConAltroEsteso(*there, ext));
    EXPECT_EQ(Flat(basic), std::to_string(basicList) + "tttttttt 3hhhhhhhh 3ffffffff 4eeeeeeee ");
    // Lists 1 to 4 carry this side's record, list 5 the other side's.
    EXPECT_EQ(Flat(ext), std::to_string(extendedList) + "tttttttt/ITA//T 3hhhhhhhh///H 4eeeeeeee/FRA//E ");
  }
}

// Cross-index positions count b's null entry; duplicates map to the first;
// an empty a writes no file. Files that are not whole records, or no files,
// are not read (and the FIFO does not block).
TEST(SummaryFile, SummaryAndCrossIndexBytesNullEntriesSkippedBadFilesNotRead) {
  TempDir dir;
  _SDatoRiassuntivo a = Rec("Alfa"), b = Rec("Beta", "ITA", -5, 7, 9, "0k3f9zq1", 3);
  CFileRiassuntivo::ScriviRiassuntivo({nullptr, &a, nullptr, &b}, dir.path() + "s");
  EXPECT_EQ(ReadAll(dir.path() + "s"), BytesOf({a, b}));
  std::unique_ptr<IFileRiassuntivo> s(IFileRiassuntivo::CreateMeUponFile(dir.path() + "s"));
  s->DelFileTkk("aaaaaaaa");  // applied before the file is written
  EXPECT_TRUE(s->SalvaFileDev(dir.path() + "dev"));
  EXPECT_EQ(ReadAll(dir.path() + "dev"), BytesOf({b}));
  static_cast<CFileRiassuntivo&>(*s).LeggiRiassuntivo(dir.path() + "s");  // names counted afresh
  const _SDatoRiassuntivo* r = &a;  // past the end: refused, and the pointer cleared
  EXPECT_FALSE(s->GetDatoRiassuntivo(r, 2) || r != nullptr);
  EXPECT_EQ(s->DelFileTkk("0k3f9zq1") * 10 + s->DelFileTkk("aaaaaaaa"), 10);
  EXPECT_FALSE(s->GetDatoRiassuntivo(r, 0));                  // the removals still pending are applied first
  CFileRiassuntivo::ScriviRiassuntivo({}, dir.path() + "s");  // truncated, not removed
  _SDatoRiassuntivo x = Rec("X"), y = Rec("Y"), x2 = x, x3 = x;
  CFileRiassuntivo::CalcolaAndScriviIdx({&x, &a, &x2, &y}, {&y, nullptr, &x2, &x3}, dir.path() + "idx");
  EXPECT_EQ(ReadAll(dir.path() + "idx"), (Bytes{2, 0, 0xFF, 0xFF, 2, 0, 0, 0}));
  CFileRiassuntivo::CalcolaAndScriviIdx({}, {&x}, dir.path() + "none");
  EXPECT_EQ(dir.Entries(), (std::vector<std::string>{"dev", "idx", "s"}));
  WriteAll(dir.path() + "129", Bytes(129, 1));
  ASSERT_EQ(mkfifo((dir.path() + "fifo").c_str(), 0600), 0);
  evtrec::Reset();
  for (const char* name : {"129", "s", "missing", "fifo"}) {  // "s" is there, empty
    std::unique_ptr<CFileRiassuntivo> bad = Summary({&a});
    bad->LeggiRiassuntivo(dir.path() + name);
    EXPECT_EQ(bad->GetNumRiassuntivi(), 0) << name;
  }
  EXPECT_TRUE(evtrec::Events().empty());
}

// Each set written as its records (here by the first letter of their names)
// and two indexes (positions in the other orders, one digit each); a set
// without a third path writes no third index.
TEST(SummarySortedSets, FilesAndIndexesWithDuplicates) {
  TempDir dir;
  const std::string p = dir.path();
  // d twice (byte-identical), e once; orders: name e<d, lat d<e, GUID e<d, country d<e.
  const _SDatoRiassuntivo d = Rec("Monza", "FRA", 5, 0, 2), e = Rec("Adria", "ITA", 10, 0, 1),
                          gone = Rec("Gone", "", 0, 0, 0, "gggggggg");
  const auto read = [&p](const char* file, size_t step) {
    std::string out;
    const Bytes bytes = ReadAll(p + file);
    for (size_t i = 0; i < bytes.size(); i += step)
      out += step == 2 ? char('0' + bytes[i] + 256 * bytes[i + 1]) : char(bytes[i]);
    return out;
  };
  for (const auto& [set, order, names, i2, i3] : kSets) {
    std::unique_ptr<CFileRiassuntivo> s = Summary({&d, &gone, &e, &d});
    s->DelFileTkk("gggggggg");  // applied before the set is made
    EXPECT_TRUE((s.get()->*set)(p + "s", p + "i2", *i3 ? p + "i3" : ""));
    EXPECT_EQ(read("s", sizeof d) + read("i2", 2) + read("i3", 2), std::string(names) + i2 + i3);
    for (const char* f : {"s", "i2", "i3"}) unlink((p + f).c_str());
  }
  // In a run of more than 16 equal keys byte-identical records (here copies) are found by hash.
  std::vector<_SDatoRiassuntivo> same(17, d);
  rs::Lista many;
  for (_SDatoRiassuntivo& r : same) many.push_back(&r);
  EXPECT_EQ(rs::CalcolaInsieme(many, O::LatLon, O::Guid, O::Guid, true, false).Indice2,
            std::vector<uint16_t>(17, 0));
}

// Text fields escape ";", "%", control bytes and bad UTF-8 (surrogates,
// beyond U+10FFFF); bit fields of the GUID and the date are split; records
// sort by country, then name.
TEST(SummaryText, OneLinePerRecordSortedByCountryAndName) {
  TempDir dir;
  _SDatoRiassuntivo r =
      Rec("Mon;za 100%\xC3\x89\xFF\n\xED\xA0\x80\xF4\x90\x80\x80\xE2\x82"
          "A",
          "ITA", 456200000, 92800000, 0x0001800000011234ull, "0k3f9zq1",
          7u | 5u << 6 | 14u << 12 | 30u << 17 | 4u << 22 | 9u << 26 | 1u << 31);
  r.RifAlt = -12000, r.Length = 5793.456f, r.BeaconNumber = 3, r.BeaconType = 2, r.VariantIdx = -1;
  r.Dummy[0] = 0xAB;
  // Well-formed sequences at the edges of the ranges, a lead byte past them, a last one up to
  // the end of the name.
  _SDatoRiassuntivo first = Rec(
      "B\xC2\xA9\xDF\xBF\xE2\x82\xBF\xE4\xB8\x80\xE0\xA0\x80\xF5\x80\x80\x80\xF4\x8F\xBF\xBF\xC3\x89", "FRA");
  const std::string t = dir.path() + "t.txt";
  evtrec::Reset(true);  // null entries are left out, each with a report
  std::unique_ptr<CFileRiassuntivo> s = Summary({nullptr, &r, &first, nullptr});
  ASSERT_TRUE(s->CreaFileAlfabSortedConNazioneTestuale(t));
  EXPECT_EQ(evtrec::Reports(), std::vector<std::string>(2, "ERROR pvar empty pointer"));
  evtrec::Reset(false);
  const Bytes text = ReadAll(t);
  EXPECT_EQ(
      std::string(text.begin(), text.end()),
      "Name;Country;State;RifLat;RIfLon;RifAlt;Length;BeaconNumber;BeaconType;VariantIdx;FileName;Guid;Date;"
      "OffsetFw;OffsetPti;Dummy\nB\xC2\xA9\xDF\xBF\xE2\x82\xBF\xE4\xB8\x80\xE0\xA0\x80%F5%80%80%"
      "80\xF4\x8F\xBF\xBF\xC3\x89;"
      "FRA;;0;0;0;0.00;0;1;0;aaaaaaaa;0:0:0:0:0:0:0:0:0:0;0:0:0:0:0:0:0;0;0;" +
          std::string(88, '0') +
          "\nMon%3Bza "
          "100%25\xC3\x89%FF%0A%ED%A0%80%F4%90%80%80%E2%82A;ITA;;456200000;92800000;-12000;5793.46;3;2;-1;"
          "0k3f9zq1;4660:1:0:0:0:0:0:1:1:0;7:5:14:30:4:9:1;0;0;ab" +
          std::string(86, '0') + "\n");
  // Null records are skipped.
  EXPECT_TRUE(CFileRiassuntivo::ScriviRiassuntivoTestuale({nullptr, &first, nullptr, &r}, t));
  EXPECT_EQ(ReadAll(t), text);
  evtrec::Reset(true);  // a listing that cannot be written
  EXPECT_FALSE(CFileRiassuntivo::ScriviRiassuntivoTestuale({&r}, t + "/t.txt"));
  EXPECT_EQ(evtrec::Reports(), std::vector<std::string>{"ERROR file " + t + "/t.txt is already open"});
  evtrec::Reset(false);
  // A removal still pending is applied before the listing.
  s->DelFileTkk("0k3f9zq1");
  ASSERT_TRUE(s->CreaFileAlfabSortedConNazioneTestuale(t));
  const std::string all(text.begin(), text.end());
  EXPECT_EQ(ReadAll(t), Bytes(text.begin(), text.begin() + static_cast<long>(all.find("\nMon") + 1)));
}

// The circuits go into a summary, written as the four sorted sets and read
// back in order; the haversine search finds each from its published location.
TEST(SummaryF1, CircuitsThroughTheSummary) {
  const std::string data = VEKTKK_F1_DATA_DIR;
  if (access((data + "/f1-locations.json").c_str(), R_OK) != 0)
    GTEST_SKIP() << "no f1 circuit outlines at " << data << " (set VEKTKK_F1_DATA)";
  TempDir dir;
  std::map<std::string, std::string> fileOf;  // circuit id -> track file name
  CFileRiassuntivo summary;
  const nlohmann::json locations = nlohmann::json::parse(std::ifstream(data + "/f1-locations.json"));
  for (const nlohmann::json& loc : locations) {
    // A track file of the circuit: its shape, a finish line and the reference
    // point at the first point, its nation (the upper-case country code of its id).
    const std::string id = loc["id"];
    const nlohmann::json feature =
        nlohmann::json::parse(std::ifstream(data + "/circuits/" + id + ".geojson"))["features"][0];
    const nlohmann::json& points = feature["geometry"]["coordinates"];
    std::vector<_t_s_lla_i> shape;
    for (const nlohmann::json& c : points)
      shape.push_back({ConvertiLatLonAs32(c[1].get<double>()), ConvertiLatLonAs32(c[0].get<double>()), 0});
    std::unique_ptr<IFileTkk> track(IFileTkk::CreateMe(false, false));
    _STagIndexesVarianteTKK idx;
    idx.IdxPunti = track->AddTagDatiPuntiTracciato(shape);
    _STagInfoVarianteTKK_fw fw;
    memset(fw.NationCode, 0, 8);  // and SubNationCode, left alone by the constructor
    for (size_t i = 0; i < 2; ++i) fw.NationCode[i] = static_cast<char>(toupper(id[i]));
    fw.LatRif = shape[0].LatI, fw.LonRif = shape[0].LonI;
    _SDatoCoordinateBeacon& finish = fw.InfoBeacons.LineeBeacon[0][0];  // the scrutineering set's
    finish.LatI = shape[0].LatI, finish.LonI = shape[0].LonI, finish.LarghezzaPista = 12000;
    const std::string name = feature["properties"]["Name"];
    ASSERT_TRUE(track->AddTagInfoVariante(name, name, fw, idx)) << id;
    fileOf[id] = track->SalvaFileInPath(dir.path(), nullptr);
    std::unique_ptr<IFileTkk> saved(IFileTkk::CreateMeUponFile(dir.path() + fileOf[id] + ".tkk", true, true));
    summary.AddVarianteTkk(saved.get(), 0);
  }
  for (const auto& [set, order, letters, i2, i3] : kSets) {
    ASSERT_TRUE((summary.*set)(dir.path() + "set", "", ""));
    std::vector<const _SDatoRiassuntivo*> records;
    std::unique_ptr<IFileRiassuntivo> back(IFileRiassuntivo::CreateMeUponFile(dir.path() + "set"));
    back->GetDatiRiassuntivi(records);
    ASSERT_EQ(records.size(), locations.size());
    for (size_t i = 1; i < records.size(); ++i)
      EXPECT_FALSE(rs::Precede(order, *records[i], *records[i - 1]));
  }
  for (const nlohmann::json& loc : locations) {
    std::vector<int> found;
    summary.getNearestTracksByHeaversine(loc["lat"].get<double>(), loc["lon"].get<double>(), 5000, found);
    EXPECT_TRUE(std::any_of(found.begin(), found.end(), [&](int i) {
      return summary.Lista()[static_cast<size_t>(i)]->GetNomeFile() == fileOf[loc["id"]];
    })) << loc["id"];
  }
}

}  // namespace
