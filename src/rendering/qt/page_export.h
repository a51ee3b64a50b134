// Engraved pages as files: a PDF of one or more Tracks (vector text and lines, fonts
// embedded), and page pictures (PNG/BMP) of any set of pages, each drawn in one layout walk.
#pragma once

#include <filesystem>
#include <functional>
#include <vector>

#include "rendering/draw_document.h"
#include "rendering/qt/qt_surface.h"

namespace plectaro {

// Writes the pages of each Track in `tracks`, one after another, one PDF page per layout
// page, with the title and footer of the screen pages. Returns the number of pages written.
// Throws FileError when a Track cannot be laid out or the file cannot be written (the old
// file stays whole).
int ExportPagesPDF(Document& doc, const std::vector<int>& tracks, const LayoutSettings& settings,
                   const DrawTexts& texts, const std::filesystem::path& path);

// The PDF bytes themselves (what ExportPagesPDF writes), for callers that keep them.
QByteArray PagesPDFBytes(Document& doc, const std::vector<int>& tracks, const LayoutSettings& settings,
                         const DrawTexts& texts, int* pageCount = nullptr);

// Page pictures of a Track at `dpi`: `pages` are 0-based, empty for all pages. `pathOf`
// names the file of each page. Throws FileError for a page beyond the last (nothing is
// written then), a resolution out of 10..1200 dpi, or a file that cannot be written.
// Returns the number of pictures written.
int SavePageImages(Document& doc, int track, const std::vector<int>& pages, const LayoutSettings& settings,
                   const DrawTexts& texts, PageImageKind kind, double dpi,
                   const std::function<std::filesystem::path(int page)>& pathOf);

}  // namespace plectaro
