#include "rendering/ui/print_windows.h"

#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPixmap>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include <cmath>
#include <optional>

#include "rendering/qt/qt_surface.h"

namespace plectaro {

namespace {

QString tr8(const std::string& s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }

QString caption(const PrintEnvironment& env, const char* form, const char* fallback) {
  const std::string t = env.formText ? env.formText(form, "Caption") : std::string();
  return t.empty() ? QString::fromUtf8(fallback) : tr8(t);
}

// Sheets on a QPrinter: the painter opens with the first sheet, so a job with nothing
// selected never reaches the printer.
class PrinterTarget : public PrintTarget {
 public:
  explicit PrinterTarget(QPrinter& printer) : printer_(printer) {}
  ~PrinterTarget() override { finish(); }
  Surface* beginSheet() override {
    surface_.reset();
    if (!painter_.isActive()) {
      if (!painter_.begin(&printer_)) return nullptr;
    } else {
      printer_.newPage();
    }
    surface_.emplace(painter_, printer_.resolution() / 96.1644);
    return &*surface_;
  }
  void finish() override {
    surface_.reset();
    if (painter_.isActive()) painter_.end();
  }

 private:
  QPrinter& printer_;
  QPainter painter_;
  std::optional<QtSurface> surface_;
};

}  // namespace

PrintResult PrintOnPrinter(const PrintEnvironment& env, const std::vector<bool>& selected, int copies,
                           QPrinter& printer) {
  const LayoutSettings settings = env.pageSettings();
  const double toPoints = 72.0 / 96.1644;
  printer.setPageSize(QPageSize(QSizeF(settings.PageWidth * toPoints, settings.PageHeight * toPoints),
                                QPageSize::Point, QString(), QPageSize::ExactMatch));
  printer.setPageOrientation(QPageLayout::Portrait);  // the size already has the turn in it
  printer.setFullPage(true);
  printer.setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Point);
  // Copies are our runs, one after the other; the printer prints each sheet once.
  printer.setCopyCount(1);
  Document copy = env.doc;  // the window's layout stays as the screen has it
  PrinterTarget target(printer);
  return PrintPages(copy, copy.CursorTrack, settings, env.drawTexts(), selected, copies, target);
}

PrintDialog::PrintDialog(PrintEnvironment env, QWidget* parent) : QDialog(parent), env_(std::move(env)) {
  setObjectName("ntne_frmPrint");
  setWindowTitle(caption(env_, "ntne_frmPrint", "Print"));
  lstPages_ = new QListWidget(this);
  lstPages_->setObjectName("lstPages");
  lstPages_->setSelectionMode(QAbstractItemView::MultiSelection);
  vbCopies_ = new QSpinBox(this);
  vbCopies_->setObjectName("vbCopies");
  vbCopies_->setRange(1, 99);
  auto* all = new QPushButton("Select All", this);
  all->setObjectName("cmdSelectAll");
  auto* none = new QPushButton("Select None", this);
  none->setObjectName("cmdSelectNone");
  auto* setup = new QPushButton("Page Setup...", this);
  setup->setObjectName("cmdPageSetup");
  auto* printButton = new QPushButton("Print", this);
  printButton->setObjectName("Command8");
  printButton->setDefault(true);
  auto* cancel = new QPushButton("Cancel", this);
  cancel->setObjectName("cmdCancel");

  auto* side = new QVBoxLayout;
  side->addWidget(all);
  side->addWidget(none);
  side->addSpacing(12);
  side->addWidget(new QLabel("Number of Copies:", this));
  side->addWidget(vbCopies_);
  side->addStretch();
  side->addWidget(setup);
  side->addWidget(printButton);
  side->addWidget(cancel);
  auto* row = new QHBoxLayout(this);
  row->addWidget(lstPages_, 1);
  row->addLayout(side);

  connect(all, &QPushButton::clicked, lstPages_, &QListWidget::selectAll);
  connect(none, &QPushButton::clicked, lstPages_, &QListWidget::clearSelection);
  connect(setup, &QPushButton::clicked, this, [this] {
    PageSetupDialog dialog(env_, this);
    if (dialog.exec() == QDialog::Accepted) fillPages();  // the paper decides the page count
  });
  connect(printButton, &QPushButton::clicked, this, &PrintDialog::print);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  fillPages();
  resize(360, 320);
}

void PrintDialog::fillPages() {
  lstPages_->clear();
  Document copy = env_.doc;
  const DrawResult r = LayoutTrack(copy, copy.CursorTrack, env_.pageSettings(), env_.drawTexts());
  const int pages = r.Ok ? r.LastPage + 1 : 0;
  for (int p = 1; p <= pages; ++p) lstPages_->addItem("Page " + QString::number(p));
  lstPages_->selectAll();
}

