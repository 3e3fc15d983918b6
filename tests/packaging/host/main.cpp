// A minimal host: makes a file name and reads it back through the plain
// functions. Exits 0 when they agree.
#include <stdio.h>

#include <vektkk.h>

int main() {
  const std::string name = IGuidNomeFile::GetNomeFile(true, false);
  unsigned char value[8] = {0};
  char back[9];
  if (!tkkGetGuidFromNomeFile(value, name.c_str())) return 1;
  tkkGetNomeFileFromGuid(back, value);
  if (name != back) return 2;
  printf("host linked against the installed library: %s\n", back);
  return 0;
}
