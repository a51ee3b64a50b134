#include "shell/ui/help_dialogs.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QIcon>
#include <QMessageBox>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace plectaro {

QStringList LibrariesInUse() {
  QStringList libs = {QString("Qt %1").arg(qVersion())};
#ifdef PLECTARO_LIBRARY_VERSIONS
  // "FluidSynth 2.3.1|RtMidi 5.0.0|..." from the build's package configuration.
  for (const QString& lib : QString(PLECTARO_LIBRARY_VERSIONS).split('|', Qt::SkipEmptyParts)) libs << lib;
#endif
  return libs;
}

QString AboutText(const QStringList& libraries) {
  QString text = QString("<h3>Plectaro %1</h3><p>A guitar tablature editor.</p><p>Built with:<br>")
                     .arg(PLECTARO_VERSION);
  text += libraries.join("<br>") + "</p>";
  return text;
}

void ShowAbout(QWidget* parent, const QString& title) {
  QMessageBox box(parent);
  box.setObjectName("frmAbout");
  box.setWindowTitle(title);
  box.setTextFormat(Qt::RichText);
  box.setText(AboutText(LibrariesInUse()));
  box.setIconPixmap(QIcon(":/plectaro.svg").pixmap(64, 64));
  box.exec();
}

QString GettingStartedHtml() {
  return R"(<h2>Getting Started</h2>
<p><b>Entering notes.</b> The cursor is the small box on the tab staff. Move it with the arrow
keys: Left and Right go from beat to beat, Up and Down from string to string. Type a fret number
(0 for an open string, two digits for frets above 9) and it is written on that string. Several
strings of the same beat make a chord. Right on the last beat adds a beat until the bar is
full, then goes on to the next bar (a new one at the end of the song). Del clears a note,
Shift+Del removes the whole beat.</p>
<p><b>Lengths.</b> A new beat takes the length of the one before it. <b>+</b> and <b>-</b> on the number pad (or
<b>=</b> and <b>-</b> on the main keys) make the beat at the cursor longer or shorter;
<b>.</b> dots it, Shift+3 makes a triplet. The status bar tells whether the bar is complete.</p>
<p><b>Marking and copying.</b> Hold Shift with the arrow keys, Home, End or the mouse to mark
beats or bars; add Ctrl (or Alt with the keys) to mark them in every track. Cut, Copy, Paste,
Clear, Transpose and the Bar dialogs work on what is marked. Every change can be undone with
Ctrl+Z and redone with Ctrl+Y.</p>
<p><b>Playing.</b> Space plays the song from the start, Shift+Space from the current bar;
F8 stops. The Sound menu holds the speed trainer.</p>
<p><b>Tracks.</b> The Track menu adds tracks (a bass, drums, a second guitar) and sets their
instrument and tuning; the list in the Track toolbar switches between them.</p>
<p><b>Where the tools are.</b> The Tools menu holds the tuner, the metronome, the drum machine,
the chord and scale managers and the trainers; the Options are at its end. A right click on the
page shows the commands for that spot. Help &gt; Shortcut Keys lists every key.</p>)";
}

void ShowGettingStarted(QWidget* parent, const QString& title) {
  QDialog d(parent);
  d.setObjectName("frmGettingStarted");
  d.setWindowTitle(title);
  auto* l = new QVBoxLayout(&d);
  auto* page = new QTextBrowser(&d);
  page->setObjectName("txtPage");
  page->setHtml(GettingStartedHtml());
  l->addWidget(page);
  auto* box = new QDialogButtonBox(QDialogButtonBox::Close, &d);
  QObject::connect(box, &QDialogButtonBox::rejected, &d, &QDialog::reject);
  l->addWidget(box);
  d.resize(560, 600);
  d.exec();
}

}  // namespace plectaro
