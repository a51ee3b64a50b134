// The track selector of the Track toolbar: a list of the song's tracks by number and name;
// choosing one shows that track, as Next and Previous Track do.
#pragma once

#include <QComboBox>

#include "editing/edit_context.h"

namespace plectaro {

class TrackSelector : public QComboBox {
  Q_OBJECT
 public:
  TrackSelector(EditContext& ctx, QWidget* parent = nullptr);
  // Refills the list when tracks came, went or were renamed, and marks the cursor's track;
  // call after every draw.
  void refresh();

 private:
  EditContext& ctx_;
  QStringList shown_;
};

}  // namespace plectaro
