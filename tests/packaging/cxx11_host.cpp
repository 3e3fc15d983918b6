// Hosts on the loggers may still build with C++11: the public headers must
// compile there without a warning.
#include <vektkk.h>

int cxx11_host_uses_the_headers() {
  _UGuidTkk guid;
  _UDataOraTkk date;
  _t_s_lla_i point = {0, 0, 0};
  return static_cast<int>(guid.Valore + date.Valore) + point.LatI;
}
