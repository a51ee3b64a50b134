#include "exchange/ui/export_windows.h"

#include <QAction>
#include <QApplication>
#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <filesystem>

#include "exchange/text_pdf.h"
#include "rendering/qt/page_export.h"
#include "score/file_io.h"

namespace plectaro {

namespace {

QString q(std::string_view s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }

std::string str(const ExportEnvironment& env, std::string_view key) { return env.text ? env.text(key) : std::string(key); }

// A file choice with a line to type in and a button to browse.
QLineEdit* fileRow(QWidget* parent, QFormLayout* form, const QString& label, const ExportEnvironment& env,
                   const char* title, const char* filter) {
  auto* line = new QLineEdit(parent);
  auto* browse = new QPushButton("...", parent);
  auto* row = new QHBoxLayout;
  row->addWidget(line, 1);
  row->addWidget(browse);
  form->addRow(label, row);
  QObject::connect(browse, &QPushButton::clicked, parent, [line, &env, title, filter] {
    if (auto name = env.prompter.saveFileName(title, filter, line->text().toStdString())) line->setText(q(*name));
  });
  return line;
}

std::vector<int> tracksOf(const Document& doc, bool all) {
  std::vector<int> tracks;
  if (!all) return {doc.CursorTrack};
  for (int t = 0; t <= doc.score.LastTrack(); ++t) tracks.push_back(t);
  return tracks;
}

}  // namespace

int ExportPagesPDFCommand(const ExportEnvironment& env, bool allTracks) {
  auto name = env.prompter.saveFileName("PDF (pages)", "PDF Files|*.pdf|", "");
  if (!name) return 0;
  std::filesystem::path path = *name;
  if (path.extension().empty()) path += ".pdf";
  Document copy = env.doc;  // the window keeps its own layout
  try {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const int pages = ExportPagesPDF(copy, tracksOf(copy, allTracks), env.pageSettings(),
                                     env.text ? DrawTextsFrom(env.text) : DrawTexts{}, path);
    QApplication::restoreOverrideCursor();
    return pages;
  } catch (const FileError& e) {
    QApplication::restoreOverrideCursor();
    env.prompter.message(str(env, "str_CantSave1") + path.string() + str(env, "str_CantSave2") + e.what(),
                         "PDF (pages)", MessageIcon::Critical);
    return 0;
  }
}

WaveExportDialog::WaveExportDialog(ExportEnvironment env, QWidget* parent)
    : QDialog(parent), env_(std::move(env)), stored_(LoadWaveSettings(env_.settings)) {
  setObjectName("ntne_frmExport");
  setWindowTitle(q(str(env_, "str_WAVExport")));
  auto* form = new QFormLayout;
  Text2_ = fileRow(this, form, "File:", env_, "Wave Export", "Wave Files|*.wav|");
  Text2_->setObjectName("Text2");
  Text2_->setText(q(stored_.FileName));
  const int bars = static_cast<int>(env_.doc.score.BarInfos.size());
  wavFromBar_ = new QSpinBox(this);
  wavFromBar_->setObjectName("wavFromBar");
  wavToBar_ = new QSpinBox(this);
  wavToBar_->setObjectName("wavToBar");
  for (QSpinBox* s : {wavFromBar_, wavToBar_}) s->setRange(1, std::max(1, bars));
  wavFromBar_->setValue(1);
  wavToBar_->setValue(std::max(1, bars));
  auto* range = new QHBoxLayout;
  range->addWidget(wavFromBar_);
  range->addWidget(new QLabel("to", this));
  range->addWidget(wavToBar_);
  range->addStretch();
  form->addRow("Bars:", range);

  auto group = [this](const char* title, QBoxLayout* box) {
    auto* g = new QGroupBox(title, this);
    g->setLayout(box);
    return g;
  };
  // Each choice is a group of its own; radio buttons of one parent would otherwise exclude
  // each other across the groups.
  auto radio = [this](const char* name, const QString& text, QBoxLayout* box, QButtonGroup* group) {
    auto* r = new QRadioButton(text, this);
    r->setObjectName(name);
    group->addButton(r);
    box->addWidget(r);
    return r;
  };
  auto* rateBox = new QVBoxLayout;
  auto* rateGroup = new QButtonGroup(this);
  for (int32_t r : kWaveRates) {
    const std::string name = "optRate" + std::to_string(r);
    QRadioButton* b = radio(name.c_str(), QString::number(r) + " Hz", rateBox, rateGroup);
    // The stored default (110025) matches no button, so none is shown until one is picked.
    b->setChecked(r == stored_.Rate);
    rates_.emplace_back(r, b);
  }
  auto* channelBox = new QVBoxLayout;
  auto* channelGroup = new QButtonGroup(this);
  optMono_ = radio("optMono", "Mono", channelBox, channelGroup);
  optStereo_ = radio("optStereo", "Stereo", channelBox, channelGroup);
  (stored_.Channels == 2 ? optStereo_ : optMono_)->setChecked(true);
  auto* bitsBox = new QVBoxLayout;
  auto* bitsGroup = new QButtonGroup(this);
  opt8bits_ = radio("opt8bits", "8 bits", bitsBox, bitsGroup);
  opt16bits_ = radio("opt16bits", "16 bits", bitsBox, bitsGroup);
  (stored_.Bits == 8 ? opt8bits_ : opt16bits_)->setChecked(true);
  auto* options = new QHBoxLayout;
  options->addWidget(group("Samples per second", rateBox));
  options->addWidget(group("Channels", channelBox));
  options->addWidget(group("Resolution", bitsBox));

  picRecordingWav_ = new QProgressBar(this);
  picRecordingWav_->setObjectName("picRecordingWav");
  picRecordingWav_->setRange(0, 1000);
  picRecordingWav_->setVisible(false);
  start_ = new QPushButton("Export", this);
  start_->setObjectName("Command2");
  start_->setDefault(true);
  cancel_ = new QPushButton("Close", this);
  cancel_->setObjectName("cmdCancel");
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(picRecordingWav_, 1);
  buttons->addStretch();
  buttons->addWidget(start_);
  buttons->addWidget(cancel_);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addLayout(options);
  layout->addLayout(buttons);
  connect(start_, &QPushButton::clicked, this, &WaveExportDialog::Command2_Click);
  connect(cancel_, &QPushButton::clicked, this, [this] {
    if (running_) {
      cancelled_ = true;
    } else {
      reject();
    }
  });
}

QRadioButton* WaveExportDialog::rate(int32_t r) const {
  for (const auto& [value, button] : rates_)
    if (value == r) return button;
  return nullptr;
}

WaveSettings WaveExportDialog::chosen() const {
  WaveSettings s = stored_;
  for (const auto& [value, button] : rates_)
    if (button->isChecked()) s.Rate = value;
  s.Channels = optStereo_->isChecked() ? 2 : 1;
  s.Bits = opt8bits_->isChecked() ? 8 : 16;
  s.FileName = Text2_->text().toStdString();
  return s;
}

void WaveExportDialog::Command2_Click() {
  const WaveSettings s = chosen();
  const std::string title = str(env_, "str_WAVExport");
  if (s.FileName.empty()) {
    env_.prompter.message(str(env_, "str_PleaseSelectDestFile"), title, MessageIcon::Information);
    return;
  }
  if (wavFromBar_->value() > wavToBar_->value()) {
    env_.prompter.message(str(env_, "str_ToBarMustBeLess"), title, MessageIcon::Information);
    return;
  }
  SaveWaveSettings(env_.settings, s);
  stored_ = s;
  // A rate the writer cannot take (the stored default among them) stops here, before any work.
  if (!WaveFormatSupported(s.Rate, s.Channels, s.Bits)) {
    env_.prompter.message(str(env_, "str_ErrorInWavExport"), title, MessageIcon::Critical);
    return;
  }
  WaveJob job;
  job.FromBar = wavFromBar_->value() - 1;
  job.ToBar = wavToBar_->value() - 1;
  job.Rate = s.Rate;
  job.Channels = s.Channels;
  job.Bits = s.Bits;
  job.Options = env_.playback ? env_.playback() : PlaybackOptions{};
  job.Options.FollowPlayback = false;
  job.SoundFont = env_.soundFont;
  QElapsedTimer sinceEvents;
  sinceEvents.start();
  job.Progress = [this, &sinceEvents](double done) {
    // A few looks at the window a second keep the bar moving and Cancel alive without
    // slowing the render.
    if (sinceEvents.elapsed() >= 40 || done >= 1.0) {
      picRecordingWav_->setValue(static_cast<int>(done * 1000));
      QApplication::processEvents();
      sinceEvents.restart();
    }
    return !cancelled_;
  };
  running_ = true;
  cancelled_ = false;
  for (QWidget* w : findChildren<QWidget*>())
    if (w != cancel_ && w != picRecordingWav_ && !qobject_cast<QLayout*>(w)) w->setEnabled(false);
  cancel_->setText("Cancel");
  picRecordingWav_->setValue(0);
  picRecordingWav_->setVisible(true);
  std::string failure;
  WaveExportOutcome outcome = WaveExportOutcome::Cancelled;
  try {
    outcome = ExportWave(env_.doc.score, job, s.FileName);
  } catch (const FileError& e) {
    failure = e.what();
  }
  running_ = false;
  for (QWidget* w : findChildren<QWidget*>()) w->setEnabled(true);
  cancel_->setText("Close");
  picRecordingWav_->setVisible(false);
  if (!failure.empty()) {
    env_.prompter.message(str(env_, "str_ErrorInWavExport") + "\n" + failure, title, MessageIcon::Critical);
  } else if (outcome == WaveExportOutcome::Written) {
    env_.prompter.message(str(env_, "str_RecordingSaved") + "\n" + s.FileName, title, MessageIcon::Information);
  }
}

BitmapExportDialog::BitmapExportDialog(ExportEnvironment env, QWidget* parent)
    : QDialog(parent), env_(std::move(env)) {
  setObjectName("frmBitmapExport");
  setWindowTitle(q(str(env_, "str_BMPExport")));
  auto* form = new QFormLayout;
  file_ = fileRow(this, form, "File:", env_, "Bitmap Export", "PNG Pictures|*.png|Bitmaps|*.bmp|");
  current_ = new QRadioButton("The page of the cursor", this);
  all_ = new QRadioButton("All pages (file-1, file-2, ...)", this);
  current_->setChecked(true);
  auto* which = new QVBoxLayout;
  which->addWidget(current_);
  which->addWidget(all_);
  form->addRow("Pages:", which);
  dpi_ = new QSpinBox(this);
  dpi_->setRange(10, 1200);
  dpi_->setValue(150);
  dpi_->setSuffix(" dpi");
  form->addRow("Resolution:", dpi_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &BitmapExportDialog::save);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void BitmapExportDialog::save() {
  const std::string title = str(env_, "str_BMPExport");
  std::filesystem::path path = file_->text().toStdString();
  if (path.empty()) {
    env_.prompter.message(str(env_, "str_PleaseSelectDestFile"), title, MessageIcon::Information);
    return;
  }
  std::string ext = path.extension().string();
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (ext != ".png" && ext != ".bmp") path += ".png";
  const PageImageKind kind = path.extension() == ".bmp" || ext == ".bmp" ? PageImageKind::Bmp : PageImageKind::Png;
  Document copy = env_.doc;
  const LayoutSettings settings = env_.pageSettings();
  const DrawTexts texts = env_.text ? DrawTextsFrom(env_.text) : DrawTexts{};
  try {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const int track = copy.CursorTrack;
    if (all_->isChecked()) {
      SavePageImages(copy, track, {}, settings, texts, kind, dpi_->value(), [&](int p) {
        return (path.parent_path() / path.stem()).string() + "-" + std::to_string(p + 1) + path.extension().string();
      });
    } else {
      const DrawResult r = LayoutTrack(copy, track, settings, texts);
      SavePageImages(copy, track, {r.CursorPage}, settings, texts, kind, dpi_->value(), [&](int) { return path; });
    }
    QApplication::restoreOverrideCursor();
    accept();
  } catch (const FileError& e) {
    QApplication::restoreOverrideCursor();
    env_.prompter.message(str(env_, "str_CantSave1") + path.string() + str(env_, "str_CantSave2") + e.what(), title,
                          MessageIcon::Critical);
  }
}

void ConnectExportMenus(const std::function<QAction*(const QString& name)>& find, QWidget* parent,
                        ExportEnvironment env) {
  auto connectItem = [&](QAction* a, std::function<void()> run) {
    if (!a) return;
    a->setEnabled(true);
    QObject::connect(a, &QAction::triggered, parent, std::move(run));
  };
  // The engraved pages are what most people mean by PDF, so they come first in the menu.
  if (auto* menu = parent->findChild<QMenu*>("mnuFileExport"); menu && !parent->findChild<QAction*>("mnuFileExportPDFPages")) {
    auto* pages = new QMenu("PDF (pages)", menu);
    pages->setObjectName("mnuFileExportPDFPages");
    auto* current = pages->addAction("Current track...");
    current->setObjectName("mnuFileExportPDFPagesTrack");
    auto* all = pages->addAction("All tracks...");
    all->setObjectName("mnuFileExportPDFPagesAll");
    QAction* first = menu->actions().isEmpty() ? nullptr : menu->actions().first();
    menu->insertMenu(first, pages);
    connectItem(current, [env] { ExportPagesPDFCommand(env, false); });
    connectItem(all, [env] { ExportPagesPDFCommand(env, true); });
  }
  connectItem(find("mnuFileExportPDF"), [env] {
    auto name = env.prompter.saveFileName("PDF", "PDF Files|*.pdf|", "");
    if (!name) return;
    std::filesystem::path path = *name;
    if (path.extension().empty()) path += ".pdf";
    try {
      ExportPDF(env.doc.score, env.doc.CursorTrack, env.textOptions ? env.textOptions() : TextExportOptions{}, path);
    } catch (const std::exception& e) {
      env.prompter.message(str(env, "str_CantSave1") + path.string() + str(env, "str_CantSave2") + e.what(), "PDF",
                           MessageIcon::Critical);
    }
  });
  connectItem(find("mnuFileExportWAV"), [env, parent] {
    WaveExportDialog dialog(env, parent);
    dialog.exec();
  });
  connectItem(find("mnuFileExportBMP"), [env, parent] {
    BitmapExportDialog dialog(env, parent);
    dialog.exec();
  });
}

}  // namespace plectaro
