// picDocument: the scrollable picture of the current Track's pages. It paints through the page
// drawing code; the scroll ranges and steps come from the page layout of each draw.
#pragma once

#include <QAbstractScrollArea>
#include <cstdint>
#include <cstdint>
#include <functional>
#include <string>

#include "score/document.h"
#include "shell/ini_settings.h"

namespace plectaro {

struct ViewStatus {
  std::string BeatCount;  // timing panel
  std::string Fill;       // fill panel
  int FillState = 1;      // 0 under, 1 full, 2 over
  std::string Pages;      // page count panel
  std::string Error;      // a draw that gave up says why
};

class DocumentView : public QAbstractScrollArea {
  Q_OBJECT
 public:
  DocumentView(Document& doc, const IniSettings& ini, QWidget* parent = nullptr);

  // The texts the pages show (page furniture, fill words), in the interface language.
  void setTexts(std::function<std::string(std::string_view)> str) { str_ = std::move(str); }
  // Where the editor plugs in: a key (true when it was used; otherwise the view scrolls with
  // it) and a mouse press at a point of the picture.
  std::function<bool(QKeyEvent*)> onKey;
  std::function<void(QMouseEvent*)> onMousePress;
  // The pitch the notation entry cursor stands on, or -1 while the cursor is on the tab.
  std::function<int()> notationLine;

  // The paper of the page setup (a paper list index and the orientation); A4 upright until set.
  void setPaper(int16_t paperSizeIndex, bool landscape) {
    paperSizeIndex_ = paperSizeIndex;
    landscape_ = landscape;
  }

  // The zoom of the picture, 0.5 to 4 (1 is one page unit to one pixel). It scales the
  // painting itself, so lines and text stay sharp at any size and on a high-density screen;
  // printing and the exports never see it. Also readable as the view's "zoom" property, which
  // the editor's mouse handling uses to turn pixels back into page units.
  double zoom() const { return zoom_; }
  void setZoom(double zoom);
  static constexpr double kMinZoom = 0.5;
  static constexpr double kMaxZoom = 4.0;

  // DrawDocument: lays out as the document's flags ask and repaints now.
  void drawDocument();
  // Back to the first page, e.g. after another document was opened.
  void resetScroll();

 signals:
  void drawn(const plectaro::ViewStatus& status);
  void firstPainted();
  void zoomChanged(double zoom);

 protected:
  void paintEvent(QPaintEvent*) override;
  void resizeEvent(QResizeEvent*) override;
  void scrollContentsBy(int dx, int dy) override;
  void keyPressEvent(QKeyEvent* e) override;
  void mousePressEvent(QMouseEvent* e) override;
  void wheelEvent(QWheelEvent* e) override;

 private:
  Document& doc_;
  const IniSettings& ini_;
  std::function<std::string(std::string_view)> str_;
  int16_t paperSizeIndex_ = 0;
  bool landscape_ = false;
  bool painted_ = false;
  bool inPaint_ = false;
  double zoom_ = 1.0;
  double wheelZoomRest_ = 0;
  ViewStatus last_;

  void applyScroll(int vMax, int vPage, int vStep, int hMax, bool hEnabled);
};

}  // namespace plectaro
