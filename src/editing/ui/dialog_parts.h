// Small pieces the editing dialogs share.
#pragma once

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QStringList>

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

}  // namespace plectaro
