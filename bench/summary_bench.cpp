// The track summary at the format's full size (65,534 records) against the
// summary's algorithms taken literally (at 4,096 and 8,192 records: they are
// quadratic) and against the bare file operations on the same bytes.
// Records are realistic: names of several lengths and scripts, nations,
// positions over the globe, 1 to 4 variants per track file, about 1 in 100
// records byte-identical to another. Files go to a fresh directory under
// $TMPDIR (or /tmp), removed at exit.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <math.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "BenchFiles.h"
#include "summary/CFileRiassuntivo.h"
#include "summary/Riassunto.h"

// The summary's algorithms in their literal form, linear searches and all:
// the baseline of the fast ones.
namespace literal {

using Lista = std::vector<_SDatoRiassuntivo*>;
using vektkk::riassunto::STrovaNomeFile;

inline bool Same(const _SDatoRiassuntivo* a, const _SDatoRiassuntivo* b) { return memcmp(a, b, sizeof *a) == 0; }

inline std::vector<uint16_t> CrossIndex(const Lista& a, const Lista& b) {
  std::vector<uint16_t> out;
  for (const _SDatoRiassuntivo* r : a) {
    if (r == nullptr) continue;
    const auto it = std::find_if(b.begin(), b.end(), [r](const _SDatoRiassuntivo* e) { return e && Same(e, r); });
    out.push_back(it == b.end() ? 0xFFFF : static_cast<uint16_t>(it - b.begin()));
  }
  return out;
}

inline void Delete(Lista& list, const std::string& name) {
  for (auto it = std::find_if(list.begin(), list.end(), STrovaNomeFile(name)); it != list.end();
       it = std::find_if(list.begin(), list.end(), STrovaNomeFile(name))) {
    delete *it;
    list.erase(it);
  }
}

// (list, file name) pairs in the order they are appended.
inline std::vector<std::pair<int, std::string>> Compare(const Lista& here, const Lista& there, bool year) {
  std::vector<std::pair<int, std::string>> out;
  for (const _SDatoRiassuntivo* l : here) {
    if (l == nullptr) continue;
    const auto it = std::find_if(there.begin(), there.end(), STrovaNomeFile(l->GetNomeFile()));
    int list = 3;
    if (it != there.end() && Same(*it, l)) {
      list = 0;
    } else if (it != there.end()) {
      const uint32_t dL = l->Date.Valore, dR = (*it)->Date.Valore;
      const bool lNew = ((dL >> 26) & 31) > 14, rNew = ((dR >> 26) & 31) > 14;
      if (!year) list = dL > dR ? 1 : 2;
      else if (dL > dR) list = lNew ? 2 : 1;
      else list = dL < dR && rNew ? 1 : 2;
    }
    out.emplace_back(list, l->GetNomeFile());
  }
  for (const _SDatoRiassuntivo* r : there)
    if (r != nullptr && std::none_of(here.begin(), here.end(), STrovaNomeFile(r->GetNomeFile())))
      out.emplace_back(4, r->GetNomeFile());
  return out;
}

inline std::vector<int> Haversine(const Lista& list, double lat, double lon, int maxDist) {
  const double k = 0.017453292519943295, R = 6372797.560856;
  std::vector<int> out;
  for (size_t i = 0; i < list.size(); ++i) {
    if (list[i] == nullptr) continue;
    const double rLat = list[i]->RifLat / 10000000.0, rLon = list[i]->RIfLon / 10000000.0;
    const double s1 = sin((lat - rLat) * k * 0.5), s2 = sin((lon - rLon) * k * 0.5);
    const double a = s1 * s1 + s2 * s2 * (cos(lat * k) * cos(rLat * k));
    if (static_cast<double>(maxDist) > (asin(sqrt(a)) + asin(sqrt(a))) * R) out.push_back(static_cast<int>(i));
  }
  return out;
}

// A sorted set: the sorted copy and its two cross-indexes.
struct Set {
  Lista file;
  std::vector<uint16_t> i2, i3;
};
Set SortedSet(const Lista& list, vektkk::riassunto::Ordine o1, vektkk::riassunto::Ordine o2,
              vektkk::riassunto::Ordine o3) {
  auto sorted = [&](vektkk::riassunto::Ordine o) {
    Lista copy = list;
    std::sort(copy.begin(), copy.end(), [o](const _SDatoRiassuntivo* a, const _SDatoRiassuntivo* b) {
      return vektkk::riassunto::Precede(o, *a, *b);
    });
    return copy;
  };
  Set set;
  set.file = sorted(o1);
  set.i2 = CrossIndex(set.file, sorted(o2));
  set.i3 = CrossIndex(set.file, sorted(o3));
  return set;
}

}  // namespace literal

