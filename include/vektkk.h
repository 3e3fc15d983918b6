#ifndef VEKTKK_H
#define VEKTKK_H

// The whole public interface of libvektkk: records, identifiers, the plain
// functions and the platform services the library relies on.

#include "VekTkkExport.h"

#include "CDistanceCalculator.h"
#include "CFileTkk.h"
#include "CVarianteTkk.h"
#include "Coordinate.h"
#include "DataOraTkk.h"
#include "GuidNomeFile.h"
#include "GuidTkk.h"
#include "IFileRiassuntivo.h"
#include "IFileTkk.h"
#include "IVarianteTkk.h"
#include "TrackFileEnums.h"
#include "TrackFileRecords.h"
#include "TrackMemoryRecords.h"
#include "tkkFlat.h"

#include "platform/IAtomTagDecoderBin.h"
#include "platform/IAtomTagEncoderBin.h"
#include "platform/IAtomTagPieces.h"
#include "platform/IStrConv.h"
#include "platform/VekEvtContext.h"

#endif  // VEKTKK_H
