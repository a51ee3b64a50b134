#include "shell/qt_settings_store.h"

#include <QSettings>
#include <QString>

namespace plectaro {

namespace {

QString keyOf(std::string_view section, std::string_view key) {
  return QString::fromUtf8(section.data(), static_cast<qsizetype>(section.size())) + '/' +
         QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

}  // namespace

QtSettingsStore::QtSettingsStore(const std::filesystem::path& iniFile)
    : settings_(std::make_unique<QSettings>(QString::fromStdString(iniFile.string()),
                                            QSettings::IniFormat)) {}

QtSettingsStore::~QtSettingsStore() { settings_->sync(); }

std::optional<std::string> QtSettingsStore::value(std::string_view section, std::string_view key) const {
  QVariant v = settings_->value(keyOf(section, key));
  if (!v.isValid()) return std::nullopt;
  return v.toString().toStdString();
}

void QtSettingsStore::setValue(std::string_view section, std::string_view key, std::string_view text) {
  settings_->setValue(keyOf(section, key),
                      QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

void QtSettingsStore::sync() { settings_->sync(); }

}  // namespace plectaro
