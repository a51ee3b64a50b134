// The settings store on disk: an INI file through QSettings, one [section] per settings section.
#pragma once

#include <filesystem>
#include <memory>

#include "score/settings_store.h"

class QSettings;

namespace plectaro {

class QtSettingsStore : public SettingsStore {
 public:
  explicit QtSettingsStore(const std::filesystem::path& iniFile);
  ~QtSettingsStore() override;

  std::optional<std::string> value(std::string_view section, std::string_view key) const override;
  void setValue(std::string_view section, std::string_view key, std::string_view text) override;
  void sync() override;

 private:
  std::unique_ptr<QSettings> settings_;
};

}  // namespace plectaro
