#include "rendering/qt/page_export.h"

#include <QBuffer>
#include <QImage>
#include <QPageSize>
#include <QPdfWriter>

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

#include "score/file_io.h"

namespace plectaro {

namespace {

// PDF coordinates are points; this many device units to the inch keeps every line where
// the layout put it, to well under a hundredth of a page unit.
constexpr int kPdfResolution = 1200;

QString qstring(const std::string& s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }

QPageSize pageSizeOf(const LayoutSettings& settings) {
  const double toPoints = 72.0 / 96.1644;
  return QPageSize(QSizeF(settings.PageWidth * toPoints, settings.PageHeight * toPoints), QPageSize::Point,
                   QString(), QPageSize::ExactMatch);
}

}  // namespace

QByteArray PagesPDFBytes(Document& doc, const std::vector<int>& tracks, const LayoutSettings& settings,
                         const DrawTexts& texts, int* pageCount) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  int written = 0;
  {
    QPdfWriter writer(&buffer);
    writer.setResolution(kPdfResolution);
    writer.setPageSize(pageSizeOf(settings));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer.setTitle(qstring(doc.score.Title));
    writer.setCreator(QStringLiteral("Plectaro 4"));
    QPainter painter;
    if (!painter.begin(&writer)) throw FileError("Cannot start the PDF drawing");
    const double scale = kPdfResolution / 96.1644;
    std::optional<QtSurface> surface;
    for (int track : tracks) {
      DrawResult r = RenderPages(doc, track, settings, texts, [&](int, int) -> Surface* {
        surface.reset();  // the surface restores the painter before the page turns
        if (written > 0) writer.newPage();
        ++written;
        surface.emplace(painter, scale);
        return &*surface;
      });
      surface.reset();
      if (!r.Ok) {
        painter.end();
        throw FileError(r.Error);
      }
    }
    painter.end();
  }
  if (pageCount) *pageCount = written;
  return bytes;
}

int ExportPagesPDF(Document& doc, const std::vector<int>& tracks, const LayoutSettings& settings,
                   const DrawTexts& texts, const std::filesystem::path& path) {
  int pages = 0;
  const QByteArray bytes = PagesPDFBytes(doc, tracks, settings, texts, &pages);
  WriteFileAtomically(path, std::string(bytes.constData(), static_cast<size_t>(bytes.size())));
  return pages;
}

int SavePageImages(Document& doc, int track, const std::vector<int>& pages, const LayoutSettings& settings,
                   const DrawTexts& texts, PageImageKind kind, double dpi,
                   const std::function<std::filesystem::path(int page)>& pathOf) {
  if (!(dpi >= 10 && dpi <= 1200)) throw FileError("The resolution must be between 10 and 1200 dpi");
  const double scale = dpi / 96.1644;
  const int w = static_cast<int>(std::ceil(settings.PageWidth * scale));
  const int h = static_cast<int>(std::ceil(settings.PageHeight * scale));
  if (w <= 0 || h <= 0 || static_cast<long long>(w) * h > 200'000'000LL)
    throw FileError("The page is too large to export as a picture at this resolution");
  const std::set<int> wanted(pages.begin(), pages.end());
  // Every picture is encoded before the first file is written, so that a bad page number
  // or a failed encoding leaves no half set behind.
  std::vector<std::pair<std::filesystem::path, QByteArray>> files;
  QImage image(w, h, QImage::Format_RGB32);
  image.setDotsPerMeterX(static_cast<int>(std::lround(dpi / 0.0254)));
  image.setDotsPerMeterY(static_cast<int>(std::lround(dpi / 0.0254)));
  std::optional<QPainter> painter;
  std::optional<QtSurface> surface;
  int current = -1;
  auto finishPage = [&] {
    if (current < 0) return;
    surface.reset();
    painter.reset();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, kind == PageImageKind::Png ? "PNG" : "BMP"))
      throw FileError("Cannot encode the page picture");
    files.emplace_back(pathOf(current), std::move(bytes));
    current = -1;
  };
  int lastPage = -1;
  DrawResult r = RenderPages(doc, track, settings, texts, [&](int page, int last) -> Surface* {
    lastPage = last;
    finishPage();
    if (!wanted.empty() && !wanted.count(page)) return nullptr;
    image.fill(Qt::white);
    painter.emplace(&image);
    surface.emplace(*painter, scale);
    current = page;
    return &*surface;
  });
  finishPage();
  if (!r.Ok) throw FileError(r.Error);
  if (!wanted.empty() && (*wanted.begin() < 0 || *wanted.rbegin() > lastPage)) {
    const int bad = *wanted.begin() < 0 ? *wanted.begin() : *wanted.rbegin();
    throw FileError("Page " + std::to_string(bad + 1) + " does not exist: the track has " +
                    std::to_string(r.LastPage + 1) + " page(s)");
  }
  for (const auto& [path, bytes] : files)
    WriteFileAtomically(path, std::string(bytes.constData(), static_cast<size_t>(bytes.size())));
  return static_cast<int>(files.size());
}

}  // namespace plectaro
