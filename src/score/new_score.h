// What a new Score holds and where the user's preferred defaults come from: the settings
// section "DefaultInfo", which the second page of the file properties dialog edits.
#pragma once

#include "score/document.h"
#include "score/settings_store.h"

namespace plectaro {

inline constexpr const char* kDefaultInfoSection = "DefaultInfo";

// Replaces the whole document with the minimal Score: one six-string guitar track in standard
// tuning with one 4/4 bar holding a quarter-note rest, document details from "DefaultInfo".
void InitScore(Document& doc, const SettingsStore& settings);

// InitScore, then no file name, changed, and due for a full relayout. The caller redraws.
void ForceNewFile(Document& doc, const SettingsStore& settings);

// First run: writes the first-run values of every "DefaultInfo" key.
void SetDefaultVars(SettingsStore& settings);

}  // namespace plectaro
