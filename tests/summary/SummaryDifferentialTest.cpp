// The fast cross-index, sorted sets, deletion, comparison and searches
// against the algorithms taken literally, on random summaries with
// duplicates and null entries.
#include <gtest/gtest.h>

#include <random>

#include "summary/LiteralSummary.h"
#include "summary/SummaryTestUtil.h"

using namespace sumtest;
namespace rs = vektkk::riassunto;

namespace {

// A random summary drawn from a small pool, so that file names, keys and
// whole records repeat; some entries are null.
Lista RandomList(std::mt19937& rng, size_t n, bool nulls) {
  std::vector<_SDatoRiassuntivo> pool(1 + rng() % 40);
  const char* names[] = {"Monza", "Imola", "", "\xC3\x89tretat", "Monza Junior", "AAAAAAAAAAAAAAAAAAAAAAAAAAAA"};
  const char* countries[] = {"", "ITA", "FRA", "ITAL"};
  for (_SDatoRiassuntivo& r : pool) {
    const std::string file = "f000000" + std::to_string(rng() % 10);
    const int32_t spot = static_cast<int32_t>(rng() % 5) * 100000000 - 200000000;
    r = Rec(names[rng() % 6], countries[rng() % 4], spot + static_cast<int32_t>(rng() % 20000),
            spot / 2 + static_cast<int32_t>(rng() % 20000), rng() % 4 * 0x100000000ull + rng() % 3, file.c_str(),
            (static_cast<uint32_t>(rng() % 4) * 5u << 26) + static_cast<uint32_t>(rng() % 2));
    r.Dummy[0] = static_cast<unsigned char>(rng() % 2);
    if (rng() % 3 == 0) memcpy(r.State, "ABCD", 4);  // strings running on into the latitude
  }
  Lista list;
  for (size_t i = 0; i < n; ++i)
    list.push_back(nulls && rng() % 10 == 0 ? nullptr : new _SDatoRiassuntivo(pool[rng() % pool.size()]));
  return list;
}

TEST(SummaryDifferential, AgainstTheLiteralAlgorithms) {
  std::mt19937 rng(2026);
  for (int round = 0; round < 200; ++round) {
    CFileRiassuntivo here, there;
    here.Lista() = RandomList(rng, rng() % 120, round % 2 == 0);
    there.Lista() = RandomList(rng, rng() % 120, round % 2 == 0);
    Lista& h = here.Lista();
    EXPECT_EQ(rs::IndiciIncrociati(h, there.Lista()), literal::CrossIndex(h, there.Lista()));
    for (const rs::Ordine o : {rs::Ordine::AlfabeticoConNazione, rs::Ordine::AlfabeticoSenzaNazione,
                               rs::Ordine::LatLon, rs::Ordine::Guid}) {
      const std::vector<uint32_t> order = rs::Ordina(h, o);
      for (size_t i = 1; i < order.size(); ++i) {  // sorted, stable, null entries last
        const _SDatoRiassuntivo *p = h[order[i - 1]], *q = h[order[i]];
        if (p == nullptr || q == nullptr) {
          EXPECT_EQ(q, nullptr);
        } else {
          EXPECT_FALSE(rs::Precede(o, *q, *p));
          EXPECT_TRUE(rs::Precede(o, *p, *q) || order[i - 1] < order[i]);
        }
      }
      const rs::Ordine other = o == rs::Ordine::LatLon ? rs::Ordine::Guid : rs::Ordine::LatLon;
      const rs::InsiemeOrdinato set = rs::CalcolaInsieme(h, o, other, rs::Ordine::AlfabeticoSenzaNazione, true, true);
      Lista second, third;
      for (uint32_t p : rs::Ordina(h, other)) second.push_back(h[p]);
      for (uint32_t p : rs::Ordina(h, rs::Ordine::AlfabeticoSenzaNazione)) third.push_back(h[p]);
      EXPECT_EQ(set.Indice2, literal::CrossIndex(set.Primario, second));
      EXPECT_EQ(set.Indice3, literal::CrossIndex(set.Primario, third));
    }
    SConfrontoPiste basic;
    SConfrontoPisteEsteso ext;
    here.ConfrontaConAltro(there, basic);
    here.ConfrontaConAltroEsteso(there, ext);
    for (bool year : {true, false}) {
      Pairs want = literal::Compare(h, there.Lista(), year);
      std::stable_sort(want.begin(), want.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
      EXPECT_EQ(year ? Flat(basic) : Flat(ext), want);
    }
    for (int q = 0; q < 5; ++q) {
      const _SDatoRiassuntivo* at = h.empty() ? nullptr : h[rng() % h.size()];
      const double lat = at != nullptr ? at->RifLat / 1e7 + static_cast<double>(rng() % 3) * 1e-4 : 0.5;
      const double lon = at != nullptr ? at->RIfLon / 1e7 : 0.5;
      const int maxDist = static_cast<int>(rng() % 4000) - 100;
      std::vector<int> out;
      here.getNearestTracksByHeaversine(lat, lon, maxDist, out);
      EXPECT_EQ(out, literal::Haversine(h, lat, lon, maxDist));
    }
    Lista copy;
    for (const _SDatoRiassuntivo* r : h) copy.push_back(r != nullptr ? new _SDatoRiassuntivo(*r) : nullptr);
    for (int d = 0; d < 3; ++d) {  // removals in a row, applied together
      const std::string name = rng() % 5 == 0 ? "x" : "f000000" + std::to_string(rng() % 10);
      literal::Delete(copy, name);
      EXPECT_EQ(here.DelFileTkk(name), static_cast<int>(copy.size()));
      EXPECT_FALSE(here.IsThisFileTkkHere(name));
    }
    const Lista& left = here.Lista();  // the removals are applied here
    ASSERT_EQ(left.size(), copy.size());
    for (size_t i = 0; i < left.size(); ++i) {
      EXPECT_TRUE(left[i] == copy[i] || (left[i] && copy[i] && literal::Same(left[i], copy[i])));
      delete copy[i];
    }
  }
}

TEST(SummaryDifferential, PositionsWrapAt65536) {
  Lista b;
  for (uint32_t i = 0; i < 70000; ++i) b.push_back(new _SDatoRiassuntivo(Rec("", "", static_cast<int32_t>(i))));
  _SDatoRiassuntivo absent = Rec("absent");
  EXPECT_EQ(rs::IndiciIncrociati({b[65540], &absent, b[65535], b[3]}, b), (std::vector<uint16_t>{4, 0xFFFF, 0xFFFF, 3}));
  for (_SDatoRiassuntivo* r : b) delete r;
}

}  // namespace
