// Surface over a QPainter: the editor's widget paints through it, and so do the exports
// (QImage for PNG/BMP, QSvgGenerator for SVG, QPdfWriter/QPrinter for paper).
#pragma once

#include <QFont>
#include <QPainter>

#include <filesystem>
#include <string>

#include "rendering/draw_document.h"
#include "rendering/surface.h"

namespace plectaro {

class QtSurface : public Surface {
 public:
  // The painter must stay active for the life of the surface. `scale` maps page units to
  // device pixels (1 for the screen at 100%, dpi / 96.1644 for exports).
  explicit QtSurface(QPainter& painter, double scale = 1.0);
  ~QtSurface() override;

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

  QFont qfont(const Font& font);

 private:
  struct FontEntry;
  const FontEntry& entry(const Font& font);

  QPainter& painter_;
  double scale_;
};

enum class PageImageKind { Png, Bmp, Svg };

// Renders one page of a Track to a file: PNG and BMP at `dpi` (96.1644 is one pixel per page
// unit), SVG in page units. Returns the draw result; throws FileError when the file cannot be
// written (the old file is kept: the bytes go through WriteFileAtomically).
DrawResult SavePageImage(Document& doc, int track, int page, const LayoutSettings& settings,
                         const DrawTexts& texts, PageImageKind kind, double dpi,
                         const std::filesystem::path& path);

}  // namespace plectaro
