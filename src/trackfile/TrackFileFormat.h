#ifndef VEKTKK_SRC_TRACKFILE_TRACKFILEFORMAT_H
#define VEKTKK_SRC_TRACKFILE_TRACKFILEFORMAT_H

// What reader, writer and tests share about the layout of a track file: the
// tags and their payload sizes. The bytes are described in
// docs/track-file-format.md.

#include <stdint.h>

#include "Coordinate.h"
#include "TrackFileRecords.h"

namespace vektkk {
namespace tkk {

constexpr char kTagFile[] = "Ptkk";       // _STagInfoFileTKK
constexpr char kTagVarianteFw[] = "Vnfo";  // _STagInfoVarianteTKK_fw
constexpr char kTagVarianteSw[] = "V_sw";  // _STagInfoVarianteTKK_sw
constexpr char kTagIndici[] = "Vidx";      // _STagIndexesVarianteTKK, closes a variant
constexpr char kTagPunti[] = "pts";        // shape: _t_s_lla_i each
constexpr char kTagFondi[] = "srfs";       // road surfaces: int32 each
constexpr char kTagLogo[] = "lgo";         // file name, zero byte, image

constexpr uint32_t kSizeFile = sizeof(_STagInfoFileTKK);
constexpr uint32_t kSizeVarianteFw = sizeof(_STagInfoVarianteTKK_fw);
constexpr uint32_t kSizeVarianteSw = sizeof(_STagInfoVarianteTKK_sw);
constexpr uint32_t kSizeIndici = sizeof(_STagIndexesVarianteTKK);
constexpr uint32_t kSizePunto = sizeof(_t_s_lla_i);
constexpr uint32_t kSizeFondo = 4;

static_assert(kSizeFile == 268 && kSizeVarianteFw == 476 && kSizeVarianteSw == 256 &&
                  kSizeIndici == 8 && kSizePunto == 12,
              "record sizes of existing files");

constexpr uint16_t kNessunIndice = 0xFFFF;
constexpr char kEstensione[] = "tkk";
constexpr size_t kLunghezzaNome = 8;

}  // namespace tkk
}  // namespace vektkk

#endif  // VEKTKK_SRC_TRACKFILE_TRACKFILEFORMAT_H
