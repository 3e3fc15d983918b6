// The six lines of each beacon set of a variant.
#include "TrackFileRecords.h"

namespace {

constexpr unsigned int kLineePerSet = 6;

// The set a type addresses, or null; 5 stands for the type in use.
int IndiceSet(const _SInfoBeacons& info, _eTipoBeaconDaUsare type) {
  const int tipo = type == BEACON_IN_USO ? info.TipoBeaconInUso : static_cast<int>(type);
  return tipo >= BEACON_SCRUTINEERING && tipo <= BEACON_USER ? tipo - 1 : -1;
}

}  // namespace

unsigned int _SInfoBeacons::GetLineeSplitLLH(const _SDatoCoordinateBeacon*& lines,
                                             _eTipoBeaconDaUsare type) const {
  const int set = IndiceSet(*this, type);
  if (set < 0) {
    lines = nullptr;
    return 0;
  }
  lines = LineeBeacon[set];
  // The count stops at the first unused entry, whatever follows it.
  unsigned int count = 0;
  while (count < kLineePerSet && lines[count].isUsed()) ++count;
  return count;
}

unsigned int _SInfoBeacons::GetNumeroSplit(_eTipoBeaconDaUsare type) const {
  const _SDatoCoordinateBeacon* lines = nullptr;
  return GetLineeSplitLLH(lines, type);
}

void _SInfoBeacons::SetLineeSplitLLH(unsigned int idx, const _SDatoCoordinateBeacon& line,
                                     _eTipoBeaconDaUsare type) {
  const int set = IndiceSet(*this, type);
  if (set >= 0 && idx < kLineePerSet) LineeBeacon[set][idx] = line;
}

void _SInfoBeacons::ClearLineaSplitLLH(unsigned int idx, _eTipoBeaconDaUsare type) {
  SetLineeSplitLLH(idx, _SDatoCoordinateBeacon(), type);
}

unsigned int _SInfoBeacons::GetLarghezzaPista(_eTipoBeaconDaUsare type) const {
  const int set = IndiceSet(*this, type);
  return set < 0 ? 0 : LineeBeacon[set][0].LarghezzaPista;
}

void _SInfoBeacons::SetLarghezzaPista(unsigned int width, _eTipoBeaconDaUsare type) {
  const int set = IndiceSet(*this, type);
  if (set >= 0) LineeBeacon[set][0].LarghezzaPista = width;
}
