#include "Report.h"

#include <stdio.h>

#include <sstream>

#include "Identifiers.h"
#include "TrackReader.h"

namespace tkk {

using nlohmann::json;

namespace {

json Keyed(int key, const std::string& text) { return {{"key", key}, {"text", text}}; }

json Point(const GeoPoint& p) { return {{"lat", p.lat}, {"lon", p.lon}, {"alt", p.alt}}; }

json BeaconSets(IVarianteTkk& variant, const IFileTkk& track) {
  json sets = json::array();
  for (int t = BEACON_SCRUTINEERING; t <= BEACON_USER; ++t) {
    const auto type = static_cast<_eTipoBeaconDaUsare>(t);
    const _SDatoCoordinateBeacon* lines = nullptr;
    const unsigned int used = variant.GetLineeSplitLLH(lines, type);
    std::string text;
    track.GetStrBeaconType(text, type);
    json set = {{"type", Keyed(t, text)}, {"widthM", lines ? lines[0].LarghezzaPista : 0u}};
    set["lines"] = json::array();
    for (unsigned int i = 0; i < used; ++i) {
      set["lines"].push_back(Point(ToGeo(lines[i].LatI, lines[i].LonI, lines[i].AltI)));
    }
    sets.push_back(set);
  }
  return sets;
}

json DescribeVariant(IVarianteTkk& variant, const IFileTkk& track, size_t index) {
  const STagsInfoVariante& record = *variant.GetTagInfo();
  const _STagInfoVarianteTKK_fw& fw = record.InfoFw;
  std::string beaconText;
  track.GetStrBeaconType(beaconText, static_cast<_eTipoBeaconDaUsare>(fw.InfoBeacons.TipoBeaconInUso));
  int hours = 0;
  int minutes = 0;
  variant.GetTrackTimeZone(hours, minutes);
  return {
      {"index", index},
      {"track", variant.GetNomePista()},
      {"device", variant.GetNomeXDevice()},
      // The view answers codes only with additional texts: read the record.
      {"nation", FixedText(fw.NationCode, sizeof fw.NationCode)},
      {"state", FixedText(fw.SubNationCode, sizeof fw.SubNationCode)},
      {"type", Keyed(variant.GetTrackTypeCircuitKey(), variant.OttieniStringaxTrackTypeCircuitKey())},
      {"surface", Keyed(variant.GetFondoStradaleKey(), variant.OttieniStringaxFondoStradaleKey())},
      {"length", {{"metres", variant.GetTrackLenght()},
                  {"key", static_cast<unsigned>(variant.GetTrackLenghtKey())},
                  {"text", variant.OttieniStringaxLunghezzaKey()}}},
      {"timeZone", {{"hours", hours}, {"minutes", minutes}, {"known", hours != 50}}},
      {"reference", Point(ToGeo(fw.LatRif, fw.LonRif, fw.AltRif))},
      {"beaconTypeInUse", Keyed(fw.InfoBeacons.TipoBeaconInUso, beaconText)},
      {"beaconSets", BeaconSets(variant, track)},
      {"guid", DescribeGuid(fw.Guid)},
      {"shapePoints", record.Punti ? record.Punti->Punti.size() : 0u},
  };
}

std::string WhyNotGood(IFileTkk& track) {
  if (track.IsVekTrack() && track.IsDevTrack()) return "a maker's track cannot be a development track";
  const auto& variants = track.GetTagsInfoVarianti();
  for (size_t i = 0; i < variants.size(); ++i) {
    const int type = variants[i]->InfoFw.InfoBeacons.TipoBeaconInUso;
    if (type < 1 || type > 4) {
      return "variant " + std::to_string(i) + " uses beacon type " + std::to_string(type) +
             ", not 1 to 4";
    }
  }
  return "the file did not read";
}

json Check(const char* name, bool passed, const std::string& message) {
  return {{"check", name}, {"passed", passed}, {"message", message}};
}

}  // namespace

json DescribeTrack(IFileTkk& track, const std::string& path, const std::vector<LogoEntry>& logos) {
  json info = {{"file", path},
               {"fileName", DescribeFileName(path)},
               {"site", track.GetNamexSito()},
               {"good", track.IsGood()},
               {"maker", track.IsVekTrack()},
               {"development", track.IsDevTrack()}};
  info["variants"] = json::array();
  const auto& views = track.GetVariantiTrack();
  for (size_t i = 0; i < views.size(); ++i) info["variants"].push_back(DescribeVariant(*views[i], track, i));
  info["logos"] = json::array();
  for (const LogoEntry& logo : logos) {
    info["logos"].push_back({{"name", logo.name}, {"bytes", logo.bytes}});
  }
  return info;
}

json CheckTrack(IFileTkk& track, const std::string& path) {
  json checks = json::array();
  const bool good = track.IsGood();
  checks.push_back(Check("record", good, good ? "" : WhyNotGood(track)));
  if (track.GetTagsInfoVarianti().empty()) {
    checks.push_back(Check("variants", false, "the track has no variant"));
  } else {
    std::string msg;
    const bool near = track.BaricentroCoerente(msg);
    checks.push_back(Check("lines near reference point", near, msg));
    msg.clear();
    const bool coherent = track.AreCoherentBeacons(msg);
    checks.push_back(Check("US lines in western hemisphere", coherent, msg));
    msg.clear();
    if (track.IsVekTrack()) {
      const bool suits = track.IsVekTrackWithCorrectBeaconType(msg);
      checks.push_back(Check("beacon type suits circuit", suits, msg));
    } else {
      checks.push_back(Check("beacon type suits circuit", true, "not applicable: a user's track"));
    }
  }
  bool passed = true;
  for (const json& c : checks) passed = passed && c["passed"].get<bool>();
  return {{"file", path}, {"passed", passed}, {"checks", checks}};
}

namespace {

std::string Fixed(double value, int decimals) {
  char text[64];
  snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

std::string PointText(const json& p) {
  return Fixed(p["lat"].get<double>(), 7) + ", " + Fixed(p["lon"].get<double>(), 7);
}

std::string Flags(const json& decoded) {
  return std::string(decoded["maker"].get<bool>() ? "maker's track" : "user's track") +
         (decoded["development"].get<bool>() ? ", development" : "");
}

std::string TimeZoneText(const json& tz) {
  if (!tz["known"].get<bool>()) return "not determined";
  const int h = tz["hours"].get<int>();
  char text[32];
  snprintf(text, sizeof text, "UTC%+d:%02d", h, tz["minutes"].get<int>());
  return text;
}

}  // namespace

std::string InfoText(const json& info) {
  std::ostringstream out;
  out << "file        " << info["file"].get<std::string>() << "\n";
  const json& name = info["fileName"];
  if (name.is_null()) {
    out << "file name   not a GUID file name\n";
  } else {
    out << "file name   " << name["name"].get<std::string>() << ", made " << name["date"].get<std::string>()
        << ", " << Flags(name) << "\n";
  }
  out << "site        " << info["site"].get<std::string>() << "\n";
  out << "good        " << (info["good"].get<bool>() ? "yes" : "no") << "\n";
  out << "logos       ";
  if (info["logos"].empty()) out << "none";
  for (const json& logo : info["logos"]) {
    out << logo["name"].get<std::string>() << " (" << logo["bytes"].get<size_t>() << " bytes) ";
  }
  out << "\n";
  for (const json& v : info["variants"]) {
    out << "variant " << v["index"].get<size_t>() << "   " << v["track"].get<std::string>()
        << " (device name \"" << v["device"].get<std::string>() << "\")\n";
    out << "  nation    " << v["nation"].get<std::string>() << "  state "
        << v["state"].get<std::string>() << "\n";
    out << "  type      " << v["type"]["text"].get<std::string>() << ", surface "
        << v["surface"]["text"].get<std::string>() << "\n";
    out << "  length    " << Fixed(v["length"]["metres"].get<double>(), 0) << " m, key "
        << v["length"]["text"].get<std::string>() << "\n";
    out << "  time zone " << TimeZoneText(v["timeZone"]) << "\n";
    out << "  reference " << PointText(v["reference"]) << "\n";
    out << "  beacons   " << v["beaconTypeInUse"]["text"].get<std::string>() << " in use\n";
    for (const json& set : v["beaconSets"]) {
      if (set["lines"].empty()) continue;
      out << "    " << set["type"]["text"].get<std::string>() << ", width "
          << set["widthM"].get<unsigned>() << ":";
      for (const json& line : set["lines"]) out << "  (" << PointText(line) << ")";
      out << "\n";
    }
    out << "  guid      " << v["guid"]["guid"].get<std::string>() << ", made "
        << v["guid"]["date"].get<std::string>() << ", " << Flags(v["guid"]) << "\n";
    out << "  shape     " << v["shapePoints"].get<size_t>() << " points\n";
  }
  return out.str();
}

std::string CheckText(const json& check) {
  std::ostringstream out;
  out << check["file"].get<std::string>() << ": " << (check["passed"].get<bool>() ? "passed" : "FAILED")
      << "\n";
  for (const json& c : check["checks"]) {
    out << "  " << (c["passed"].get<bool>() ? "ok    " : "FAIL  ") << c["check"].get<std::string>();
    const std::string message = c["message"].get<std::string>();
    if (!message.empty()) out << ": " << message;
    out << "\n";
  }
  return out.str();
}

}  // namespace tkk
