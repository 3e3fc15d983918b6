// A minimal host: makes a file name, decodes it, and checks the round trip
// through the plain functions. Exits 0 when everything agrees.
#include <stdio.h>
#include <string.h>

#include <vektkk.h>

int main() {
  const std::string name = IGuidNomeFile::GetNomeFile(true, false);
  tm when;
  memset(&when, 0, sizeof when);
  bool isVek = false, isDev = true;
  if (!IGuidNomeFile::GetDaNomeFile(name, when, isVek, isDev) || !isVek || isDev) return 1;

  unsigned char value[8] = {0};
  char back[9];
  if (!tkkGetGuidFromNomeFile(value, name.c_str())) return 2;
  tkkGetNomeFileFromGuid(back, value);
  if (name != back) return 3;
  printf("host linked against the installed library: %s\n", back);
  return 0;
}
