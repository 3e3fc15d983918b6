#include "Render.h"

#include <math.h>

#include <algorithm>

#include "BadInput.h"
#include "Projection.h"
#include "XmlText.h"

namespace tkk {

namespace {

constexpr double kWidth = 800.0;
constexpr double kHeight = 800.0;
constexpr double kMapTop = 90.0;     // below the title
constexpr double kMapBottom = 720.0;  // above the legend
constexpr double kMargin = 50.0;
constexpr double kMinLineLength = 30.0;  // pixels: a 12 m line is a dot at circuit scale

// Metres of the projection to pixels of the picture, north up.
class Canvas {
 public:
  Canvas(const std::vector<XY>& points) {
    double minX = 0, maxX = 0, minY = 0, maxY = 0;
    for (size_t i = 0; i < points.size(); ++i) {
      minX = i ? std::min(minX, points[i].x) : points[i].x;
      maxX = i ? std::max(maxX, points[i].x) : points[i].x;
      minY = i ? std::min(minY, points[i].y) : points[i].y;
      maxY = i ? std::max(maxY, points[i].y) : points[i].y;
    }
    const double w = std::max(maxX - minX, 1.0);
    const double h = std::max(maxY - minY, 1.0);
    scale_ = std::min((kWidth - 2 * kMargin) / w, (kMapBottom - kMapTop - 2 * kMargin) / h);
    midX_ = (minX + maxX) / 2;
    midY_ = (minY + maxY) / 2;
  }
  double X(const XY& p) const { return kWidth / 2 + (p.x - midX_) * scale_; }
  double Y(const XY& p) const { return (kMapTop + kMapBottom) / 2 - (p.y - midY_) * scale_; }
  double PixelsPerMetre() const { return scale_; }

