// A Surface that writes down every call, for tests and for dumping what a page draws.
// Text metrics are a fixed estimate (no fonts involved), so recordings are stable anywhere.
#pragma once

#include <string>
#include <vector>

#include "rendering/surface.h"

namespace plectaro {

struct DrawCall {
  enum class Kind : uint8_t {
    Line, Rect, FillRect, Ellipse, FillEllipse, Polyline, FillPolygon, StrokePath, FillPath,
    Text, Image, Clip, ClearClip
  };
  Kind kind;
  std::vector<Point> points;  // line ends, rect corners (x,y),(w,h), polygon points
  Color color;
  double width = 0;
  std::string text;  // Text only
  Font font;         // Text only
  bool operator==(const DrawCall&) const = default;
};

const char* DrawCallKindName(DrawCall::Kind kind);

class RecordingSurface : public Surface {
 public:
  void drawLine(Point a, Point b, Color c, double width) override;
  void drawRect(Rect r, Color c, double width) override;
  void fillRect(Rect r, Color c) override;
  void drawEllipse(Rect r, Color c, double width) override;
  void fillEllipse(Rect r, Color c) override;
  void drawPolyline(std::span<const Point> points, Color c, double width) override;
  void fillPolygon(std::span<const Point> points, Color c) override;
  void strokePath(const Path& path, Color c, double width) override;
  void fillPath(const Path& path, Color c) override;
  void drawText(Point topLeft, std::string_view utf8, const Font& font, Color c) override;
  TextMetrics measureText(std::string_view utf8, const Font& font) override;
  void drawImage(Rect target, const Image& image) override;
  void setClip(Rect r) override;
  void clearClip() override;

  const std::vector<DrawCall>& calls() const { return calls_; }
  void clear() { calls_.clear(); }
  // Texts drawn, in order.
  std::vector<std::string> texts() const;
  // Calls of one kind.
  std::vector<DrawCall> ofKind(DrawCall::Kind kind) const;
  // One call per line, for golden comparisons and debugging.
  std::string dump() const;

 private:
  std::vector<DrawCall> calls_;
};

}  // namespace plectaro
