#include "editing/edit_context.h"

#include <map>

namespace plectaro {

namespace {

// English texts of the messages the editor shows, for a window that gave no language table.
const std::map<std::string_view, std::string_view>& englishMessages() {
  static const std::map<std::string_view, std::string_view> m = {
      {"str_ExceededBar", "The bar is too long."},
      {"str_BarExceeded", "Bar Too Long"},
      {"str_Error", "Error"},
      {"str_Warning", "Warning"},
      {"str_Password", "Password"},
      {"str_mayNotEdit", "The password is not correct. You may not edit this file."},
      {"str_WrongTrackType", "The bars cannot be pasted onto a track of another kind."},
      {"str_CopySomethingFirst", "Please copy something first."},
      {"str_SelectAtLeastOneTrack", "Please select at least one track."},
      {"str_SelectAtLeastOneBarToCopy", "Please select at least one bar to copy."},
      {"str_SelectAtLeastOneBarToCut", "Please select at least one bar to cut."},
      {"str_InvalidPastings", "Please enter a valid number of pastings."},
      {"str_ValidTSPlease", "Please enter a valid time signature."},
      {"str_NoPercussionKeySigs", "A percussion track has no key signature."},
      {"str_PleaseEnterValidNumber", "Please enter a valid number."},
      {"str_ConfirmIncreaseLengths", "This doubles the length of every beat in the chosen bars. Continue?"},
      {"str_ConfirmDecreaseLengths", "This halves the length of every beat in the chosen bars. Continue?"},
      {"str_IncreaseLengths", "Increase Lengths"},
      {"str_DecreaseLengths", "Decrease Lengths"},
      {"str_ConfirmationRequired", "Confirmation Required"},
      {"txt_RepeatCount", "How many times would you like the section to be repeated?"},
      {"txt_RepeatClose", "Repeat Close"},
      {"str_barIncomplete1", "The bar holds "},
      {"str_BarShouldBe", ", but it should hold "},
      {"str_notesLong", " 64ths."},
      {"str_barComplete1", "The bar is complete with "},
      {"str_barTooLong1", "The bar is too long: it holds "},
      {"str_BarNotNeedFix", "This bar does not need fixing."},
      {"str_NoMatches", "No matches were found."},
      {"str_termsReplaced", "terms were replaced."},
      {"str_CantAddPitch", "This pitch cannot be played on this track's strings."},
      {"str_CantDeleteOnlyTrack", "The only track of a document cannot be deleted."},
      {"str_ConfirmDeleteTrack1", "Are you sure you want to delete the track '"},
      {"str_ConfirmDeleteTrack2", "'?"},
      // Newer messages: the language files keep a fixed count of lines, so these have no
      // slot there and are always shown in English.
      {"str_FretsKeptOnRetune",
       "Every note keeps its fret number, so the notes now sound in the new tuning."},
      {"str_TransposeNoRoom",
       "These notes have no place on the strings at the new pitch and were left as they were "
       "(track, bar, beat, string: fret):"},
  };
  return m;
}

}  // namespace

std::string EditContext::text(std::string_view key) const {
  if (hooks.text) {
    std::string t = hooks.text(key);
    if (!t.empty()) return t;
  }
  auto it = englishMessages().find(key);
  return it == englishMessages().end() ? std::string(key) : std::string(it->second);
}

void EditContext::message(std::string_view textKey, MessageIcon icon) {
  prompter.message(text(textKey), "Plectaro", icon);
}

void EditContext::redraw() {
  if (depth == 0 && hooks.drawDocument) hooks.drawDocument();
}

bool PasswordCorrect(EditContext& ctx) {
  if (ctx.hooks.passwordCorrect) return ctx.hooks.passwordCorrect();
  Document& doc = ctx.doc;
  if (!doc.score.PasswordProtected || doc.PasswordEntered) return true;
  auto entered = ctx.prompter.textInput("Please enter the password for editing this file:",
                                        "Password Protected File", true);
  doc.PasswordEntered = entered && *entered == doc.score.Password;
  if (entered && !doc.PasswordEntered) ctx.message("str_mayNotEdit", MessageIcon::Warning);
  return doc.PasswordEntered;
}

bool LayoutAffected(const Score& a, const Score& b) {
  if (a.Tracks.size() != b.Tracks.size() || a.BarInfos != b.BarInfos ||
      a.RowSpacing != b.RowSpacing)
    return true;
  for (size_t t = 0; t < a.Tracks.size(); ++t) {
    const Track& x = a.Tracks[t];
    const Track& y = b.Tracks[t];
    if (x.Bars.size() != y.Bars.size() || x.Tuning.NumStrings != y.Tuning.NumStrings ||
        x.TrebleStaff != y.TrebleStaff || x.BassStaff != y.BassStaff ||
        x.TabStaff != y.TabStaff || x.DrumTrack != y.DrumTrack)
      return true;
    for (size_t i = 0; i < x.Bars.size(); ++i) {
      if (x.Bars[i].sharesWith(y.Bars[i])) continue;
      if (x.Bars[i]->Beats.size() != y.Bars[i]->Beats.size() ||
          x.Bars[i]->KeySignature != y.Bars[i]->KeySignature)
        return true;
    }
  }
  return false;
}

UndoStep::UndoStep(EditContext& ctx, std::string_view name) : ctx_(ctx) {
  if (ctx.stepDepth_++ == 0) {
    ctx.stepBefore_ = ctx.doc.score;  // shares every bar: one pointer per bar
    ctx.stepCursor_ = CursorOf(ctx.doc);
    ctx.stepName_.assign(name);
  } else if (ctx.stepName_.empty()) {
    ctx.stepName_.assign(name);
  }
}

UndoStep::~UndoStep() {
  EditContext& ctx = ctx_;
  if (--ctx.stepDepth_ > 0) return;
  Score before = std::move(ctx.stepBefore_);
  ctx.stepBefore_ = Score{};
  if (ctx.doc.score == before) return;
  // A command that forgot its name still undoes; the menu then just says "Undo Edit".
  ctx.undo.push(std::move(before), ctx.stepCursor_, ctx.stepName_.empty() ? "Edit" : ctx.stepName_);
  ctx.notifyUndo();
}

namespace {

// Undo and redo differ only in the direction they walk.
void stepThrough(EditContext& ctx, bool (UndoRing::*walk)(Document&)) {
  if (!PasswordCorrect(ctx)) return;
  const int16_t track = ctx.doc.CursorTrack;
  if ((ctx.undo.*walk)(ctx.doc)) {
    if (ctx.doc.CursorTrack != track && ctx.hooks.trackChanged) ctx.hooks.trackChanged();
    if (ctx.hooks.gotoPointsChanged) ctx.hooks.gotoPointsChanged();
    ctx.redraw();
  }
  ctx.notifyUndo();
}

}  // namespace

void mnuEditUndo_Click(EditContext& ctx) { stepThrough(ctx, &UndoRing::undo); }
void mnuEditRedo_Click(EditContext& ctx) { stepThrough(ctx, &UndoRing::redo); }

bool RunCommand(EditContext& ctx, const std::function<void()>& change, std::string_view stepName) {
  if (!PasswordCorrect(ctx)) return false;
  Document& doc = ctx.doc;
  {
    // The step closes before the draw, so the Edit menu already names it when the window
    // updates its items after drawing.
    UndoStep step(ctx, stepName);
    const Score before = doc.score;
    try {
      Transact(doc, [&] {
        change();
        doc.clampCursor();
      });
    } catch (const ScoreError& e) {
      ctx.prompter.message(e.what(), ctx.text("str_Error"), MessageIcon::Critical);
      ctx.redraw();
      return false;
    }
    if (!(doc.score == before)) {
      ctx.KeyChanged = true;
      doc.ScoreChanged = true;
      if (LayoutAffected(before, doc.score)) {
        doc.FullRelayout = true;
        // Beats and bars came or went, and go-to points with them: the menu is filled again.
        if (ctx.hooks.gotoPointsChanged) ctx.hooks.gotoPointsChanged();
      }
    }
  }
  ctx.redraw();
  return true;
}

void RunCursorMove(EditContext& ctx, const std::function<void()>& move) {
  const int16_t track = ctx.doc.CursorTrack;
  try {
    Transact(ctx.doc, [&] {
      move();
      ctx.doc.clampCursor();
    });
  } catch (const ScoreError& e) {
    ctx.prompter.message(e.what(), ctx.text("str_Error"), MessageIcon::Critical);
  }
  if (ctx.doc.CursorTrack != track && ctx.hooks.trackChanged) ctx.hooks.trackChanged();
  ctx.redraw();
}

}  // namespace plectaro