 private:
  double scale_ = 1.0;
  double midX_ = 0.0;
  double midY_ = 0.0;
};

pugi::xml_node Element(pugi::xml_node parent, const char* name,
                       std::initializer_list<std::pair<const char*, std::string>> attributes) {
  pugi::xml_node node = parent.append_child(name);
  for (const auto& a : attributes) node.append_attribute(a.first) = a.second.c_str();
  return node;
}

std::string Px(double value) { return Decimal(value, 1); }

void Label(pugi::xml_node svg, double x, double y, const std::string& text, const char* size,
           const char* weight = "normal", const char* anchor = "start") {
  Element(svg, "text", {{"x", Px(x)}, {"y", Px(y)}, {"font-size", size}, {"font-weight", weight},
                        {"text-anchor", anchor}})
      .text()
      .set(text.c_str());
}

void DrawLine(pugi::xml_node svg, const Canvas& canvas, const AzimuthalEquidistant& proj,
              const Segment& s, const GeoPoint& at, const char* colour, const std::string& name) {
  const XY a = proj.Project(s.a);
  const XY b = proj.Project(s.b);
  const XY c = proj.Project(at);
  double dx = canvas.X(b) - canvas.X(a);
  double dy = canvas.Y(b) - canvas.Y(a);
  const double length = std::max(hypot(dx, dy), 1e-9);
  const double half = std::max(length, kMinLineLength) / 2;
  dx = dx / length * half;
  dy = dy / length * half;
  const double cx = canvas.X(c);
  const double cy = canvas.Y(c);
  Element(svg, "line", {{"x1", Px(cx - dx)}, {"y1", Px(cy - dy)}, {"x2", Px(cx + dx)},
                        {"y2", Px(cy + dy)}, {"stroke", colour}, {"stroke-width", "5"},
                        {"stroke-linecap", "round"}});
  Label(svg, cx + dx + 4, cy + dy + 4, name, "14", "bold");
}

// Arrows along the outline at equal distances, pointing the way cars go.
void DrawArrows(pugi::xml_node svg, const Canvas& canvas, const std::vector<XY>& path) {
  std::vector<double> along(1, 0.0);
  for (size_t i = 1; i <= path.size(); ++i) {
    const XY& a = path[i - 1];
    const XY& b = path[i % path.size()];
    along.push_back(along.back() + hypot(b.x - a.x, b.y - a.y));
  }
  const int arrows = 6;
  for (int k = 1; k <= arrows; ++k) {
    const double target = along.back() * (k - 0.5) / arrows;
    size_t i = 0;
    while (i + 1 < along.size() && along[i + 1] < target) ++i;
    const XY& a = path[i];
    const XY& b = path[(i + 1) % path.size()];
    const double angle =
        atan2(canvas.Y(b) - canvas.Y(a), canvas.X(b) - canvas.X(a)) * 180.0 / M_PI;
    const double t = along[i + 1] > along[i] ? (target - along[i]) / (along[i + 1] - along[i]) : 0;
    const XY at{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
    Element(svg, "polygon", {{"points", "-9,-7 9,0 -9,7"}, {"fill", "#f0a000"},
                             {"stroke", "#ffffff"}, {"stroke-width", "1"},
                             {"transform", "translate(" + Px(canvas.X(at)) + "," + Px(canvas.Y(at)) +
                                               ") rotate(" + Decimal(angle, 1) + ")"}});
  }
}

void DrawScaleBar(pugi::xml_node svg, const Canvas& canvas) {
  const double metres = ScaleBarLength(200.0 / canvas.PixelsPerMetre());
  const double px = metres * canvas.PixelsPerMetre();
  const double y = kMapBottom + 10;
  Element(svg, "path", {{"d", "M40," + Px(y - 6) + " V" + Px(y) + " H" + Px(40 + px) + " V" + Px(y - 6)},
                        {"fill", "none"}, {"stroke", "#333333"}, {"stroke-width", "2"}});
  Label(svg, 40 + px + 8, y, metres >= 1000 ? Decimal(metres / 1000, 0) + " km" : Decimal(metres, 0) + " m",
        "13");
}

}  // namespace

std::string MapViewBox() {
  return "0 " + Px(kMapTop) + " " + Px(kWidth) + " " + Px(kMapBottom - kMapTop);
}

double ScaleBarLength(double metres) {
  if (!(metres > 0)) return 1.0;
  const double power = pow(10.0, floor(log10(metres)));
  for (double step : {5.0, 2.0, 1.0}) {
    if (step * power <= metres) return step * power;
  }
  return power;
}

std::string RenderSvg(IFileTkk& track, size_t variant) {
  const std::vector<ExportedVariant> variants = ExportModel(track);
  if (variant >= variants.size()) {
    throw BadInput("no variant " + std::to_string(variant) + ": the track has " +
                   std::to_string(variants.size()));
  }
  return RenderSvg(variants[variant]);
}

std::string RenderSvg(const ExportedVariant& v) {
  const std::vector<GeoPoint>& outline = v.geometry.outline;
  if (outline.size() < 2) throw BadInput("variant " + std::to_string(v.index) + " has no outline to draw");
  const AzimuthalEquidistant proj(v.geometry.reference);
  std::vector<XY> path;
  for (const GeoPoint& p : outline) path.push_back(proj.Project(p));
  const Canvas canvas(path);

  pugi::xml_document doc;
  pugi::xml_node svg = Element(doc, "svg", {{"xmlns", "http://www.w3.org/2000/svg"},
                                            {"width", Px(kWidth)}, {"height", Px(kHeight)},
                                            {"viewBox", "0 0 " + Px(kWidth) + " " + Px(kHeight)},
                                            {"font-family", "DejaVu Sans, Arial, sans-serif"}});
  const std::string title = v.track.empty() || v.track == v.site ? v.site : v.site + " – " + v.track;
  AddText(svg, "title", title);
  // The background in units, not percent, so that a view of part of the
  // picture (a thumbnail's viewBox) is still covered.
  Element(svg, "rect", {{"width", Px(kWidth)}, {"height", Px(kHeight)}, {"fill", "#f6f5ef"}});

  std::string d;
  for (size_t i = 0; i < path.size(); ++i) d += (i ? " L" : "M") + Px(canvas.X(path[i])) + "," + Px(canvas.Y(path[i]));
  d += " Z";
  Element(svg, "path", {{"d", d}, {"fill", "none"}, {"stroke", "#3a3a3a"}, {"stroke-width", "9"},
                        {"stroke-linejoin", "round"}});
  Element(svg, "path", {{"d", d}, {"fill", "none"}, {"stroke", "#ffffff"}, {"stroke-width", "1.5"},
                        {"stroke-dasharray", "6 6"}});
  DrawArrows(svg, canvas, path);
  for (size_t i = 0; i < v.lineSegments.size(); ++i) {
    DrawLine(svg, canvas, proj, v.lineSegments[i], v.geometry.lines[i].at, i == 0 ? "#d01010" : "#1060d0",
             i == 0 ? "Finish" : "S" + std::to_string(i));
  }

  Label(svg, 40, 48, title, "26", "bold");
  std::string where = v.nation.empty() ? "nation unknown" : v.nation;
  if (!v.state.empty()) where += " / " + v.state;
  Label(svg, 40, 76, where + "  ·  " + Decimal(v.lengthM / 1000.0, 3) + " km  ·  " + v.type, "16");
  Label(svg, kWidth - 40, 48, "N ↑", "18", "bold", "end");
  DrawScaleBar(svg, canvas);
  Label(svg, 40, kHeight - 30,
        "Azimuthal equidistant projection about the reference point " +
            Decimal(v.geometry.reference.lat, 5) + ", " + Decimal(v.geometry.reference.lon, 5),
        "12");
  return XmlText(doc);
}

}  // namespace tkk
