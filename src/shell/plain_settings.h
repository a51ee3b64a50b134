// The settings file read without Qt, for the quick path of plectaro-cli. Only files whose every
// line reads the same whatever the reader are taken: sections and keys of letters, digits and
// _ . -, values of printable ASCII with nothing that the settings writer quotes, escapes or
// splits into a list. Anything else gives nullopt and the caller hands the work to the reader
// that knows every rule; a near miss is never read differently from the editor.
#pragma once

#include <optional>
#include <string_view>

#include "score/settings_store.h"

namespace plectaro {

std::optional<MemorySettingsStore> ReadPlainSettings(std::string_view bytes);

}  // namespace plectaro
