// Page layout and page pictures: the `layout` verb, and PNG/BMP/SVG savers for `convert`
// (tracks and pages from 1).
#include <QGuiApplication>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include "cli.h"
#include "json.h"
#include "rendering/draw_document.h"
#include "rendering/page_layout.h"
#include "rendering/qt/page_export.h"
#include "rendering/qt/qt_surface.h"
#include "verbs_rendering.h"
#include "score/file_io.h"

namespace plectaro::cli {

// Fonts and pictures need a QGuiApplication; the CLI runs without a display.
void EnsureGuiApplication() {
  if (QGuiApplication::instance()) return;
  if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  static int argc = 1;
  static char name[] = "plectaro-cli";
  static char* argv[] = {name, nullptr};
  static std::unique_ptr<QGuiApplication> app = std::make_unique<QGuiApplication>(argc, argv);
}

// Tracks count from 1 on the command line, as in every verb.
int PageTrackOption(const Document& doc, const Args& args) {
  const int tracks = doc.score.LastTrack() + 1;
  const int track = args.intValue("--track", doc.CursorTrack + 1);
  if (track < 1 || track > tracks)
    throw InputError("--track " + std::to_string(track) + ": the song has tracks 1 to " + std::to_string(tracks));
  return track - 1;
}

namespace {

// OUT.png with page p (0-based) as OUT-1.png, OUT-2.png...
std::filesystem::path numberedPath(const std::filesystem::path& path, int page) {
  return (path.parent_path() / path.stem()).string() + "-" + std::to_string(page + 1) + path.extension().string();
}

}  // namespace

LayoutSettings PageSettingsFrom(Document& doc, const Args& args) {
  LayoutSettings s;
  if (args.has("--paper") || args.has("--landscape")) {
    s.PaperSizeIndex = static_cast<int16_t>(args.intValue("--paper", 0));
    if (s.PaperSizeIndex < 0 || s.PaperSizeIndex >= static_cast<int>(kPaperSizeNames.size()))
      throw UsageError("--paper takes a list index from 0 to " + std::to_string(kPaperSizeNames.size() - 1));
    s.Landscape = args.has("--landscape");
    ApplyPaperSize(s);
  }
  if (args.has("--row-spacing")) {
    const int r = args.intValue("--row-spacing", doc.score.RowSpacing);
    if (r < -32768 || r > 32767) throw UsageError("--row-spacing must fit a 16-bit number");
    doc.score.RowSpacing = static_cast<int16_t>(r);
  }
  return s;
}

namespace {

int runLayout(Context& ctx, const Args& args) {
  args.expectPositional(1, 1);
  Document doc = LoadDocument(ctx, args.at(0));
  const LayoutSettings settings = PageSettingsFrom(doc, args);
  const int track = PageTrackOption(doc, args);
  const DrawTexts texts;
  DrawResult r = LayoutTrack(doc, track, settings, texts);
  if (!r.Ok) throw InputError(r.Error);
  RowLayout rows(doc, track, settings);
  const std::vector<BarLayout>& bars = doc.Layout[static_cast<size_t>(track)];
  if (!args.has("--json")) {
    ctx.out << "page " << settings.PageWidth << " x " << settings.PageHeight << ", row height "
            << rows.rowHeight() << ", " << rows.RowsPerPage() << " rows a page, " << r.Rows.size()
            << " rows, " << r.LastPage + 1 << " page(s)\n";
    for (const RowChoice& row : r.Rows)
      ctx.out << "bars " << row.first + 1 << "-" << row.last + 1 << " spacing " << row.spacing << "\n";
    return 0;
  }
  Json j(ctx.out);
  j.beginObject();
  j.field("pageWidth", int{settings.PageWidth}).field("pageHeight", int{settings.PageHeight});
  j.field("rowHeight", int{rows.rowHeight()}).field("rowsPerPage", int{rows.RowsPerPage()});
  j.field("lastPage", r.LastPage);
  j.key("firstBarOfPage").beginArray();
  for (int p = 0; p <= r.LastPage; ++p) j.value(int{rows.FirstBarOfPage(p)});
  j.endArray();
  j.key("rows").beginArray();
  for (const RowChoice& row : r.Rows)
    j.beginObject().field("first", row.first).field("last", row.last).field("spacing", int{row.spacing}).endObject();
  j.endArray();
  j.key("bars").beginArray();
  for (const BarLayout& b : bars) {
    j.beginObject();
    j.field("drawX", int{b.DrawX}).field("drawY", static_cast<int>(b.DrawY)).field("drawWidth", int{b.DrawWidth});
    j.field("showsSignature", b.ShowsSignature).field("beatSpacing", int{b.BeatSpacing});
    j.field("layoutOrdinal", int{b.LayoutOrdinal});
    j.endObject();
  }
  j.endArray();
  j.endObject();
  ctx.out << "\n";
  return 0;
}

void savePage(Context&, const Document& original, const std::filesystem::path& path, const Args& args,
              PageImageKind kind) {
  EnsureGuiApplication();
  Document doc = original;  // the layout is written into the copy; the Score is shared
  const LayoutSettings settings = PageSettingsFrom(doc, args);
  const int track = PageTrackOption(doc, args);
  double dpi = 96.1644;
  if (args.has("--dpi")) {
    dpi = args.intValue("--dpi", 96);
    if (dpi < 10 || dpi > 1200) throw UsageError("--dpi must be between 10 and 1200");
  }
  const DrawTexts texts;
  const std::string page = args.value("--page", "1");
  try {
    if (page == "all") {
      if (kind == PageImageKind::Svg) {
        DrawResult first = LayoutTrack(doc, track, settings, texts);
        if (!first.Ok) throw InputError(first.Error);
        for (int p = 0; p <= first.LastPage; ++p) {
          DrawResult r = SavePageImage(doc, track, p, settings, texts, kind, dpi, numberedPath(path, p));
          if (!r.Ok) throw InputError(r.Error);
        }
        return;
      }
      SavePageImages(doc, track, {}, settings, texts, kind, dpi, [&](int p) { return numberedPath(path, p); });
      return;
    }
    int p = 0;
    try {
      size_t used = 0;
      p = std::stoi(page, &used);
      if (used != page.size()) throw std::invalid_argument(page);
    } catch (const std::exception&) {
      throw UsageError("--page takes a page number from 1 or \"all\"");
    }
    // Pages count from 1 on the command line, like tracks and bars.
    if (p < 1) throw InputError("there is no page " + page + "; pages count from 1");
    if (kind == PageImageKind::Svg) {
      DrawResult r = SavePageImage(doc, track, p - 1, settings, texts, kind, dpi, path);
      if (!r.Ok) throw InputError(r.Error);
      return;
    }
    SavePageImages(doc, track, {p - 1}, settings, texts, kind, dpi, [&](int) { return path; });
  } catch (const FileError& e) {
    throw InputError(e.what());
  }
}

void savePng(Context& c, const Document& d, const std::filesystem::path& p, const Args& a) { savePage(c, d, p, a, PageImageKind::Png); }
void saveBmp(Context& c, const Document& d, const std::filesystem::path& p, const Args& a) { savePage(c, d, p, a, PageImageKind::Bmp); }
void saveSvg(Context& c, const Document& d, const std::filesystem::path& p, const Args& a) { savePage(c, d, p, a, PageImageKind::Svg); }

const Registrar pngSaver(".png", Saver(savePng));
const Registrar bmpSaver(".bmp", Saver(saveBmp));
const Registrar svgSaver(".svg", Saver(saveSvg));

const Registrar verbLayout(Verb{"layout",
                                "layout FILE [--track N] [--paper I] [--landscape] [--row-spacing R] [--json]",
                                {"--track", "--paper", "--row-spacing"},
                                {"--landscape", "--json"},
                                runLayout});

}  // namespace

}  // namespace plectaro::cli
