// Keys as the editor sees them, without any window toolkit: the classic virtual key numbers
// (digits 48-57, letters 65-90, keypad digits 96-105...) so that toolbar buttons, the
// right-click menu and dialogs can hand the key handler a made-up key the same way a real
// keystroke arrives.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace plectaro {

enum class Key : int {
  None = 0,
  Backspace = 8,
  Enter = 13,
  Escape = 27,
  Space = 32,
  PageUp = 33,
  PageDown = 34,
  End = 35,
  Home = 36,
  Left = 37,
  Up = 38,
  Right = 39,
  Down = 40,
  Insert = 45,
  Delete = 46,
  D0 = 48, D1, D2, D3, D4, D5, D6, D7, D8, D9,
  A = 65, B, C, D, E, F, G, H, I, J, K, L, M, N, O, P, Q, R, S, T, U, V, W, X, Y, Z,
  Numpad0 = 96, Numpad1, Numpad2, Numpad3, Numpad4, Numpad5, Numpad6, Numpad7, Numpad8, Numpad9,
  NumpadPlus = 107,
  NumpadMinus = 109,
  Period = 190,
};

enum Modifier : unsigned { kNoModifier = 0, kShift = 1, kCtrl = 2, kAlt = 4 };
using Modifiers = unsigned;

inline Key DigitKey(int d) { return static_cast<Key>(static_cast<int>(Key::D0) + d); }
inline Key LetterKey(char c) {
  if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return static_cast<Key>(c);
}
inline bool IsDigitKey(Key k) { return k >= Key::D0 && k <= Key::D9; }
inline int DigitOf(Key k) { return static_cast<int>(k) - static_cast<int>(Key::D0); }

struct KeyPress {
  Key key = Key::None;
  Modifiers mods = kNoModifier;
  bool operator==(const KeyPress&) const = default;
};

// Reads a key written as text, for scripts and the command line: "7", "x", "Right", "Del",
// "Ins", "Enter", "Space", "+" and "-" (keypad), ".", "Num5", with "Shift+", "Ctrl+" and "Alt+"
// in front as needed. nullopt for anything else.
std::optional<KeyPress> ParseKeyPress(std::string_view text);

}  // namespace plectaro
