#ifndef VEKTKK_IVARIANTETKK_H
#define VEKTKK_IVARIANTETKK_H

#include <string>

#include "VekTkkExport.h"

struct SLogo;
struct STagsInfoVariante;

// One configuration of a circuit. Hosts built elsewhere call these objects
// through their virtual tables, so the order of the virtual members is part
// of the binary interface: new operations are only ever added in their
// place in that order.
class VEKTKK_API IVarianteTkk {
 public:
  // The variant record behind this view, or null.
  virtual STagsInfoVariante* GetTagInfo() = 0;
  // Always false.
  virtual bool IsTrashed() const = 0;
  // The track is a maker's track (read-only): the same flag as IsVekTrack.
  virtual bool GetTrackIsReadOnly() const = 0;
  // Name of the logo's image file, or null when there is none.
  virtual const std::string* GetTrackLogo() const = 0;
  // The logo record, or null.
  virtual SLogo* GetTrackLogoBuffer() const = 0;
  virtual void SetTrackLogo(const std::string& path) = 0;
  virtual short GetIdxVariante() const = 0;
  virtual bool IsGood() const = 0;
  virtual bool IsVekTrack() const = 0;
  virtual bool IsDevTrack() const = 0;

  virtual ~IVarianteTkk();
};

#endif  // VEKTKK_IVARIANTETKK_H
