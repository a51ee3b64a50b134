#include "editing/keys.h"

#include <array>
#include <cctype>
#include <utility>

namespace plectaro {

namespace {

bool sameText(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
      return false;
  return true;
}

bool takePrefix(std::string_view& text, std::string_view prefix) {
  if (text.size() <= prefix.size() || !sameText(text.substr(0, prefix.size()), prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

}  // namespace

std::optional<KeyPress> ParseKeyPress(std::string_view text) {
  KeyPress k;
  for (bool more = true; more;) {
    more = false;
    if (takePrefix(text, "Shift+")) { k.mods |= kShift; more = true; }
    if (takePrefix(text, "Ctrl+")) { k.mods |= kCtrl; more = true; }
    if (takePrefix(text, "Alt+")) { k.mods |= kAlt; more = true; }
  }
  if (text.size() == 1) {
    const char c = text[0];
    if (c >= '0' && c <= '9') k.key = DigitKey(c - '0');
    else if (std::isalpha(static_cast<unsigned char>(c))) k.key = LetterKey(c);
    else if (c == '+') k.key = Key::NumpadPlus;
    else if (c == '-') k.key = Key::NumpadMinus;
    else if (c == '.') k.key = Key::Period;
    else return std::nullopt;
    return k;
  }
  static const std::array<std::pair<std::string_view, Key>, 18> names = {{
      {"Left", Key::Left}, {"Right", Key::Right}, {"Up", Key::Up}, {"Down", Key::Down},
      {"Enter", Key::Enter}, {"Return", Key::Enter}, {"Space", Key::Space},
      {"Del", Key::Delete}, {"Delete", Key::Delete}, {"Ins", Key::Insert},
      {"Insert", Key::Insert}, {"Esc", Key::Escape}, {"Escape", Key::Escape},
      {"Backspace", Key::Backspace}, {"Home", Key::Home}, {"End", Key::End},
      {"PgUp", Key::PageUp}, {"PgDn", Key::PageDown}}};
  for (const auto& [name, key] : names)
    if (sameText(text, name)) {
      k.key = key;
      return k;
    }
  if (text.size() == 4 && sameText(text.substr(0, 3), "Num") && text[3] >= '0' && text[3] <= '9') {
    k.key = static_cast<Key>(static_cast<int>(Key::Numpad0) + (text[3] - '0'));
    return k;
  }
  return std::nullopt;
}

}  // namespace plectaro
