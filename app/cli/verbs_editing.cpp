// type: replays key presses on a score, as if typed into the editor, and saves the result.
//   plectaro-cli type IN.plm KEY... OUT.plm [--track N] [--password P]
// Keys are names: digits, letters, Left Right Up Down, Del, Ins, Enter, Space, + and - (the
// keypad), ".", Num0..Num9, with Shift+, Ctrl+ or Alt+ in front. The editor's messages go to
// stderr; the summary is JSON on stdout.
#include <iostream>

#include "cli.h"
#include "editing/key_map.h"
#include "json.h"
#include "batch_prompter.h"

namespace plectaro::cli {

namespace {

int runType(Context& ctx, const Args& args) {
  const auto& pos = args.positional();
  if (pos.size() < 2) throw UsageError("an input and an output file are needed");
  std::vector<KeyPress> keys;
  for (size_t i = 1; i + 1 < pos.size(); ++i) {
    auto k = ParseKeyPress(pos[i]);
    if (!k) throw UsageError("unknown key \"" + pos[i] + "\"");
    keys.push_back(*k);
  }
  Document doc = LoadDocument(ctx, pos.front());
  const int track = args.intValue("--track", 1) - 1;
  if (track < 0 || track > doc.score.LastTrack())
    throw InputError("the score has no track " + std::to_string(track + 1));
  doc.CursorTrack = static_cast<int16_t>(track);
  doc.clampCursor();

  BatchPrompter prompter(ctx.err, "type", args.value("--password"));
  EditContext edit(doc, prompter);
  edit.settings.PlayAsTyped = false;
  for (const KeyPress& k : keys) picDocument_KeyDown(edit, k.key, k.mods);
  if (doc.score.PasswordProtected && !doc.PasswordEntered)
    throw InputError("the score is protected by a password; give it with --password");
  SaveDocument(ctx, doc, pos.back(), args);

  Json j(ctx.out);
  j.beginObject();
  j.field("keys", static_cast<int>(keys.size()));
  j.field("changed", doc.ScoreChanged);
  j.field("messages", prompter.messages);
  j.field("bars", static_cast<int>(doc.score.BarInfos.size()));
  j.key("cursor").beginObject();
  j.field("track", doc.CursorTrack + 1).field("bar", doc.CursorBar + 1).field("beat", doc.CursorBeat + 1);
  j.field("string", doc.CursorString + 1);
  j.endObject();
  j.endObject();
  return 0;
}

const Registrar verbType(Verb{"type", "type IN.plm KEY... OUT.plm [--track N] [--password P]",
                              {"--track", "--password"}, {}, runType});

}  // namespace

}  // namespace plectaro::cli
