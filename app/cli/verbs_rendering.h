// What the savers of engraved pages share: the Qt application that fonts need, and the
// options that choose the track and the paper.
#pragma once

#include "cli.h"
#include "rendering/page_layout.h"

namespace plectaro::cli {

void EnsureGuiApplication();
// --track N (from 1; default the current track), as a 0-based index; InputError if absent.
int PageTrackOption(const Document& doc, const Args& args);
// --paper I, --landscape and --row-spacing R (the last goes into the document).
LayoutSettings PageSettingsFrom(Document& doc, const Args& args);

}  // namespace plectaro::cli
