#include "Identifiers.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "BadInput.h"

namespace tkk {

namespace {

std::string IsoDate(const tm& t) {
  char text[96];
  snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02dZ", t.tm_year + 1900, t.tm_mon + 1,
           t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec);
  return text;
}

std::string BaseName(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

std::string GuidText(const _UGuidTkk& guid) {
  char text[17];
  snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(guid.Valore));
  return text;
}

std::string DateText(const _UDataOraTkk& date) {
  tm when;
  memset(&when, 0, sizeof when);
  IDataOraTkk::GetDaDataOraTkk(date, when);
  return IsoDate(when);
}

nlohmann::json DescribeGuid(const _UGuidTkk& guid) {
  tm when;
  memset(&when, 0, sizeof when);
  bool maker = false;
  bool dev = false;
  IGuidTkk::GetDaGuidTkk(guid, when, maker, dev);
  return {{"guid", GuidText(guid)}, {"date", IsoDate(when)}, {"maker", maker}, {"development", dev}};
}

nlohmann::json DescribeFileName(const std::string& path) {
  const std::string base = BaseName(path);
  tm when;
  memset(&when, 0, sizeof when);
  bool maker = false;
  bool dev = false;
  if (!IGuidNomeFile::GetDaNomeFile(base, when, maker, dev)) return nullptr;
  return {{"name", base.substr(0, 8)}, {"date", IsoDate(when)}, {"maker", maker}, {"development", dev}};
}

nlohmann::json DecodeIdentifier(const std::string& text) {
  if (text.size() == 16 && strspn(text.c_str(), "0123456789abcdefABCDEF") == 16) {
    _UGuidTkk guid;
    guid.Valore = strtoull(text.c_str(), nullptr, 16);
    return DescribeGuid(guid);
  }
  const std::string base = BaseName(text);
  const bool plainName = base.size() == 8 || (base.size() == 12 && base.compare(8, 4, ".tkk") == 0);
  nlohmann::json decoded = plainName ? DescribeFileName(base) : nlohmann::json();
  if (decoded.is_null()) {
    throw BadInput("'" + text + "' is neither a track GUID (16 hex digits) nor a track file name");
  }
  return decoded;
}

nlohmann::json NewIdentifiers(bool maker, bool dev) {
  const _UGuidTkk guid = IGuidTkk::GetGuidTkk(maker, dev);
  return {{"guid", GuidText(guid)}, {"fileName", IGuidNomeFile::GetNomeFile(maker, dev) + ".tkk"}};
}

}  // namespace tkk
