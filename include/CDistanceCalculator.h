#ifndef VEKTKK_CDISTANCECALCULATOR_H
#define VEKTKK_CDISTANCECALCULATOR_H

#include "TrackFileEnums.h"
#include "VekTkkExport.h"

// Maps a length in metres to the standard length key below it.
class VEKTKK_API CDistanceCalculator {
 public:
  virtual ~CDistanceCalculator();

  // The largest standard key strictly below the length (a floor, not the
  // nearest key). 0 for a length of 0 or less; 23, the size of the key
  // table, for a length above 0 and up to 80.4672 m, where only the table's
  // 0 is below: stored lengths depend on this value as it is.
  static unsigned int GetLunghezzaFrazionaria(const double& metres);
};

#endif  // VEKTKK_CDISTANCECALCULATOR_H
