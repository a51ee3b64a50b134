#include "rendering/qt/qt_surface.h"

#include <QBuffer>
#include <QHash>
#include <QFontMetricsF>
#include <QImage>
#include <QPainterPath>
#include <QSvgGenerator>

#include <cmath>
#include <memory>

#include "rendering/draw_document.h"
#include "rendering/qt/page_export.h"
#include "score/file_io.h"

namespace plectaro {

namespace {

QColor qcolor(Color c) { return QColor(c.r, c.g, c.b, c.a); }
QPointF qpoint(Point p) { return QPointF(p.x, p.y); }
QRectF qrect(Rect r) { return QRectF(r.x, r.y, r.w, r.h); }
QString qstring(std::string_view s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }

QPainterPath qpath(const Path& path) {
  QPainterPath p;
  for (const Path::Element& e : path.elements) {
    switch (e.op) {
      case Path::Op::Move: p.moveTo(qpoint(e.p[0])); break;
      case Path::Op::Line: p.lineTo(qpoint(e.p[0])); break;
      case Path::Op::Cubic: p.cubicTo(qpoint(e.p[0]), qpoint(e.p[1]), qpoint(e.p[2])); break;
      case Path::Op::Close: p.closeSubpath(); break;
    }
  }
  return p;
}

}  // namespace

QtSurface::QtSurface(QPainter& painter, double scale) : painter_(painter), scale_(scale) {
  painter_.save();
  painter_.scale(scale_, scale_);
  painter_.setRenderHint(QPainter::Antialiasing, true);
  painter_.setRenderHint(QPainter::TextAntialiasing, true);
}

QtSurface::~QtSurface() { painter_.restore(); }

// Looking a face up and measuring it costs far more than drawing a number, and the editor
// makes a new surface for every paint; so faces and their metrics are kept for the life of
// the program, keyed by what the Score asks for.
struct QtSurface::FontEntry {
  QFont font;
  QFontMetricsF metrics;
};

const QtSurface::FontEntry& QtSurface::entry(const Font& font) {
  static QHash<QString, std::shared_ptr<FontEntry>> cache;
  const QString key = qstring(font.family) + QLatin1Char('|') + QString::number(font.size) +
                      QLatin1Char('|') + QString::number(font.bold) + QString::number(font.italic) +
                      QString::number(font.underline) + QString::number(font.strikeout);
  auto it = cache.find(key);
  if (it != cache.end()) return **it;
  QFont f(qstring(MapFontFamily(font.family)));
  // Sizes are points of a 96.1644-unit inch; the painter works in page units.
  f.setPixelSize(std::max(1, static_cast<int>(std::lround(font.size * kUnitsPerPoint))));
  f.setBold(font.bold);
  f.setItalic(font.italic);
  f.setUnderline(font.underline);
  f.setStrikeOut(font.strikeout);
  f.setHintingPreference(QFont::PreferNoHinting);
  auto e = std::make_shared<FontEntry>(FontEntry{f, QFontMetricsF(f)});
  cache.insert(key, e);
  return *e;
}

QFont QtSurface::qfont(const Font& font) { return entry(font).font; }

void QtSurface::drawLine(Point a, Point b, Color c, double width) {
  painter_.setPen(QPen(qcolor(c), width, Qt::SolidLine, Qt::FlatCap));
  painter_.drawLine(qpoint(a), qpoint(b));
}

void QtSurface::drawRect(Rect r, Color c, double width) {
  painter_.setPen(QPen(qcolor(c), width));
  painter_.setBrush(Qt::NoBrush);
  painter_.drawRect(qrect(r));
}

void QtSurface::fillRect(Rect r, Color c) { painter_.fillRect(qrect(r), qcolor(c)); }

void QtSurface::drawEllipse(Rect r, Color c, double width) {
  painter_.setPen(QPen(qcolor(c), width));
  painter_.setBrush(Qt::NoBrush);
  painter_.drawEllipse(qrect(r));
}

void QtSurface::fillEllipse(Rect r, Color c) {
  painter_.setPen(Qt::NoPen);
  painter_.setBrush(qcolor(c));
  painter_.drawEllipse(qrect(r));
}

void QtSurface::drawPolyline(std::span<const Point> points, Color c, double width) {
  QPolygonF poly;
  poly.reserve(static_cast<qsizetype>(points.size()));
  for (const Point& p : points) poly << qpoint(p);
  painter_.setPen(QPen(qcolor(c), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter_.drawPolyline(poly);
}

void QtSurface::fillPolygon(std::span<const Point> points, Color c) {
  QPolygonF poly;
  for (const Point& p : points) poly << qpoint(p);
  painter_.setPen(Qt::NoPen);
  painter_.setBrush(qcolor(c));
  painter_.drawPolygon(poly);
}

void QtSurface::strokePath(const Path& path, Color c, double width) {
  painter_.setPen(QPen(qcolor(c), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter_.setBrush(Qt::NoBrush);
  painter_.drawPath(qpath(path));
}

void QtSurface::fillPath(const Path& path, Color c) { painter_.fillPath(qpath(path), qcolor(c)); }

void QtSurface::drawText(Point topLeft, std::string_view utf8, const Font& font, Color c) {
  const FontEntry& e = entry(font);
  painter_.setFont(e.font);
  painter_.setPen(qcolor(c));
  painter_.drawText(QPointF(topLeft.x, topLeft.y + e.metrics.ascent()), qstring(utf8));
}

TextMetrics QtSurface::measureText(std::string_view utf8, const Font& font) {
  const QFontMetricsF& m = entry(font).metrics;
  return TextMetrics{m.horizontalAdvance(qstring(utf8)), m.ascent(), m.descent()};
}

void QtSurface::drawImage(Rect target, const Image& image) {
  if (image.width <= 0 || image.height <= 0 ||
      image.argb.size() < static_cast<size_t>(image.width) * static_cast<size_t>(image.height))
    return;
  const QImage img(reinterpret_cast<const uchar*>(image.argb.data()), image.width, image.height,
                   image.width * 4, QImage::Format_ARGB32);
  painter_.drawImage(qrect(target), img);
}

void QtSurface::setClip(Rect r) { painter_.setClipRect(qrect(r)); }
void QtSurface::clearClip() { painter_.setClipping(false); }

DrawResult SavePageImage(Document& doc, int track, int page, const LayoutSettings& settings,
                         const DrawTexts& texts, PageImageKind kind, double dpi,
                         const std::filesystem::path& path) {
  QByteArray bytes;
  DrawResult result;
  if (kind == PageImageKind::Svg) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QSvgGenerator svg;
    svg.setOutputDevice(&buffer);
    svg.setSize(QSize(settings.PageWidth, settings.PageHeight));
    svg.setViewBox(QRect(0, 0, settings.PageWidth, settings.PageHeight));
    svg.setResolution(96);
    svg.setTitle(QString::fromUtf8(doc.score.Title.c_str()));
    QPainter painter;
    if (!painter.begin(&svg)) throw FileError("Cannot start the SVG drawing for " + path.string());
    {
      QtSurface surface(painter, 1.0);
      result = RenderPage(doc, track, page, settings, texts, surface);
    }
    painter.end();
  } else {
    result = LayoutTrack(doc, track, settings, texts);
    if (!result.Ok) return result;
    if (page < 0 || page > result.LastPage) {
      result.Ok = false;
      result.Error = "Page " + std::to_string(page + 1) + " does not exist: the track has " +
                     std::to_string(result.LastPage + 1) + " page(s)";
      return result;
    }
    SavePageImages(doc, track, {page}, settings, texts, kind, dpi, [&](int) { return path; });
    return result;
  }
  if (result.Ok) WriteFileAtomically(path, std::string(bytes.constData(), static_cast<size_t>(bytes.size())));
  return result;
}

}  // namespace plectaro