std::vector<bool> PrintDialog::selection() const {
  std::vector<bool> chosen(static_cast<size_t>(lstPages_->count()));
  for (int i = 0; i < lstPages_->count(); ++i) chosen[static_cast<size_t>(i)] = lstPages_->item(i)->isSelected();
  return chosen;
}

PrintResult PrintDialog::printOn(QPrinter& printer) { return PrintOnPrinter(env_, selection(), vbCopies_->value(), printer); }

void PrintDialog::print() {
  const std::vector<bool> chosen = selection();
  if (std::find(chosen.begin(), chosen.end(), true) == chosen.end()) return;  // nothing to send
  QPrinter printer(QPrinter::HighResolution);
  QPrintDialog ask(&printer, this);
  ask.setOption(QAbstractPrintDialog::PrintPageRange, false);
  ask.setOption(QAbstractPrintDialog::PrintCollateCopies, false);
  if (ask.exec() != QDialog::Accepted) return;
  printOn(printer);
  accept();
}

PrintPreviewDialog::PrintPreviewDialog(PrintEnvironment env, QWidget* parent)
    : QDialog(parent), env_(std::move(env)) {
  setObjectName("ntne_frmPrintPreview");
  setWindowTitle(caption(env_, "ntne_frmPrintPreview", "Print Preview"));
  picBMP_ = new QLabel(this);
  picBMP_->setObjectName("picBMP");
  picBMP_->setAlignment(Qt::AlignCenter);
  auto* scroll = new QScrollArea(this);  // HScroll1, VScroll1 and picCornerBit
  scroll->setWidget(picBMP_);
  scroll->setWidgetResizable(true);
  scroll->setBackgroundRole(QPalette::Dark);
  vbZoom_ = new QSpinBox(this);
  vbZoom_->setObjectName("vbZoom");
  vbZoom_->setRange(10, 400);
  vbZoom_->setSingleStep(10);
  vbZoom_->setValue(100);
  vbZoom_->setSuffix(" %");
  page_ = new QSpinBox(this);
  page_->setObjectName("vbPage");
  pageCount_ = new QLabel(this);
  auto* printButton = new QPushButton("Print...", this);
  printButton->setObjectName("cmdPrint");
  auto* close = new QPushButton("Close", this);

  auto* bar = new QHBoxLayout;
  bar->addWidget(new QLabel("Page", this));
  bar->addWidget(page_);
  bar->addWidget(pageCount_);
  bar->addSpacing(16);
  bar->addWidget(new QLabel("Zoom:", this));
  bar->addWidget(vbZoom_);
  bar->addStretch();
  bar->addWidget(printButton);
  bar->addWidget(close);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(bar);
  layout->addWidget(scroll, 1);

  connect(vbZoom_, &QSpinBox::valueChanged, this, &PrintPreviewDialog::DrawPreviewPage);
  connect(page_, &QSpinBox::valueChanged, this, &PrintPreviewDialog::DrawPreviewPage);
  connect(printButton, &QPushButton::clicked, this, [this] {
    PrintDialog dialog(env_, this);
    dialog.exec();
    DrawPreviewPage();  // the page setup may have changed on the way
  });
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  page_->setRange(1, 1);
  DrawPreviewPage();
  resize(900, 760);
}

void PrintPreviewDialog::DrawPreviewPage() {
  const LayoutSettings settings = env_.pageSettings();
  const double scale = vbZoom_->value() / 100.0;
  QImage image(static_cast<int>(std::ceil(settings.PageWidth * scale)),
               static_cast<int>(std::ceil(settings.PageHeight * scale)), QImage::Format_RGB32);
  image.fill(Qt::white);
  Document copy = env_.doc;
  const int wanted = page_->value() - 1;
  int lastPage = 0;
  DrawResult r;
  {
    QPainter painter(&image);
    std::optional<QtSurface> surface;
    r = RenderPages(copy, copy.CursorTrack, settings, env_.drawTexts(), [&](int p, int last) -> Surface* {
      lastPage = last;
      if (p != wanted) return nullptr;
      surface.emplace(painter, scale);
      return &*surface;
    });
  }
  if (!r.Ok) {
    picBMP_->setText(tr8(r.Error));
    return;
  }
  const QSignalBlocker block(page_);
  page_->setRange(1, lastPage + 1);
  pageCount_->setText("/ " + QString::number(lastPage + 1));
  picBMP_->setPixmap(QPixmap::fromImage(image));
}

