#include "rendering/recording_surface.h"

#include <cstdio>
#include <sstream>

namespace plectaro {

namespace {

size_t utf8Length(std::string_view s) {
  size_t n = 0;
  for (unsigned char c : s)
    if ((c & 0xC0) != 0x80) ++n;
  return n;
}

DrawCall call(DrawCall::Kind kind, std::vector<Point> points, Color c, double width = 0) {
  DrawCall d{kind, std::move(points), c, width, {}, {}};
  return d;
}

std::vector<Point> pathPoints(const Path& path) {
  std::vector<Point> pts;
  for (const Path::Element& e : path.elements) {
    if (e.op == Path::Op::Cubic) {
      pts.insert(pts.end(), {e.p[0], e.p[1], e.p[2]});
    } else if (e.op != Path::Op::Close) {
      pts.push_back(e.p[0]);
    }
  }
  return pts;
}

}  // namespace

const char* DrawCallKindName(DrawCall::Kind kind) {
  switch (kind) {
    case DrawCall::Kind::Line: return "line";
    case DrawCall::Kind::Rect: return "rect";
    case DrawCall::Kind::FillRect: return "fillRect";
    case DrawCall::Kind::Ellipse: return "ellipse";
    case DrawCall::Kind::FillEllipse: return "fillEllipse";
    case DrawCall::Kind::Polyline: return "polyline";
    case DrawCall::Kind::FillPolygon: return "fillPolygon";
    case DrawCall::Kind::StrokePath: return "strokePath";
    case DrawCall::Kind::FillPath: return "fillPath";
    case DrawCall::Kind::Text: return "text";
    case DrawCall::Kind::Image: return "image";
    case DrawCall::Kind::Clip: return "clip";
    case DrawCall::Kind::ClearClip: return "clearClip";
  }
  return "?";
}

void RecordingSurface::drawLine(Point a, Point b, Color c, double width) {
  calls_.push_back(call(DrawCall::Kind::Line, {a, b}, c, width));
}
void RecordingSurface::drawRect(Rect r, Color c, double width) {
  calls_.push_back(call(DrawCall::Kind::Rect, {{r.x, r.y}, {r.w, r.h}}, c, width));
}
void RecordingSurface::fillRect(Rect r, Color c) {
  calls_.push_back(call(DrawCall::Kind::FillRect, {{r.x, r.y}, {r.w, r.h}}, c));
}
void RecordingSurface::drawEllipse(Rect r, Color c, double width) {
  calls_.push_back(call(DrawCall::Kind::Ellipse, {{r.x, r.y}, {r.w, r.h}}, c, width));
}
void RecordingSurface::fillEllipse(Rect r, Color c) {
  calls_.push_back(call(DrawCall::Kind::FillEllipse, {{r.x, r.y}, {r.w, r.h}}, c));
}
void RecordingSurface::drawPolyline(std::span<const Point> points, Color c, double width) {
  calls_.push_back(call(DrawCall::Kind::Polyline, {points.begin(), points.end()}, c, width));
}
void RecordingSurface::fillPolygon(std::span<const Point> points, Color c) {
  calls_.push_back(call(DrawCall::Kind::FillPolygon, {points.begin(), points.end()}, c));
}
void RecordingSurface::strokePath(const Path& path, Color c, double width) {
  calls_.push_back(call(DrawCall::Kind::StrokePath, pathPoints(path), c, width));
}
void RecordingSurface::fillPath(const Path& path, Color c) {
  calls_.push_back(call(DrawCall::Kind::FillPath, pathPoints(path), c));
}
void RecordingSurface::drawText(Point topLeft, std::string_view utf8, const Font& font, Color c) {
  DrawCall d = call(DrawCall::Kind::Text, {topLeft}, c);
  d.text = std::string(utf8);
  d.font = font;
  calls_.push_back(std::move(d));
}
TextMetrics RecordingSurface::measureText(std::string_view utf8, const Font& font) {
  // A fixed estimate: average glyph half an em wide; ascent 0.9 em, descent 0.25 em.
  const double em = font.size * kUnitsPerPoint;
  return TextMetrics{0.55 * em * static_cast<double>(utf8Length(utf8)), 0.9 * em, 0.25 * em};
}
void RecordingSurface::drawImage(Rect target, const Image& image) {
  DrawCall d = call(DrawCall::Kind::Image, {{target.x, target.y}, {target.w, target.h}}, kBlack);
  d.text = std::to_string(image.width) + "x" + std::to_string(image.height);
  calls_.push_back(std::move(d));
}
void RecordingSurface::setClip(Rect r) {
  calls_.push_back(call(DrawCall::Kind::Clip, {{r.x, r.y}, {r.w, r.h}}, kBlack));
}
void RecordingSurface::clearClip() { calls_.push_back(call(DrawCall::Kind::ClearClip, {}, kBlack)); }

std::vector<std::string> RecordingSurface::texts() const {
  std::vector<std::string> out;
  for (const DrawCall& c : calls_)
    if (c.kind == DrawCall::Kind::Text) out.push_back(c.text);
  return out;
}

std::vector<DrawCall> RecordingSurface::ofKind(DrawCall::Kind kind) const {
  std::vector<DrawCall> out;
  for (const DrawCall& c : calls_)
    if (c.kind == kind) out.push_back(c);
  return out;
}

std::string RecordingSurface::dump() const {
  std::ostringstream out;
  char buf[64];
  for (const DrawCall& c : calls_) {
    out << DrawCallKindName(c.kind);
    for (const Point& p : c.points) {
      std::snprintf(buf, sizeof buf, " %g,%g", p.x, p.y);
      out << buf;
    }
    std::snprintf(buf, sizeof buf, " #%02x%02x%02x", c.color.r, c.color.g, c.color.b);
    out << buf;
    if (c.kind == DrawCall::Kind::Text) out << " \"" << c.text << "\" " << c.font.family << ' ' << c.font.size;
    out << '\n';
  }
  return out.str();
}

}  // namespace plectaro
