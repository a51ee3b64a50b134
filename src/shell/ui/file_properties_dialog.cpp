#include "shell/ui/file_properties_dialog.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFontDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include "score/new_score.h"
#include "score/value_text.h"
#include "shell/tempo_name.h"
#include "shell/ui/language_ui.h"

namespace plectaro {

namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

struct TextField {
  const char* name;
  const char* label;
  std::string Score::*member;
  bool onDefaultsPage;
  const char* defaultKey;  // "DefaultInfo" key
};

const TextField kTextFields[] = {
    {"txtTitle", "lblTitle", &Score::Title, false, nullptr},
    {"txtSubTitle", "lblSubTitle", &Score::SubTitle, false, nullptr},
    {"txtArtist", "lblArtist", &Score::Artist, true, "1"},
    {"txtAlbum", "lblAlbum", &Score::Album, true, "2"},
    {"txtAuthor", "lblAuthor", &Score::Author, true, "3"},
    {"txtCopyright", "lblCopyright", &Score::Copyright, true, "4"},
    {"txtTab", "lblTab", &Score::TabAuthor, true, "5"},
    {"txtInstructions", "lblInstructions", &Score::Instructions, true, "6"},
    {"txtNotice", "lblNotice", &Score::Notice, true, "7"},
    {"txtNotes", "lblNotes", &Score::Notes, true, "8"},
};

QFont toQFont(const FontInfo& f) {
  QFont font(q(f.Name), std::max<int>(1, f.Size));
  font.setBold(f.Bold);
  font.setItalic(f.Italic);
  font.setStrikeOut(f.Strikethrough);
  font.setUnderline(f.Underline);
  return font;
}

void fromQFont(FontInfo& f, const QFont& font) {
  f.Name = font.family().toStdString();
  f.Size = static_cast<int16_t>(std::clamp(font.pointSize(), 1, 500));
  f.Bold = font.bold();
  f.Italic = font.italic();
  f.Strikethrough = font.strikeOut();
  f.Underline = font.underline();
}

// Stored colours hold red in the low byte.
QColor toQColor(int32_t c) { return QColor(c & 0xff, (c >> 8) & 0xff, (c >> 16) & 0xff); }
int32_t fromQColor(const QColor& c) { return c.red() | (c.green() << 8) | (c.blue() << 16); }

}  // namespace

FilePropertiesDialog::FilePropertiesDialog(Session& session, QWidget* parent)
    : QDialog(parent), session_(session) {
  setObjectName("frmFileProperties");
  auto* layout = new QVBoxLayout(this);
  tabs_ = new QTabWidget(this);
  tabs_->setObjectName("TabStrip1");
  layout->addWidget(tabs_);
  build(doc_, false);
  build(def_, true);
  auto* note = new QLabel(def_.widget);
  note->setObjectName("lblDefaultsNote");
  static_cast<QFormLayout*>(def_.widget->layout())->insertRow(0, note);

  auto* buttons = new QDialogButtonBox(this);
  auto* applyButton = buttons->addButton(QString(), QDialogButtonBox::ApplyRole);
  applyButton->setObjectName("cmdApply");
  auto* ok = buttons->addButton(QString(), QDialogButtonBox::AcceptRole);
  ok->setObjectName("cmdOK");
  ok->setDefault(true);
  buttons->addButton(QString(), QDialogButtonBox::RejectRole)->setObjectName("cmdCancel");
  connect(applyButton, &QPushButton::clicked, this, [this] { apply(); });
  connect(buttons, &QDialogButtonBox::accepted, this, [this] {
    if (apply()) accept();
  });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);

  load(doc_, session_.doc().score);
  load(def_, defaultsScore());
  LoadLanguage(this, session_.languageFile());
}

