#include "Export.h"

namespace tkk {

std::vector<ExportedVariant> ExportModel(IFileTkk& track) {
  std::vector<ExportedVariant> variants;
  const auto& views = track.GetVariantiTrack();
  for (size_t i = 0; i < views.size(); ++i) {
    IVarianteTkk& view = *views[i];
    const _STagInfoVarianteTKK_fw& fw = view.GetTagInfo()->InfoFw;
    ExportedVariant v;
    v.index = i;
    v.site = track.GetNamexSito();
    v.track = view.GetNomePista();
    v.device = view.GetNomeXDevice();
    v.nation = FixedText(fw.NationCode, sizeof fw.NationCode);
    v.state = FixedText(fw.SubNationCode, sizeof fw.SubNationCode);
    v.type = view.OttieniStringaxTrackTypeCircuitKey();
    v.lengthM = view.GetTrackLenght();
    v.geometry = GeometryOf(view);
    for (const BeaconLine& line : v.geometry.lines) {
      v.lineSegments.push_back(CrossLine(v.geometry.outline, line.at, line.widthM));
    }
    variants.push_back(std::move(v));
  }
  return variants;
}

std::string VariantLabel(const ExportedVariant& v) {
  if (!v.track.empty()) return v.track;
  return v.device.empty() ? v.site : v.device;
}

std::string ExportTrack(IFileTkk& track, ExportFormat format) {
  const std::vector<ExportedVariant> variants = ExportModel(track);
  switch (format) {
    case ExportFormat::kGeoJson: return ExportGeoJson(variants);
    case ExportFormat::kGpx: return ExportGpx(variants);
    case ExportFormat::kKml: return ExportKml(variants);
  }
  return std::string();
}

}  // namespace tkk