namespace {

namespace rs = vektkk::riassunto;
constexpr int kFull = 65534;

bool WriteDurably(const std::string& path, const void* data, size_t size) {
  const std::string temp = path + ".tmp";
  const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd < 0) return false;
  bool ok = write(fd, data, size) == static_cast<ssize_t>(size) && fsync(fd) == 0;
  ok = close(fd) == 0 && ok && rename(temp.c_str(), path.c_str()) == 0;
  const std::string dir = path.substr(0, path.rfind('/') + 1);
  const int dfd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ok = ok && dfd >= 0 && fsync(dfd) == 0;
  if (dfd >= 0) close(dfd);
  return ok;
}

std::vector<unsigned char> ReadWhole(const std::string& path) {
  std::vector<unsigned char> bytes;
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat st;
  if (fd >= 0 && fstat(fd, &st) == 0) {
    bytes.resize(static_cast<size_t>(st.st_size));
    if (read(fd, bytes.data(), bytes.size()) != st.st_size) bytes.clear();
  }
  if (fd >= 0) close(fd);
  return bytes;
}

std::vector<_SDatoRiassuntivo> Realistic(std::mt19937& rng, int n, unsigned firstFile) {
  static const char* const kWords[] = {
      "Autodromo", "Circuit", "Kartodromo", "Raceway", "Motorsport Park", "Ring", "Pista",
      "Autódromo", "Nürburg", "Hockenheim", "Circuito de la Ciudad", "Mugello", "Spa", "Zandvoort",
      "Сочи Автодром", "鈴鹿サーキット", "上海国际赛车场", "Jerez", "Brno", "Estoril", "Phillip Island",
      "Interlagos", "Hermanos Rodríguez", "Kyalami", "Losail", "Sepang", "Buddh", "Yas", "Red Bull"};
  static const char* const kCountries[] = {"ITA", "FRA", "DEU", "ESP", "GBR", "USA", "JPN", "CHN", "BRA",
                                           "AUS", "RUS", "NLD", "BEL", "CZE", "PRT", "MEX", "ZAF", "QAT",
                                           "MYS", "IND", "ARE", "AUT", "HUN", "CAN", "ARG", "US", "CH"};
  std::vector<_SDatoRiassuntivo> out;
  out.reserve(static_cast<size_t>(n));
  for (unsigned file = firstFile; static_cast<int>(out.size()) < n; ++file) {
    _SDatoRiassuntivo base;
    std::string name = kWords[rng() % 29];
    if (rng() % 2) name += std::string(" ") + kWords[rng() % 29];
    if (rng() % 3 == 0) name += " " + std::to_string(rng() % 100);
    memcpy(base.Name, name.data(), std::min(name.size(), sizeof base.Name));
    const char* country = kCountries[rng() % 27];
    memcpy(base.Country, country, strlen(country));
    if (rng() % 4 == 0) memcpy(base.State, "CA", 2);
    base.RifLat = static_cast<int32_t>(rng() % 1250000000) - 550000000;
    base.RIfLon = static_cast<int32_t>(rng() % 3600000000u - 1800000000u);
    base.Length = static_cast<float>(800 + rng() % 6000);
    snprintf(base.FileName, sizeof base.FileName, "%07x", file);
    base.FileName[7] = 'k';
    base.Date.Valore = (1 + rng() % 11) << 26 | (rng() % 12) << 22 | rng() % (1u << 22);
    const unsigned variants = 1 + rng() % 4;
    for (unsigned v = 0; v < variants && static_cast<int>(out.size()) < n; ++v) {
      _SDatoRiassuntivo r = base;
      r.VariantIdx = static_cast<int16_t>(v);
      r.RifLat += static_cast<int32_t>(v * 1000);
      r.Guid.Valore = static_cast<uint64_t>(base.Date.Valore) << 16 | (rng() & 0xFFFF);
      r.OffsetFw = 280 + 800 * v;
      out.push_back(r);
      if (rng() % 100 == 0 && static_cast<int>(out.size()) < n) out.push_back(r);
    }
  }
  return out;
}

struct Fixture {
  std::string dir;
  std::vector<_SDatoRiassuntivo> a, b;  // the other side: dates changed, tracks gone and new
  std::vector<std::string> names;       // 1,000 file names of a

