// Page layout and page pictures: the `layout` verb, and PNG/BMP/SVG savers for `convert`.
#include <QGuiApplication>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include "cli.h"
#include "json.h"
#include "rendering/draw_document.h"
#include "rendering/page_layout.h"
#include "rendering/qt/qt_surface.h"
#include "score/file_io.h"

namespace plectaro::cli {

namespace {

// Fonts and pictures need a QGuiApplication; the CLI runs without a display.
void ensureGuiApplication() {
  if (QGuiApplication::instance()) return;
  if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  static int argc = 1;
  static char name[] = "plectaro-cli";
  static char* argv[] = {name, nullptr};
  static std::unique_ptr<QGuiApplication> app = std::make_unique<QGuiApplication>(argc, argv);
}

// Tracks count from 1 on the command line, as in every verb.
int trackOption(const Document& doc, const Args& args) {
  const int track = args.intValue("--track", doc.CursorTrack + 1);
  if (track < 1 || track > doc.score.LastTrack() + 1)
    throw InputError("there is no track " + std::to_string(track) + " (the file has tracks 1 to " +
                     std::to_string(doc.score.LastTrack() + 1) + ")");
  return track - 1;
}

LayoutSettings settingsFrom(Document& doc, const Args& args) {
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

int runLayout(Context& ctx, const Args& args) {
  args.expectPositional(1, 1);
  Document doc = LoadDocument(ctx, args.at(0));
  const LayoutSettings settings = settingsFrom(doc, args);
  const int track = trackOption(doc, args);
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
  ensureGuiApplication();
  Document doc = original;  // the layout is written into the copy; the Score is shared
  const LayoutSettings settings = settingsFrom(doc, args);
  const int track = trackOption(doc, args);
  double dpi = 96.1644;
  if (args.has("--dpi")) {
    dpi = args.intValue("--dpi", 96);
    if (dpi < 10 || dpi > 1200) throw UsageError("--dpi must be between 10 and 1200");
  }
  const DrawTexts texts;
  const std::string page = args.value("--page", "1");
  try {
    if (page == "all") {
      DrawResult first = LayoutTrack(doc, track, settings, texts);
      if (!first.Ok) throw InputError(first.Error);
      const std::string stem = (path.parent_path() / path.stem()).string();
      const std::string ext = path.extension().string();
      for (int p = 0; p <= first.LastPage; ++p) {
        const std::filesystem::path out = stem + "-" + std::to_string(p + 1) + ext;
        DrawResult r = SavePageImage(doc, track, p, settings, texts, kind, dpi, out);
        if (!r.Ok) throw InputError(r.Error);
      }
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
    DrawResult r = SavePageImage(doc, track, p - 1, settings, texts, kind, dpi, path);
    if (!r.Ok) throw InputError(r.Error);
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
