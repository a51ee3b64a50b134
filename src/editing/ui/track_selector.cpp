#include "editing/ui/track_selector.h"

#include <QSignalBlocker>

namespace plectaro {

TrackSelector::TrackSelector(EditContext& ctx, QWidget* parent) : QComboBox(parent), ctx_(ctx) {
  setObjectName("cboTrack");
  setSizeAdjustPolicy(QComboBox::AdjustToContents);
  setFocusPolicy(Qt::NoFocus);  // the keys stay with the document
  connect(this, &QComboBox::activated, this, [this](int t) {
    if (t < 0 || t > ctx_.doc.score.LastTrack() || t == ctx_.doc.CursorTrack) return;
    RunCursorMove(ctx_, [this, t] {
      ctx_.doc.CursorTrack = static_cast<int16_t>(t);
      ctx_.doc.FullRelayout = true;
    });
  });
  refresh();
}

void TrackSelector::refresh() {
  const Score& s = ctx_.doc.score;
  QStringList names;
  for (size_t t = 0; t < s.Tracks.size(); ++t)
    names << QString("%1. %2").arg(t + 1).arg(QString::fromStdString(s.Tracks[t].Name));
  const QSignalBlocker quiet(this);
  if (names != shown_) {
    clear();
    addItems(names);
    shown_ = names;
  }
  setCurrentIndex(ctx_.doc.CursorTrack);
}

}  // namespace plectaro
