// The per-user settings store: text values under (section, key), with the semantics of the
// classic GetSetting/SaveSetting pair. The real backend lives in the shell (an INI file); tests
// use MemorySettingsStore.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace plectaro {

class SettingsStore {
 public:
  virtual ~SettingsStore() = default;

  virtual std::optional<std::string> value(std::string_view section, std::string_view key) const = 0;
  virtual void setValue(std::string_view section, std::string_view key, std::string_view text) = 0;
  // Makes what was set durable; a no-op for stores that write through.
  virtual void sync() {}

  std::string GetSetting(std::string_view section, std::string_view key,
                         std::string_view fallback = {}) const {
    auto v = value(section, key);
    return v ? *v : std::string(fallback);
  }
  void SaveSetting(std::string_view section, std::string_view key, std::string_view text) {
    setValue(section, key, text);
  }
};

class MemorySettingsStore : public SettingsStore {
 public:
  std::optional<std::string> value(std::string_view section, std::string_view key) const override {
    auto it = values_.find({std::string(section), std::string(key)});
    if (it == values_.end()) return std::nullopt;
    return it->second;
  }
  void setValue(std::string_view section, std::string_view key, std::string_view text) override {
    values_[{std::string(section), std::string(key)}] = std::string(text);
  }
  size_t size() const { return values_.size(); }

 private:
  std::map<std::pair<std::string, std::string>, std::string> values_;
};

}  // namespace plectaro