PageSetupDialog::PageSetupDialog(PrintEnvironment env, QWidget* parent)
    : QDialog(parent), env_(std::move(env)), setup_(LoadPageSetup(env_.settings)) {
  setObjectName("ntne_frmPageSetup");
  setWindowTitle(caption(env_, "ntne_frmPageSetup", "Page Setup"));
  cmbPaperSize_ = new QComboBox(this);
  cmbPaperSize_->setObjectName("cmbPaperSize");
  for (const char* name : kPaperSizeNames) cmbPaperSize_->addItem(name);
  cmbPaperSize_->setCurrentIndex(setup_.PaperSizeIndex);
  cmbScale_ = new QComboBox(this);
  cmbScale_->setObjectName("cmbScale");
  cmbScale_->addItems({"Centimeters", "Inches"});
  cmbScale_->setCurrentIndex(setup_.PageScaleMode == 5 ? 1 : 0);
  auto orientation = [this](const char* name, const char* text, bool landscape) {
    auto* b = new QToolButton(this);
    b->setObjectName(name);
    b->setText(text);
    b->setCheckable(true);
    b->setAutoExclusive(true);
    b->setMinimumSize(landscape ? QSize(96, 64) : QSize(64, 96));
    connect(b, &QToolButton::clicked, this, [this, landscape] {
      setup_.Landscape = landscape;
      showSize();
    });
    return b;
  };
  picPortrait_ = orientation("picPortrait", "Portrait", false);
  picLandscape_ = orientation("picLandscape", "Landscape", true);
  size_ = new QLabel(this);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);

  auto* pictures = new QHBoxLayout;
  pictures->addWidget(picPortrait_);
  pictures->addWidget(picLandscape_);
  pictures->addStretch();
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel("Paper size:", this));
  layout->addWidget(cmbPaperSize_);
  layout->addLayout(pictures);
  layout->addWidget(size_);
  layout->addWidget(cmbScale_);
  layout->addWidget(buttons);

  connect(cmbPaperSize_, &QComboBox::currentIndexChanged, this, [this](int i) {
    setup_.PaperSizeIndex = static_cast<int16_t>(std::max(0, i));
    showSize();
  });
  connect(cmbScale_, &QComboBox::currentIndexChanged, this, [this](int i) {
    setup_.PageScaleMode = i == 1 ? 5 : 7;
    showSize();
  });
  connect(buttons, &QDialogButtonBox::accepted, this, &PageSetupDialog::apply);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  showSize();
}

void PageSetupDialog::showSize() {
  // The chosen picture is white, the other one in the highlight colour.
  (setup_.Landscape ? picLandscape_ : picPortrait_)->setChecked(true);
  for (QToolButton* b : {picPortrait_, picLandscape_}) {
    const bool chosen = b->isChecked();
    b->setStyleSheet(chosen ? "background: white; color: black;" : "background: palette(highlight); color: palette(highlighted-text);");
  }
  const LayoutSettings s = WithPageSetup(LayoutSettings{}, setup_);
  const bool inches = setup_.PageScaleMode == 5;
  const double per = inches ? 96.1644 : 37.86;
  size_->setText(QString("%1 x %2 %3")
                     .arg(s.PageWidth / per, 0, 'f', inches ? 2 : 1)
                     .arg(s.PageHeight / per, 0, 'f', inches ? 2 : 1)
                     .arg(inches ? "in" : "cm"));
}

void PageSetupDialog::apply() {
  SavePageSetup(env_.settings, setup_);
  env_.doc.FullRelayout = true;
  if (env_.paperChanged) env_.paperChanged(setup_);
  accept();
}

void ConnectPrintMenus(const std::function<QAction*(const QString& name)>& find, QWidget* parent,
                       PrintEnvironment env) {
  auto connectItem = [&](const char* name, std::function<void()> run) {
    QAction* a = find(name);
    if (!a) return;
    a->setEnabled(true);
    QObject::connect(a, &QAction::triggered, parent, std::move(run));
  };
  connectItem("mnuFilePrint", [env, parent] {
    PrintDialog dialog(env, parent);
    dialog.exec();
  });
  connectItem("mnuFilePrintPreview", [env, parent] {
    PrintPreviewDialog dialog(env, parent);
    dialog.exec();
  });
  connectItem("mnuFilePageSetup", [env, parent] {
    PageSetupDialog dialog(env, parent);
    dialog.exec();
  });
}

}  // namespace plectaro