void FilePropertiesDialog::build(Page& p, bool defaults) {
  p.widget = new QWidget(tabs_);
  p.widget->setObjectName(defaults ? "tabDefaults" : "tabDocument");
  tabs_->addTab(p.widget, QString());
  auto* form = new QFormLayout(p.widget);
  const QString prefix = defaults ? "d" : "";
  auto label = [&](const char* name) {
    auto* l = new QLabel(p.widget);
    l->setObjectName(name);
    return l;
  };
  for (const TextField& f : kTextFields) {
    if (defaults && !f.onDefaultsPage) continue;
    auto* e = new QLineEdit(p.widget);
    e->setObjectName(prefix + f.name);
    e->setMinimumWidth(320);
    form->addRow(label(f.label), e);
    p.texts.emplace_back(e, f.member);
  }
  p.rowSpacing = new QSpinBox(p.widget);
  p.rowSpacing->setObjectName(prefix + "vbRowSpacing");
  // The whole range a file can hold, so that showing a value never changes it.
  p.rowSpacing->setRange(INT16_MIN, INT16_MAX);
  form->addRow(label("lblRowSpacing"), p.rowSpacing);

  auto* tempoRow = new QWidget(p.widget);
  auto* tempoLayout = new QHBoxLayout(tempoRow);
  tempoLayout->setContentsMargins(0, 0, 0, 0);
  p.tempo = new QDoubleSpinBox(tempoRow);
  p.tempo->setObjectName(prefix + "valbox1");
  p.tempo->setRange(1, 999);
  p.tempo->setDecimals(0);
  p.tempoName = new QLabel(tempoRow);
  p.tempoName->setObjectName(prefix + "lblTempoName");
  tempoLayout->addWidget(p.tempo);
  tempoLayout->addWidget(p.tempoName);
  tempoLayout->addStretch();
  QLabel* tempoName = p.tempoName;
  connect(p.tempo, &QDoubleSpinBox::valueChanged, tempoName,
          [tempoName](double v) { tempoName->setText(q(TempoName(v))); });
  form->addRow(label("lblTempo"), tempoRow);

  auto check = [&](const char* name) {
    auto* c = new QCheckBox(p.widget);
    c->setObjectName(name);
    form->addRow(c);
    return c;
  };
  p.alwaysCharts = check("chkAlwaysCharts");
  p.header = check("chkHeader");
  p.shuffle = check("chkShuffle");
  if (!defaults) {
    auto* row = new QWidget(p.widget);
    auto* rl = new QHBoxLayout(row);
    rl->setContentsMargins(0, 0, 0, 0);
    p.password = new QCheckBox(row);
    p.password->setObjectName("chkPassword");
    p.passwordText = new QLineEdit(row);
    p.passwordText->setObjectName("txtPassword");
    p.passwordText->setEchoMode(QLineEdit::Password);
    rl->addWidget(p.password);
    rl->addWidget(p.passwordText, 1);
    QLineEdit* text = p.passwordText;
    connect(p.password, &QCheckBox::toggled, text, &QLineEdit::setEnabled);
    form->addRow(row);
  }

  auto* fonts = new QWidget(p.widget);
  auto* fl = new QHBoxLayout(fonts);
  fl->setContentsMargins(0, 0, 0, 0);
  auto button = [&](const char* name) {
    auto* b = new QPushButton(fonts);
    b->setObjectName(prefix + name);
    fl->addWidget(b);
    return b;
  };
  Page* page = &p;
  connect(button("cmdHeaderFont"), &QPushButton::clicked, this, [this, page] {
    bool ok = false;
    QFont f = QFontDialog::getFont(&ok, toQFont(page->headerFont), this);
    if (ok) fromQFont(page->headerFont, f);
  });
  connect(button("cmdNoteFont"), &QPushButton::clicked, this, [this, page] {
    bool ok = false;
    QFont f = QFontDialog::getFont(&ok, toQFont(page->noteFont), this);
    if (ok) fromQFont(page->noteFont, f);
  });
  connect(button("cmdLineColor"), &QPushButton::clicked, this, [this, page] {
    QColor c = QColorDialog::getColor(toQColor(page->lineColor), this);
    if (c.isValid()) page->lineColor = fromQColor(c);
  });
  fl->addStretch();
  form->addRow(fonts);
}

