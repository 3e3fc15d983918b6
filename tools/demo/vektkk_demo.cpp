// Makes a track GUID and a track file name the way a logger does when it
// records a new circuit, and reads both back.
#include <stdio.h>
#include <time.h>

#include <vektkk.h>

namespace {

void PrintTime(const tm& t) {
  printf("%04d-%02d-%02d %02d:%02d:%02d UTC", t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour,
         t.tm_min, t.tm_sec);
}

}  // namespace

int main() {
  const bool isVek = false;  // a user's track, not one of the maker's
  const bool isDev = false;

  const _UGuidTkk guid = IGuidTkk::GetGuidTkk(isVek, isDev);
  tm when = {};
  bool vek = false;
  bool dev = false;
  IGuidTkk::GetDaGuidTkk(guid, when, vek, dev);
  printf("track GUID  %016llx  made ", static_cast<unsigned long long>(guid.Valore));
  PrintTime(when);
  printf("  maker's type: %s  development: %s\n", vek ? "yes" : "no", dev ? "yes" : "no");

  const std::string name = IGuidNomeFile::GetNomeFile(isVek, isDev);
  tm fileWhen = {};
  if (!IGuidNomeFile::GetDaNomeFile(name + ".tkk", fileWhen, vek, dev)) {
    printf("file name %s.tkk does not decode\n", name.c_str());
    return 1;
  }
  printf("file name   %s.tkk  made ", name.c_str());
  PrintTime(fileWhen);
  printf("  maker's type: %s  development: %s\n", vek ? "yes" : "no", dev ? "yes" : "no");

  unsigned char back[8] = {0};
  tkkGetGuidFromNomeFile(back, name.c_str());
  char again[9];
  tkkGetNomeFileFromGuid(again, back);
  printf("round trip  %s -> %s\n", name.c_str(), again);
  return 0;
}