  Fixture() {
    dir = bench::Cartella();
    std::mt19937 rng(9);
    a = Realistic(rng, kFull, 0);
    for (const _SDatoRiassuntivo& r : a) {
      if (rng() % 50 == 0) continue;
      b.push_back(r);
      if (rng() % 20 == 0) b.back().Date.Valore += 1;
    }
    const std::vector<_SDatoRiassuntivo> fresh = Realistic(rng, kFull - static_cast<int>(b.size()), 1u << 24);
    b.insert(b.end(), fresh.begin(), fresh.end());
    for (int i = 0; i < 1000; ++i) names.push_back(a[rng() % a.size()].GetNomeFile());
  }
  // A summary of the first n records of a side.
  std::unique_ptr<CFileRiassuntivo> Summary(const std::vector<_SDatoRiassuntivo>& side, int64_t n) const {
    std::unique_ptr<CFileRiassuntivo> s(new CFileRiassuntivo);
    for (int64_t i = 0; i < n; ++i) s->Lista().push_back(new _SDatoRiassuntivo(side[static_cast<size_t>(i)]));
    return s;
  }
};

Fixture& Get() {
  static Fixture f;
  return f;
}

struct SetOrders {
  const char* name;
  rs::Ordine o1, o2, o3;
  bool (IFileRiassuntivo::*op)(const std::string&, const std::string&, const std::string&);
};
const SetOrders kSets[] = {
    {"SenzaNazione", rs::Ordine::AlfabeticoSenzaNazione, rs::Ordine::LatLon, rs::Ordine::Guid,
     &IFileRiassuntivo::CreaFileAlfabSortedSenzaNazione},
    {"ConNazione", rs::Ordine::AlfabeticoConNazione, rs::Ordine::LatLon, rs::Ordine::Guid,
     &IFileRiassuntivo::CreaFileAlfabSortedConNazione},
    {"LatLon", rs::Ordine::LatLon, rs::Ordine::AlfabeticoSenzaNazione, rs::Ordine::Guid,
     &IFileRiassuntivo::CreaFileLatLonSorted},
    {"Guid", rs::Ordine::Guid, rs::Ordine::AlfabeticoSenzaNazione, rs::Ordine::LatLon,
     &IFileRiassuntivo::CreaFileGuidSorted},
};

// Sort and cross-indexes, no disk. Args: set, records.
void BM_SortedSetWork(benchmark::State& state) {
  const SetOrders& set = kSets[state.range(0)];
  state.SetLabel(set.name);
  std::unique_ptr<CFileRiassuntivo> s = Get().Summary(Get().a, state.range(1));
  for (auto _ : state)
    benchmark::DoNotOptimize(rs::CalcolaInsieme(s->Lista(), set.o1, set.o2, set.o3, true, true));
}
BENCHMARK(BM_SortedSetWork)->ArgsProduct({{0, 1, 2, 3}, {4096, 8192, kFull}})->Unit(benchmark::kMillisecond);

void BM_SortedSetWorkLiteral(benchmark::State& state) {
  const SetOrders& set = kSets[state.range(0)];
  state.SetLabel(set.name);
  std::unique_ptr<CFileRiassuntivo> s = Get().Summary(Get().a, state.range(1));
  for (auto _ : state) benchmark::DoNotOptimize(literal::SortedSet(s->Lista(), set.o1, set.o2, set.o3));
}
BENCHMARK(BM_SortedSetWorkLiteral)->ArgsProduct({{0, 1, 2, 3}, {4096, 8192}})->Unit(benchmark::kMillisecond);

// The whole operation with its three files, against writing the same bytes.
void BM_SortedSetFiles(benchmark::State& state) {
  const SetOrders& set = kSets[state.range(0)];
  state.SetLabel(set.name);
  std::unique_ptr<CFileRiassuntivo> s = Get().Summary(Get().a, kFull);
  const std::string p = Get().dir + "set";
  for (auto _ : state)
    if (!((*s).*set.op)(p + ".rsm", p + ".i2", p + ".i3")) state.SkipWithError("no set");
}
BENCHMARK(BM_SortedSetFiles)->DenseRange(0, 3)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_SortedSetFilesBare(benchmark::State& state) {
  const std::string p = Get().dir + "bare";
  const std::vector<unsigned char> records(kFull * sizeof(_SDatoRiassuntivo), 1), index(2 * kFull, 2);
  for (auto _ : state)
    if (!WriteDurably(p + ".rsm", records.data(), records.size()) ||
        !WriteDurably(p + ".i2", index.data(), index.size()) ||
        !WriteDurably(p + ".i3", index.data(), index.size()))
      state.SkipWithError("write failed");
}
BENCHMARK(BM_SortedSetFilesBare)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_Confronta(benchmark::State& state) {
  std::unique_ptr<CFileRiassuntivo> a = Get().Summary(Get().a, state.range(0)),
                                    b = Get().Summary(Get().b, state.range(0));
  for (auto _ : state) {
    SConfrontoPiste result;
    a->ConfrontaConAltro(*b, result);
    benchmark::DoNotOptimize(result.PisteUguali.data());
  }
}
BENCHMARK(BM_Confronta)->Arg(4096)->Arg(8192)->Arg(kFull)->Unit(benchmark::kMillisecond);