void FilePropertiesDialog::load(Page& p, const Score& s) {
  for (auto& [e, m] : p.texts) e->setText(q(s.*m));
  p.rowSpacing->setValue(s.RowSpacing);
  p.tempo->setValue(std::isfinite(s.Tempo) ? s.Tempo : 60);
  p.tempoShown = p.tempo->value();
  p.tempoLoaded = s.Tempo;
  p.tempoName->setText(q(TempoName(p.tempo->value())));
  p.alwaysCharts->setChecked(s.AlwaysDrawChordCharts);
  p.header->setChecked(s.AlwaysDrawFileHeaders);
  p.shuffle->setChecked(s.ShuffleRhythm);
  if (p.password) {
    p.password->setChecked(s.PasswordProtected);
    // Only someone who has given the password gets to see it (even as dots).
    const bool known = !s.PasswordProtected || session_.doc().PasswordEntered;
    p.passwordText->setText(known ? q(s.Password) : QString());
    p.passwordText->setEnabled(s.PasswordProtected);
  }
  p.headerFont = s.HeaderFont;
  p.noteFont = s.NoteFont;
  p.lineColor = s.LineColor;
}

void FilePropertiesDialog::store(const Page& p, Score& s) const {
  for (const auto& [e, m] : p.texts) s.*m = e->text().toStdString();
  s.RowSpacing = static_cast<int16_t>(p.rowSpacing->value());
  // A tempo the box cannot show exactly (90.5, or beyond its range) stays as it is unless the
  // user changed the box.
  s.Tempo = p.tempo->value() == p.tempoShown ? p.tempoLoaded : static_cast<float>(p.tempo->value());
  s.AlwaysDrawChordCharts = p.alwaysCharts->isChecked();
  s.AlwaysDrawFileHeaders = p.header->isChecked();
  s.ShuffleRhythm = p.shuffle->isChecked();
  if (p.password) {
    const bool wasProtected = s.PasswordProtected;
    s.PasswordProtected = p.password->isChecked();
    const std::string typed = p.passwordText->text().toStdString();
    // An empty box on a protected document that was not unlocked keeps the password it has.
    if (!s.PasswordProtected)
      s.Password.clear();
    else if (!typed.empty() || !wasProtected || session_.doc().PasswordEntered)
      s.Password = typed;
  }
  s.HeaderFont = p.headerFont;
  s.NoteFont = p.noteFont;
  s.LineColor = p.lineColor;
}

Score FilePropertiesDialog::defaultsScore() const {
  Document d;
  InitScore(d, session_.settings());
  return d.score;
}

void FilePropertiesDialog::storeDefaults(const Score& s) {
  SettingsStore& st = session_.settings();
  const char* sec = kDefaultInfoSection;
  auto font = [&](const std::string& p, const FontInfo& f) {
    st.SaveSetting(sec, p + "COLOR", std::to_string(f.Color));
    st.SaveSetting(sec, p + "BOLD", FormatBool(f.Bold));
    st.SaveSetting(sec, p + "ITALIC", FormatBool(f.Italic));
    st.SaveSetting(sec, p + "NAME", f.Name);
    st.SaveSetting(sec, p + "SIZE", std::to_string(f.Size));
    st.SaveSetting(sec, p + "STRIKE", FormatBool(f.Strikethrough));
    st.SaveSetting(sec, p + "UNDERLINE", FormatBool(f.Underline));
  };
  font("GFONT", s.HeaderFont);
  font("GNOTE", s.NoteFont);
  st.SaveSetting(sec, "COLOR3", std::to_string(s.LineColor));
  for (const TextField& f : kTextFields)
    if (f.defaultKey) st.SaveSetting(sec, f.defaultKey, s.*(f.member));
  st.SaveSetting(sec, "9", FormatBool(s.ShuffleRhythm));
  st.SaveSetting(sec, "10", FormatBool(s.AlwaysDrawChordCharts));
  st.SaveSetting(sec, "11", std::to_string(s.RowSpacing));
  st.SaveSetting(sec, "12", FormatFloat(s.Tempo));
  st.SaveSetting(sec, "13", FormatBool(s.AlwaysDrawFileHeaders));
  st.sync();
}

bool FilePropertiesDialog::apply() {
  Score defaults = defaultsScore();
  store(def_, defaults);
  storeDefaults(defaults);

  Document& doc = session_.doc();
  Score edited = doc.score;
  store(doc_, edited);
  if (edited == doc.score) return true;
  if (!session_.files().PasswordCorrect()) return false;
  doc.score = std::move(edited);
  doc.touched();
  if (onApply) onApply();
  return true;
}

}  // namespace plectaro
