#include "reference/ui/view_menu.h"

#include <QAction>
#include <QActionGroup>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QStringList>
#include <algorithm>

#include "rendering/qt/qt_surface.h"
#include "score/value_text.h"

namespace plectaro {

ViewMenu::ViewMenu(QMenuBar* bar, const ReferenceEnv& env, const char* section,
                   const std::array<const char*, kViewTypes>& names)
    : QObject(bar), env_(env), section_(section) {
  QMenu* menu = bar->addMenu(env_.caption("mnuView", "&View"));
  menu->setObjectName("mnuView");
  auto* group = new QActionGroup(this);
  for (int i = 0; i < kViewTypes; ++i) {
    QAction* a = menu->addAction(env_.caption("", names[static_cast<size_t>(i)]));
    a->setObjectName(QString("mnuViewType%1").arg(i));
    a->setCheckable(true);
    group->addAction(a);
    items_[static_cast<size_t>(i)] = a;
    connect(a, &QAction::triggered, this, [this, i] { setViewType(i); });
  }
  menu->addSeparator();
  lefty_item_ = menu->addAction(env_.caption("mnuViewLefty", "&Left-handed"));
  lefty_item_->setObjectName("mnuViewLefty");
  lefty_item_->setCheckable(true);
  connect(lefty_item_, &QAction::triggered, this, [this](bool on) { setLeftHanded(on); });
  if (env_.settings) {
    lefty_ = ParseBool(env_.settings->GetSetting(section_, "Lefthanded", "False"));
    viewType_ = std::clamp<int>(ParseI16(env_.settings->GetSetting(section_, "ViewType", "6")), 0, kViewTypes - 1);
  }
  lefty_item_->setChecked(lefty_);
  items_[static_cast<size_t>(viewType_)]->setChecked(true);
}

void ViewMenu::setViewType(int viewType) {
  viewType_ = std::clamp(viewType, 0, kViewTypes - 1);
  items_[static_cast<size_t>(viewType_)]->setChecked(true);
  if (env_.settings) env_.settings->SaveSetting(section_, "ViewType", std::to_string(viewType_));
  emit changed();
}

void ViewMenu::setLeftHanded(bool on) {
  lefty_ = on;
  lefty_item_->setChecked(on);
  if (env_.settings) env_.settings->SaveSetting(section_, "Lefthanded", FormatBool(on));
  emit changed();
}

QLabel* MakeStatusLine(QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setObjectName("sbStatus");
  label->setFrameShape(QFrame::StyledPanel);
  return label;
}

QString StatusText(const std::string& summary, const std::vector<std::string>& broken) {
  QString text = QString::fromStdString(summary);
  if (!broken.empty()) {
    QStringList names;
    for (const std::string& n : broken) names << QString::fromStdString("\"" + n + "\"");
    // A file that cannot be read is left out of the grid and named here.
    text += "  |  " + QObject::tr("Cannot read:") + " " + names.join(", ");
  }
  return text;
}

SurfacePicture::SurfacePicture(const char* name, QSize size, std::function<void(Surface&)> draw, QWidget* parent)
    : QWidget(parent), draw_(std::move(draw)) {
  setObjectName(name);
  setFixedSize(size);
}

void SurfacePicture::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.setRenderHint(QPainter::Antialiasing);
  p.fillRect(rect(), Qt::white);
  QtSurface s(p);
  draw_(s);
}

}  // namespace plectaro
