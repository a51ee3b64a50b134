// Reads arbitrary music text and draws a track of it: the page layout and the drawing
// must never crash, hang or overflow on values a file can hold, and a failed pass must leave
// the Score as it was.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "rendering/draw_document.h"
#include "rendering/recording_surface.h"
#include "score/file_io.h"
#include "score/music_file.h"

namespace {

// Measures text as the recording surface does, so layouts match the tests', but keeps no calls:
// a page of a dense score is thousands of recorded calls, each a few allocations, and storing
// them cost a third of every run without reaching any code of ours.
class DiscardingSurface final : public plectaro::NullSurface {
 public:
  plectaro::TextMetrics measureText(std::string_view utf8, const plectaro::Font& font) override {
    return measure_.measureText(utf8, font);
  }

 private:
  plectaro::RecordingSurface measure_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace plectaro;
  std::string_view plain(reinterpret_cast<const char*>(data), size);
  Document doc;
  try {
    if (ReadMusicText(plain, doc.score, nullptr, kFuzzAllowance) == ReadOutcome::WrongFile) return 0;
  } catch (const FileError&) {
    return 0;
  }
  // Huge documents are legal but make each run slow without finding anything new.
  for (const Track& t : doc.score.Tracks)
    if (t.Bars.size() > 400) return 0;
  if (doc.score.Tracks.empty()) return 0;
  const Score before = doc.score;
  // One track a run, picked by the input itself: a mutation that changes the length reaches
  // another track, and each run costs a third of drawing them all.
  const int t = static_cast<int>(size % static_cast<size_t>(doc.score.LastTrack() + 1));
  doc.CursorTrack = static_cast<int16_t>(t);
  DiscardingSurface surface;
  ViewState view;
  DrawDocument(doc, LayoutSettings{}, view, DrawTexts{}, surface);
  view.VScroll = 40;
  doc.FullRelayout = false;
  DrawDocument(doc, LayoutSettings{}, view, DrawTexts{}, surface);
  RenderPage(doc, t, 1, LayoutSettings{}, DrawTexts{}, surface);
  if (!(doc.score == before)) __builtin_trap();
  return 0;
}
