#include "platform/IAtomTagEncoderBin.h"

#include <string.h>

#include <cstddef>
#include <exception>
#include <new>

#include "AtomTagFormat.h"
#include "AtomTagPieces.h"

namespace {

using vekatomtag::kSizeFooter;
using vekatomtag::kSizeHeader;
using vekatomtag::kSizeTag;
using vekatomtag::PutLe32;

class AtomTagEncoderBin final : public IAtomTagEncoderBin, public vekatomtag::AtomTagPieces {
 public:
  bool append(std::vector<unsigned char>& out, const std::string& tag, const void* payload,
              uint32_t size, int flag) override;
};

bool AtomTagEncoderBin::append(std::vector<unsigned char>& out, const std::string& tag,
                               const void* payload, uint32_t size, int /*flag*/) {
  if (tag.size() > kSizeTag) return false;
  if (payload == nullptr && size != 0) return false;

  unsigned char header[kSizeHeader] = {0};
  memcpy(header, tag.data(), tag.size());
  PutLe32(header + kSizeTag, size);
  const auto* bytes = static_cast<const unsigned char*>(payload);
  unsigned char footer[kSizeFooter];
  PutLe32(footer, vekatomtag::AtomCrc(header, bytes, size));

  // All or nothing: if the vector cannot grow, it is cut back to where it was.
  const size_t before = out.size();
  try {
    out.insert(out.end(), header, header + kSizeHeader);
    if (size > 0) out.insert(out.end(), bytes, bytes + size);
    out.insert(out.end(), footer, footer + kSizeFooter);
  } catch (const std::exception&) {
    out.erase(out.begin() + static_cast<std::ptrdiff_t>(before), out.end());
    return false;
  }
  return true;
}

}  // namespace

IAtomTagEncoderBin* IAtomTagEncoderBin::CreateMe() {
  return new (std::nothrow) AtomTagEncoderBin();
}

IAtomTagEncoderBin::~IAtomTagEncoderBin() = default;
