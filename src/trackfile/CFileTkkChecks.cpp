// Geometric checks of the main variant's beacon lines. Each passes with an
// empty `msg` or fails with a one-line explanation.
#include <math.h>
#include <string.h>

#include <sstream>

#include "CFileTkk.h"
#include "Coordinate.h"
#include "TrackMemoryRecords.h"
#include "foundation/LogEvento.h"
#include "variants/Vocabolari.h"

namespace {

constexpr double kGradiInRadianti = 0.017453292519943295;
constexpr double kRaggioTerrestreMetri = 6372797.560856;
constexpr double kDistanzaMassimaMetri = 1000.0;

// Great-circle distance in metres between two stored positions.
double Haversine(int32_t lat1, int32_t lon1, int32_t lat2, int32_t lon2) {
  const double la1 = ConvertiLatLonADouble(lat1);
  const double lo1 = ConvertiLatLonADouble(lon1);
  const double la2 = ConvertiLatLonADouble(lat2);
  const double lo2 = ConvertiLatLonADouble(lon2);
  const double a = sin((la1 - la2) * kGradiInRadianti * 0.5);
  const double b = sin((lo1 - lo2) * kGradiInRadianti * 0.5);
  return 2.0 * asin(sqrt(a * a + b * b * cos(la1 * kGradiInRadianti) * cos(la2 * kGradiInRadianti))) *
         kRaggioTerrestreMetri;
}

// "lap" for the finish line, "split n.<i>" for the others.
void NomeLinea(std::ostringstream& out, unsigned int i, const char* splitPrefix) {
  if (i == 0)
    out << "lap";
  else
    out << splitPrefix << i;
}

}  // namespace

bool CFileTkk::BaricentroCoerente(std::string& msg) const {
  msg.clear();
  const STagsInfoVariante* main = Main();
  if (main == nullptr) return true;
  const _SDatoCoordinateBeacon* lines = nullptr;
  const unsigned int n = main->InfoFw.InfoBeacons.GetLineeSplitLLH(lines, BEACON_IN_USO);
  for (unsigned int i = 0; i < n; ++i) {
    const double d = Haversine(lines[i].LatI, lines[i].LonI, main->InfoFw.LatRif, main->InfoFw.LonRif);
    if (d > kDistanzaMassimaMetri) {
      std::ostringstream out;
      NomeLinea(out, i, "split n.");
      out << " is far from average point for track " << GetNomeXDevice()
          << " distance = " << static_cast<long long>(d) << " ref distance = " << 1000;
      msg = out.str();
      return false;
    }
  }
  return true;
}

bool CFileTkk::AreCoherentBeacons(std::string& msg) const {
  msg.clear();
  const STagsInfoVariante* main = Main();
  // Any code that starts with these two letters counts as the United States.
  if (main == nullptr || memcmp(main->InfoFw.NationCode, "US", 2) != 0) return true;
  const _SDatoCoordinateBeacon* lines = nullptr;
  const unsigned int n = main->InfoFw.InfoBeacons.GetLineeSplitLLH(lines, BEACON_IN_USO);
  for (unsigned int i = 0; i < n; ++i) {
    if (lines[i].LonI > 0) {
      std::ostringstream out;
      NomeLinea(out, i, "split n.");
      out << " has not coherent coordinate";
      msg = out.str();
      return false;
    }
  }
  return true;
}

bool CFileTkk::AreEqualBeacons(_eTipoBeaconDaUsare type, std::string& msg) const {
  msg.clear();
  const STagsInfoVariante* main = Main();
  if (main == nullptr) return true;
  const _SInfoBeacons& beacons = main->InfoFw.InfoBeacons;
  const _SDatoCoordinateBeacon* l1 = nullptr;
  const _SDatoCoordinateBeacon* l2 = nullptr;
  const unsigned int k1 = beacons.GetLineeSplitLLH(l1, BEACON_IN_USO);
  const unsigned int k2 = beacons.GetLineeSplitLLH(l2, type);
  std::string t1, t2;
  GetStrBeaconType(t1);
  GetStrBeaconType(t2, type);
  std::ostringstream out;
  if (k1 != k2) {
    out << "we have " << k1 << " beacons in set " << t1 << " and " << k2 << " beacons in set " << t2;
    msg = out.str();
    return false;
  }
  for (unsigned int i = 0; i < k1; ++i) {
    // Only the position counts: height and width are not compared.
    if (l1[i].LatI == l2[i].LatI && l1[i].LonI == l2[i].LonI) continue;
    if (i == 0)
      out << "we have  different lap (";
    else
      out << "we have  different split n. " << i << "(";
    out << l1[i].LatI << ";" << l1[i].LonI << ") in set " << t1 << " and coordinates "
        << l2[i].LatI << ";" << l2[i].LonI << " in set " << t2;
    msg = out.str();
    return false;
  }
  return true;
}

bool CFileTkk::IsVekTrackWithCorrectBeaconType(std::string& msg) const {
  const STagsInfoVariante* main = Main();
  if (main == nullptr) return true;
  const int b = main->InfoFw.InfoBeacons.TipoBeaconInUso;
  const int c = main->InfoFw.TipoTracciato;
  if (b < BEACON_MAGNETIC || b > BEACON_IN_USO || (b == BEACON_MAGNETIC && c == TRACCIATO_KART_TRACK))
    return true;
  // Any other beacon type must differ from the scrutineering set; the check
  // fails either way, with a report of which case it was.
  const std::string nome = GetNomeXDevice();
  if (!AreEqualBeacons(BEACON_SCRUTINEERING, msg)) {
    LogEvento(kError.Priorita, kError.Parola, "beacons are different for track %s ", nome.c_str());
    return false;
  }
  LogEvento(kError.Priorita, kError.Parola, "beacons are same for track %s ", nome.c_str());
  std::ostringstream out;
  out << "Track " << nome << " has beacon type " << vektkk::NomeTipoBeacon(b) << " and circuit type "
      << c;
  msg = out.str();
  return false;
}
