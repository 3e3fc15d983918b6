// Standard track lengths: setting key and length together, and the key for
// a length in metres.
#include <set>

#include "CDistanceCalculator.h"
#include "TrackFileRecords.h"

namespace {

// The keys in the order the table has always listed them (0 first); only
// the values matter, they are used as an ordered set.
const unsigned int kChiavi[] = {
    0,        804672,   1609344,  1788160,  2011680,  2299063,  2682240,  3218689,
    4023361,  5364481,  8046722,  4828033,  6035041,  12070083, 6437378,  5029201,
    10058403, 9656067,  11040103, 11265411, 12874756, 16093445, 32186890};
constexpr unsigned int kNumeroChiavi = sizeof kChiavi / sizeof kChiavi[0];  // 23

const std::set<unsigned int>& Chiavi() {
  static const std::set<unsigned int> chiavi(kChiavi, kChiavi + kNumeroChiavi);
  return chiavi;
}

// A key is in units of 0.1 mm.
constexpr double kDecimiDiMillimetroPerMetro = 10000.0;
constexpr unsigned int kDecimiDiMillimetroPerMetroInt = 10000;

}  // namespace

CDistanceCalculator::~CDistanceCalculator() = default;

unsigned int CDistanceCalculator::GetLunghezzaFrazionaria(const double& metres) {
  const double scaled = metres * kDecimiDiMillimetroPerMetro;
  // Truncated to 32 bits: a negative length counts as 0.
  const unsigned int x = scaled <= 0.0 ? 0u
                         : scaled >= 4294967295.0 ? 0xFFFFFFFFu
                                                  : static_cast<unsigned int>(scaled);
  const std::set<unsigned int>& chiavi = Chiavi();
  for (auto it = chiavi.rbegin(); it != chiavi.rend(); ++it) {
    if (*it < x) return *it == 0 ? kNumeroChiavi : *it;
  }
  return 0;
}

void _STagInfoVarianteTKK_fw::ImpostaLunghezzaPista(const _eTipoLunghezzaPista* key,
                                                    const float* metres) {
  TipoLunghezza = 0;
  Lunghezza = 0.0f;
  if (key != nullptr && *key != 0 && Chiavi().count(*key) != 0) {
    TipoLunghezza = static_cast<int32_t>(*key);
    // Whole metres only: the fraction is dropped on purpose.
    Lunghezza = static_cast<float>(*key / kDecimiDiMillimetroPerMetroInt);
    return;
  }
  if (metres != nullptr) Lunghezza = *metres;
}
