/* The plain functions and the event-log globals are usable from C. */
#include <tkkFlat.h>
#include <platform/VekEvtContext.h>

int c99_host_uses_the_flat_functions(void) {
  unsigned char guid[8] = {0};
  char name[9];
  tkkGetNomeFileFromGuid(name, guid);
  return tkkIsTipoVek(0) + (vek_evtcontext == 0);
}