void BM_ConfrontaLiteral(benchmark::State& state) {
  std::unique_ptr<CFileRiassuntivo> a = Get().Summary(Get().a, state.range(0)),
                                    b = Get().Summary(Get().b, state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(literal::Compare(a->Lista(), b->Lista(), true));
}
BENCHMARK(BM_ConfrontaLiteral)->Arg(4096)->Arg(8192)->Unit(benchmark::kMillisecond);

// DelFileTkk of 1,000 names (the summary is rebuilt outside the timing).
template <bool kLiteral>
void DelFileTkk1000(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    std::unique_ptr<CFileRiassuntivo> s = Get().Summary(Get().a, state.range(0));
    state.ResumeTiming();
    for (const std::string& name : Get().names) {
      if (kLiteral)
        literal::Delete(s->Lista(), name);
      else
        s->DelFileTkk(name);
    }
    const _SDatoRiassuntivo* first = nullptr;
    s->GetDatoRiassuntivo(first, 0);  // ours takes the records out here
    benchmark::DoNotOptimize(first);
    state.PauseTiming();
    s.reset();
    state.ResumeTiming();
  }
}
void BM_DelFileTkk1000(benchmark::State& state) { DelFileTkk1000<false>(state); }
void BM_DelFileTkk1000Literal(benchmark::State& state) { DelFileTkk1000<true>(state); }
BENCHMARK(BM_DelFileTkk1000)->Arg(4096)->Arg(8192)->Arg(kFull)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DelFileTkk1000Literal)->Arg(4096)->Arg(8192)->Unit(benchmark::kMillisecond);

void BM_LeggiRiassuntivo(benchmark::State& state) {
  const std::string p = Get().dir + "read.rsm";
  Get().Summary(Get().a, kFull)->SalvaFileDev(p);
  CFileRiassuntivo s;
  for (auto _ : state) {
    s.LeggiRiassuntivo(p);
    if (s.GetNumRiassuntivi() != kFull) state.SkipWithError("read failed");
  }
}
BENCHMARK(BM_LeggiRiassuntivo)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_SummaryReadBare(benchmark::State& state) {
  const std::string p = Get().dir + "read.rsm";
  Get().Summary(Get().a, kFull)->SalvaFileDev(p);
  for (auto _ : state) {
    std::vector<unsigned char> bytes = ReadWhole(p);
    if (bytes.size() != kFull * sizeof(_SDatoRiassuntivo)) state.SkipWithError("read failed");
    benchmark::DoNotOptimize(bytes.data());
  }
}
BENCHMARK(BM_SummaryReadBare)->UseRealTime()->Unit(benchmark::kMillisecond);

// Queries at the positions of records, 5 km.
void BM_NearestHaversine(benchmark::State& state) {
  std::unique_ptr<CFileRiassuntivo> s = Get().Summary(Get().a, kFull);
  size_t q = 0;
  for (auto _ : state) {
    const _SDatoRiassuntivo& r = Get().a[(q++ * 7919) % kFull];
    std::vector<int> out;
    s->getNearestTracksByHeaversine(r.RifLat / 1e7, r.RIfLon / 1e7, 5000, out);
    benchmark::DoNotOptimize(out.data());
  }
}
BENCHMARK(BM_NearestHaversine)->Unit(benchmark::kMillisecond);

void BM_NearestHaversineLiteral(benchmark::State& state) {
  std::unique_ptr<CFileRiassuntivo> s = Get().Summary(Get().a, kFull);
  size_t q = 0;
  for (auto _ : state) {
    const _SDatoRiassuntivo& r = Get().a[(q++ * 7919) % kFull];
    benchmark::DoNotOptimize(literal::Haversine(s->Lista(), r.RifLat / 1e7, r.RIfLon / 1e7, 5000));
  }
}
BENCHMARK(BM_NearestHaversineLiteral)->Unit(benchmark::kMillisecond);

void BM_NearestPlanar(benchmark::State& state) {
  std::unique_ptr<CFileRiassuntivo> s = Get().Summary(Get().a, kFull);
  size_t q = 0;
  for (auto _ : state) {
    const _SDatoRiassuntivo& r = Get().a[(q++ * 7919) % kFull];
    benchmark::DoNotOptimize(s->GetDatoRiassuntivoNearest(r.RifLat / 1e7, r.RIfLon / 1e7));
  }
}
BENCHMARK(BM_NearestPlanar)->Unit(benchmark::kMillisecond);

}  // namespace
