// The drawing target of every page view: the editor window, print preview, printing and the
// bitmap/vector exports all draw through this interface, so the drawing code never sees Qt.
//
// Coordinates are page units (one pixel of the document picture at 100%), as doubles so that
// a backend may scale. Colours carry their own alpha. Fonts are named as the Score names them
// ("Arial", "Times New Roman"...); a backend maps them to installed faces with MapFontFamily.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace plectaro {

struct Point {
  double x = 0;
  double y = 0;
  bool operator==(const Point&) const = default;
};

struct Rect {
  double x = 0;
  double y = 0;
  double w = 0;
  double h = 0;
  double right() const { return x + w; }
  double bottom() const { return y + h; }
  bool operator==(const Rect&) const = default;
};

struct Color {
  uint8_t r = 0;
  uint8_t g = 0;
  uint8_t b = 0;
  uint8_t a = 255;
  bool operator==(const Color&) const = default;

  // Colours in the Score and the settings are stored as one number with red in the low byte,
  // green in the next and blue in the third.
  static Color FromStored(int32_t rgb) {
    return Color{static_cast<uint8_t>(rgb & 0xFF), static_cast<uint8_t>((rgb >> 8) & 0xFF),
                 static_cast<uint8_t>((rgb >> 16) & 0xFF), 255};
  }
  int32_t toStored() const { return r | (g << 8) | (b << 16); }
};

constexpr Color kBlack{0, 0, 0, 255};
constexpr Color kWhite{255, 255, 255, 255};

struct Font {
  std::string family = "Arial";  // as stored in the Score; backends map it
  double size = 8;                // points; one point is 96.1644 / 72 page units
  bool bold = false;
  bool italic = false;
  bool underline = false;
  bool strikeout = false;
  bool operator==(const Font&) const = default;
};

struct TextMetrics {
  double width = 0;
  double ascent = 0;
  double descent = 0;
  double height() const { return ascent + descent; }
};

// A vector outline for glyphs that no font is trusted with (slurs, bend arrows, signs).
struct Path {
  enum class Op : uint8_t { Move, Line, Cubic, Close };
  struct Element {
    Op op;
    Point p[3];
    bool operator==(const Element&) const = default;
  };
  std::vector<Element> elements;

  Path& moveTo(Point p) { return add(Op::Move, p); }
  Path& lineTo(Point p) { return add(Op::Line, p); }
  Path& cubicTo(Point c1, Point c2, Point end) {
    elements.push_back({Op::Cubic, {c1, c2, end}});
    return *this;
  }
  Path& close() { return add(Op::Close, {}); }
  bool operator==(const Path&) const = default;

 private:
  Path& add(Op op, Point p) {
    elements.push_back({op, {p, {}, {}}});
    return *this;
  }
};

// A plain 32-bit ARGB picture (chord diagram bitmaps, icons on the page).
struct Image {
  int width = 0;
  int height = 0;
  std::vector<uint32_t> argb;  // width x height, row by row
  bool operator==(const Image&) const = default;
};

class Surface {
 public:
  virtual ~Surface() = default;

  virtual void drawLine(Point a, Point b, Color c, double width = 1) = 0;
  virtual void drawRect(Rect r, Color c, double width = 1) = 0;  // outline only
  virtual void fillRect(Rect r, Color c) = 0;
  virtual void drawEllipse(Rect r, Color c, double width = 1) = 0;
  virtual void fillEllipse(Rect r, Color c) = 0;
  virtual void drawPolyline(std::span<const Point> points, Color c, double width = 1) = 0;
  virtual void fillPolygon(std::span<const Point> points, Color c) = 0;
  virtual void strokePath(const Path& path, Color c, double width = 1) = 0;
  virtual void fillPath(const Path& path, Color c) = 0;
  // Text whose top-left corner is at `topLeft` (the box of measureText, ascent included).
  virtual void drawText(Point topLeft, std::string_view utf8, const Font& font, Color c) = 0;
  virtual TextMetrics measureText(std::string_view utf8, const Font& font) = 0;
  virtual void drawImage(Rect target, const Image& image) = 0;
  virtual void setClip(Rect r) = 0;
  virtual void clearClip() = 0;
};

// Draws nothing: layout walks go through a surface without wanting what it draws. Every text
// measures empty unless a subclass measures it.
class NullSurface : public Surface {
 public:
  void drawLine(Point, Point, Color, double) override {}
  void drawRect(Rect, Color, double) override {}
  void fillRect(Rect, Color) override {}
  void drawEllipse(Rect, Color, double) override {}
  void fillEllipse(Rect, Color) override {}
  void drawPolyline(std::span<const Point>, Color, double) override {}
  void fillPolygon(std::span<const Point>, Color) override {}
  void strokePath(const Path&, Color, double) override {}
  void fillPath(const Path&, Color) override {}
  void drawText(Point, std::string_view, const Font&, Color) override {}
  TextMetrics measureText(std::string_view, const Font&) override { return {}; }
  void drawImage(Rect, const Image&) override {}
  void setClip(Rect) override {}
  void clearClip() override {}
};

// Installed face for a font name stored in a Score or the settings: the Windows names that
// old files carry go to metric-compatible or nearest free faces; other names pass through.
std::string MapFontFamily(std::string_view storedName);

// Page units per point: a US inch is 96.1644 units and 72 points.
constexpr double kUnitsPerPoint = 96.1644 / 72.0;

}  // namespace plectaro
