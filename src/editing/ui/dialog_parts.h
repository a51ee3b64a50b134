// Small pieces the editing dialogs share.
#pragma once

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QStringList>

#include "editing/selection.h"
#include "score/score_records.h"

namespace plectaro {

// OK and Cancel, named as the program's other dialogs name them, wired to accept and reject.
inline QDialogButtonBox* okCancel(QDialog* d) {
  auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, d);
  box->button(QDialogButtonBox::Ok)->setObjectName("cmdOK");
  box->button(QDialogButtonBox::Cancel)->setObjectName("cmdCancel");
  QObject::connect(box, &QDialogButtonBox::accepted, d, &QDialog::accept);
  QObject::connect(box, &QDialogButtonBox::rejected, d, &QDialog::reject);
  return box;
}

// The tracks as lists show them: the name, or "Track n" for a track without one.
inline QStringList trackNames(const Score& s) {
  QStringList names;
  for (size_t t = 0; t < s.Tracks.size(); ++t) {
    const std::string& n = s.Tracks[t].Name;
    names << (n.empty() ? QString("Track %1").arg(t + 1) : QString::fromStdString(n));
  }
  return names;
}

// The selection as a dialog names its range: "bars 3 to 6", "bar 3", "beats 2 to 4 of bar 3".
inline QString selectionText(const SelectedRange& r) {
  if (!r.wholeBars) {
    if (r.firstBeat == r.lastBeat) return QString("beat %1 of bar %2").arg(r.firstBeat + 1).arg(r.firstBar + 1);
    return QString("beats %1 to %2 of bar %3").arg(r.firstBeat + 1).arg(r.lastBeat + 1).arg(r.firstBar + 1);
  }
  if (r.firstBar == r.lastBar) return QString("bar %1").arg(r.firstBar + 1);
  return QString("bars %1 to %2").arg(r.firstBar + 1).arg(r.lastBar + 1);
}

}  // namespace plectaro
